#pragma once

#include "link/Request.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What the tracker tells of the players of one game server, as it stands in a "GetPlayerStats" reply: three lists of
/// records, whose fields are joined by "_". Rows for people are made from them by StatisticsRows.
class PlayerStatistics
{
public:
    PlayerStatistics() = default;
    PlayerStatistics(const PlayerStatistics&) = delete; // views point into it
    PlayerStatistics& operator=(const PlayerStatistics&) = delete;
    ~PlayerStatistics() = default;

    /// Reads the three sections of a reply one after the other; to be called once.
    /// @param body  lists joined by "[-][-]"; their items, joined by "|", are Base64, empty ones are skipped
    /// @throws RuntimeError SubscriptOutOfRange for a missing section and for statistics without a record, TypeMismatch
    ///         for what is no Base64; what was read before stays
    void read(std::string_view body);

    /// Player records in the tracker's order.
    const std::vector<std::string_view>& players() const { return m_players; }
    /// Weapon records of all players in the tracker's order.
    const std::vector<std::string_view>& weapons() const { return m_weapons; }
    /// The statistics record that is kept under a player's key. The tracker sends one for each; were there several, the
    /// one at `likely` comes before the first.
    /// @param likely  place in the list that is looked at first: that of the player among the players
    /// @throws RuntimeError InvalidProcedureCall when there is none
    std::string_view statisticsOf(std::string_view key, std::size_t likely) const;

private:
    struct Entry
    {
        std::string_view key;
        std::string_view record;
    };

    std::string_view decoded(std::string_view text);
    void readRecords(std::string_view section, std::vector<std::string_view>& records);
    void readStatistics(std::string_view section);

    std::unique_ptr<char[]> m_room; ///< holds all that was decoded; everything below points into it
    std::span<char> m_free;         ///< the rest of it
    std::vector<std::string_view> m_players;
    std::vector<Entry> m_statistics;
    std::vector<std::string_view> m_weapons;
    /// Places in m_statistics by key; made when a record is not where it is likely to be.
    mutable std::unordered_map<std::string_view, std::size_t> m_places;
};

/// Whether a reply says that the profile has no running game server.
bool saysNotRunning(std::string_view body);

/// Whether a reply is too short to say anything.
bool isNoStatistics(std::string_view body);

Request getPlayerStatsRequest(std::string_view user, std::int32_t profileId);
