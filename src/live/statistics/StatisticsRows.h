#pragma once

#include "live/statistics/PlayerStatistics.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Games whose statistics have a layout that is known.
enum class GameFamily { Other, DeltaForce, JointOperations };

/// @param gameVersion  as the profile list has it
GameFamily familyOf(std::string_view gameVersion);

/// One row of the player table. The views point into the statistics that it was made from.
struct PlayerRow
{
    static constexpr std::size_t countColumns = 9;

    std::string_view slot;
    std::string name;
    std::string_view team;
    /// Shots fired, kills, deaths, double kills, headshots, knifings, sniper kills, med saves, experience.
    std::array<std::string_view, countColumns> counts;
    std::int32_t seconds = 0;

    bool operator==(const PlayerRow&) const = default;
};

/// @param index   of the player record; exists
/// @param family  not `Other`
/// @throws RuntimeError SubscriptOutOfRange for a record with too few fields, InvalidProcedureCall for a player without
///         statistics, TypeMismatch for a time that is no number and for what is no Base64, Overflow for too long a
///         time
PlayerRow playerRow(const PlayerStatistics& statistics, std::size_t index, GameFamily family);

/// One row of the weapon table; views as above.
struct WeaponRow
{
    std::size_t position = 0; ///< of its record among all weapon records, from 1
    std::string weapon;
    std::string_view stance;
    std::string_view shots;
    std::string_view kills;
    std::string_view experience;
    std::int32_t seconds = 0;

    bool operator==(const WeaponRow&) const = default;
};

/// The row for a weapon record, or nothing when the record is of another player.
/// @param index   of the weapon record; exists
/// @param player  name, compared letter by letter
/// @param family  every game but Joint Operations has the layout of Delta Force
/// @throws RuntimeError as `playerRow`; of another player's record only the name is looked at
std::optional<WeaponRow> weaponRow(const PlayerStatistics& statistics, std::size_t index, GameFamily family,
                                   std::string_view player);

/// "hh:mm:ss", with as many digits for the hours as they need; "00:00:00" for a negative time.
std::string timeText(std::int32_t seconds);
