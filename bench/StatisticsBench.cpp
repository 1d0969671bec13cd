// A "GetPlayerStats" reply on its way to records.

#include "base/Base64.h"
#include "base/Text.h"
#include "live/statistics/StatisticsRows.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t fieldCount = 26;

/// Players as a tracker tells of them, without weapons.
std::string reply(int players)
{
    std::vector<std::string> records;
    std::vector<std::string> statistics;
    for (int player = 0; player < players; ++player) {
        const std::string name = "[TF] Player " + std::to_string(player);
        const std::string identity = "4D41" + std::to_string(100000 + player);
        const std::string place = '_' + std::to_string(player) + '_' + std::to_string(player % 2 + 1) + '_';
        records.push_back(
            base64::encode(base64::encode(name).append(place).append(base64::encode(identity)).append("_0")));
        std::vector<std::string> fields(fieldCount, "0");
        for (const std::size_t field : {2, 3, 9, 14, 23, 24, 25})
            fields[field] = std::to_string(static_cast<std::size_t>(player) * 7 % 1000 * field % 4000);
        std::string key = name;
        key.append(place).append(identity);
        statistics.push_back(base64::encode(key) + '_' + base64::encode(join(fields, "_")));
    }
    return join(records, "|") + "[-][-]" + join(statistics, "|") + "[-][-]";
}

void statisticsOurs(benchmark::State& state)
{
    const std::string body = reply(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] const auto step : state) {
        PlayerStatistics statistics;
        statistics.read(body);
        std::vector<PlayerRow> rows;
        rows.reserve(statistics.players().size());
        for (std::size_t index = 0; index < statistics.players().size(); ++index)
            rows.push_back(playerRow(statistics, index, GameFamily::DeltaForce));
        benchmark::DoNotOptimize(rows.data());
    }
}

using Fields = std::array<std::string_view, fieldCount>;

void splitInto(Fields& fields, std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t start = 0; start <= text.size() && count < fields.size();) {
        const std::size_t end = std::min(text.find('_', start), text.size());
        fields[count++] = text.substr(start, end - start);
        start = end + 1;
    }
}

/// Where the item ends that begins at `start`.
std::size_t itemEnd(std::string_view body, std::size_t start)
{
    while (start < body.size() && body[start] != '|' && body[start] != '[')
        ++start;
    return start;
}

/// One pass over a view of the reply: every text is expanded and kept, every record split, and nobody looks for
/// anybody.
void statisticsOnePass(benchmark::State& state)
{
    const std::string body = reply(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] const auto step : state) {
        std::vector<std::string> records;
        records.reserve(static_cast<std::size_t>(state.range(0)) * 2);
        Fields fields;
        std::int64_t seconds = 0;
        for (std::size_t start = 0; start < body.size();) {
            const std::size_t end = itemEnd(body, start);
            const std::string_view item = std::string_view(body).substr(start, end - start);
            start = end + (end < body.size() && body[end] == '[' ? 6 : 1);
            if (item.empty())
                continue;
            const std::size_t middle = item.find('_');
            const bool isPlayer = middle == std::string_view::npos;
            if (!isPlayer)
                benchmark::DoNotOptimize(base64::decode(item.substr(0, middle)));
            records.push_back(base64::decode(isPlayer ? item : item.substr(middle + 1)));
            splitInto(fields, records.back());
            if (isPlayer) {
                benchmark::DoNotOptimize(base64::decode(fields[0]));
                continue;
            }
            int time = 0;
            const std::string_view last = fields[fieldCount - 1];
            std::from_chars(last.data(), last.data() + last.size(), time);
            seconds += time;
        }
        benchmark::DoNotOptimize(seconds);
        benchmark::DoNotOptimize(records.data());
    }
}

BENCHMARK(statisticsOurs)->Name("statistics to records: ours")->Arg(256)->Arg(10000);
BENCHMARK(statisticsOnePass)->Name("statistics to records: one pass")->Arg(256)->Arg(10000);

} // namespace
