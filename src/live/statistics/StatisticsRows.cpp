#include "live/statistics/StatisticsRows.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/SelectedProfile.h"

#include <algorithm>
#include <source_location>

namespace {

/// The fields of one record, as far as they are looked at. Points into the record.
template <std::size_t mostFields>
class Fields
{
public:
    explicit Fields(std::string_view record)
    {
        // Fields are so short that a call for each of them would cost more than the search.
        auto start = record.begin();
        while (m_count < m_fields.size()) {
            const auto end = std::find(start, record.end(), '_');
            m_fields[m_count++] = std::string_view(start, end);
            if (end == record.end())
                break;
            start = end + 1;
        }
    }

    std::size_t size() const { return m_count; }

    std::string_view at(std::size_t index, std::source_location where = std::source_location::current()) const
    {
        if (index >= m_count)
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange, {}, where);
        return m_fields[index];
    }

private:
    std::array<std::string_view, mostFields> m_fields;
    std::size_t m_count = 0;
};

/// Where a statistics record has what the player table shows.
struct PlayerLayout
{
    std::array<std::size_t, PlayerRow::countColumns> counts; ///< in the table's order
    std::size_t seconds;
};

constexpr std::size_t playerFields = 32; // of the longer layout
constexpr PlayerLayout deltaForcePlayers{{23, 2, 3, 13, 14, 15, 16, 9, 24}, 25};
constexpr PlayerLayout jointOperationsPlayers{{0, 3, 5, 31, 14, 15, 30, 7, 22}, 28};

/// Where a weapon record has what the weapon table shows.
struct WeaponLayout
{
    std::size_t player; ///< Base64
    std::size_t weapon;
    std::size_t shots;
    std::size_t kills;
    std::size_t experience;
    std::size_t seconds;
};

constexpr std::size_t weaponFields = 36; // of the longer layout
constexpr WeaponLayout deltaForceWeapons{
    .player = 0, .weapon = 1, .shots = 5, .kills = 4, .experience = 6, .seconds = 3};
constexpr WeaponLayout jointOperationsWeapons{
    .player = 34, .weapon = 35, .shots = 0, .kills = 3, .experience = 22, .seconds = 28};
constexpr std::size_t stanceField = 2; // of a Delta Force weapon record; the other game has none

std::string_view stanceText(std::string_view field)
{
    constexpr std::array<std::string_view, 4> names{"Stand", "Crouch", "Prone", "Midair"};
    if (field.size() == 1 && field[0] >= '0' && field[0] < '0' + static_cast<int>(names.size()))
        return names[static_cast<std::size_t>(field[0] - '0')];
    return field;
}

struct PlayerIdentity
{
    std::string_view slot;
    std::string name;
    std::string_view team;
    std::string key; ///< of the player's statistics
};

/// A player record in either form; the number of its fields tells which one it is.
PlayerIdentity identityOf(std::string_view record, GameFamily family)
{
    constexpr std::size_t longForm = 5;
    const Fields<longForm> fields(record);
    PlayerIdentity player;
    if (fields.size() >= longForm) {
        player.name = base64::decode(fields.at(0));
        player.slot = fields.at(1);
        player.team = fields.at(2);
        player.key.reserve(record.size()); // Base64 is longer than what it stands for
        player.key.append(player.name).append(1, '_').append(player.slot).append(1, '_').append(player.team);
        player.key.append(1, '_').append(base64::decode(fields.at(3)));
        return player;
    }
    const std::string_view encodedName = fields.at(2);
    player.slot = fields.at(0);
    player.team = fields.at(1);
    player.name = base64::decode(encodedName);
    player.key.append(player.slot).append(1, '_').append(player.team).append(1, '_');
    player.key.append(family == GameFamily::DeltaForce ? std::string_view(player.name) : encodedName);
    return player;
}

} // namespace

GameFamily familyOf(std::string_view gameVersion)
{
    if (gameVersion == deltaForceVersion)
        return GameFamily::DeltaForce;
    return gameVersion.find("Joint Operations") != std::string_view::npos ? GameFamily::JointOperations
                                                                          : GameFamily::Other;
}

PlayerRow playerRow(const PlayerStatistics& statistics, std::size_t index, GameFamily family)
{
    PlayerIdentity player = identityOf(statistics.players().at(index), family);
    const Fields<playerFields> fields(statistics.statisticsOf(player.key, index));
    const PlayerLayout& layout = family == GameFamily::DeltaForce ? deltaForcePlayers : jointOperationsPlayers;
    PlayerRow row;
    row.slot = player.slot;
    row.name = std::move(player.name);
    row.team = player.team;
    for (std::size_t column = 0; column < layout.counts.size(); ++column)
        row.counts[column] = fields.at(layout.counts[column]);
    row.seconds = toInt32(fields.at(layout.seconds));
    return row;
}

std::optional<WeaponRow> weaponRow(const PlayerStatistics& statistics, std::size_t index, GameFamily family,
                                   std::string_view player)
{
    const bool isJoint = family == GameFamily::JointOperations;
    const WeaponLayout& layout = isJoint ? jointOperationsWeapons : deltaForceWeapons;
    const Fields<weaponFields> fields(statistics.weapons().at(index));
    if (base64::decode(fields.at(layout.player)) != player)
        return {};
    WeaponRow row;
    row.position = index + 1;
    row.weapon = isJoint ? base64::decode(fields.at(layout.weapon)) : std::string(fields.at(layout.weapon));
    row.stance = isJoint ? "N/A" : stanceText(fields.at(stanceField));
    row.shots = fields.at(layout.shots);
    row.kills = fields.at(layout.kills);
    row.experience = fields.at(layout.experience);
    row.seconds = toInt32(fields.at(layout.seconds));
    return row;
}

std::string timeText(std::int32_t seconds)
{
    if (seconds < 0)
        return "00:00:00";
    const auto twoDigits = [](std::int32_t number) {
        return std::string(number < 10 ? 1 : 0, '0').append(std::to_string(number));
    };
    constexpr std::int32_t minute = 60;
    constexpr std::int32_t hour = 60 * minute;
    return twoDigits(seconds / hour) + ':' + twoDigits(seconds % hour / minute) + ':' + twoDigits(seconds % minute);
}
