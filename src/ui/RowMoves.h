#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

/// How the rows of a grid become others.
struct RowMoves
{
    std::vector<int> newRowOf; ///< for every row so far the row that goes on from it, or -1 when it is gone
    std::vector<int> changed;  ///< the new rows that go on from one before and read differently, ascending
};

/// The moves between two lists of records, in linear time.
/// @param key  what tells records apart, as a `std::string_view` of the record. Where a list holds one twice, those at
///             the same place go on from each other, and of the others the first.
template <typename Record, typename Key>
RowMoves movesBetween(const std::vector<Record>& before, const std::vector<Record>& now, Key key)
{
    RowMoves moves{.newRowOf = std::vector<int>(before.size(), -1), .changed = {}};
    std::unordered_map<std::string_view, int> elsewhere;
    for (std::size_t row = 0; row < now.size(); ++row) {
        if (row < before.size() && key(before[row]) == key(now[row]))
            moves.newRowOf[row] = static_cast<int>(row);
        else
            elsewhere.emplace(key(now[row]), static_cast<int>(row));
    }
    for (std::size_t row = 0; row < before.size(); ++row) {
        int& newRow = moves.newRowOf[row];
        if (newRow < 0) {
            if (const auto found = elsewhere.extract(key(before[row])))
                newRow = found.mapped();
        }
        if (newRow >= 0 && before[row] != now[static_cast<std::size_t>(newRow)])
            moves.changed.push_back(newRow);
    }
    std::sort(moves.changed.begin(), moves.changed.end());
    return moves;
}
