#include "live/statistics/PlayerStatistics.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::string_view sectionSeparator = "[-][-]";
constexpr std::size_t shortestReply = 2;

/// Takes the section in front off `rest`, which has no value behind the last one.
std::string_view nextSection(std::optional<std::string_view>& rest)
{
    if (!rest)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "a list is missing from the statistics");
    const std::string_view whole = *rest;
    const std::size_t end = whole.find(sectionSeparator);
    if (end == std::string_view::npos)
        rest.reset();
    else
        rest = whole.substr(end + sectionSeparator.size());
    return whole.substr(0, end);
}

/// Calls `take` with each item of a section that is not empty.
template <typename Take>
void forEachItem(std::string_view section, Take take)
{
    std::size_t start = 0;
    while (start <= section.size()) {
        const std::size_t end = std::min(section.find('|', start), section.size());
        if (end > start)
            take(section.substr(start, end - start));
        start = end + 1;
    }
}

} // namespace

void PlayerStatistics::read(std::string_view body)
{
    const std::size_t most = body.size() / 4 * 3; // Base64 is longer by a third, and there is more than Base64
    m_room = std::make_unique_for_overwrite<char[]>(most);
    m_free = {m_room.get(), most};
    std::optional<std::string_view> rest = body;
    readRecords(nextSection(rest), m_players);
    m_statistics.reserve(m_players.size());
    readStatistics(nextSection(rest));
    readRecords(nextSection(rest), m_weapons);
}

std::string_view PlayerStatistics::decoded(std::string_view text)
{
    const std::string_view bytes = base64::decode(text, m_free);
    m_free = m_free.subspan(bytes.size());
    return bytes;
}

void PlayerStatistics::readRecords(std::string_view section, std::vector<std::string_view>& records)
{
    forEachItem(section, [&](std::string_view item) { records.push_back(decoded(item)); });
}

void PlayerStatistics::readStatistics(std::string_view section)
{
    m_places.clear();
    forEachItem(section, [this](std::string_view item) {
        const std::size_t middle = item.find('_');
        if (middle == std::string_view::npos)
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "statistics without a record");
        const std::string_view record = item.substr(middle + 1);
        m_statistics.push_back({decoded(item.substr(0, middle)), decoded(record.substr(0, record.find('_')))});
    });
}

std::string_view PlayerStatistics::statisticsOf(std::string_view key, std::size_t likely) const
{
    if (likely < m_statistics.size() && m_statistics[likely].key == key)
        return m_statistics[likely].record;
    if (m_places.empty()) {
        m_places.reserve(m_statistics.size());
        for (std::size_t place = 0; place < m_statistics.size(); ++place)
            m_places.emplace(m_statistics[place].key, place);
    }
    const auto found = m_places.find(key);
    if (found == m_places.end())
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, PrivateName(key, {}, "there are no statistics for "));
    return m_statistics[found->second].record;
}

bool saysNotRunning(std::string_view body)
{
    return body == "0";
}

bool isNoStatistics(std::string_view body)
{
    return body.size() < shortestReply;
}

Request getPlayerStatsRequest(std::string_view user, std::int32_t profileId)
{
    return {"GetPlayerStats", "GetPlayerStats_" + std::string(user), std::to_string(profileId)};
}
