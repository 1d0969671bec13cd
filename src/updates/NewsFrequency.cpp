#include "updates/NewsFrequency.h"

#include "base/Text.h"

#include <algorithm>
#include <optional>

namespace {

/// Full hours that may pass before the news are due; "Day" has none.
constexpr std::array<int, 4> hoursAllowed{0, 2, 5, 11};

std::optional<int> hoursOf(std::string_view frequency)
{
    const auto found = std::find(newsFrequencies.begin(), newsFrequencies.end(), frequency);
    const auto position = static_cast<std::size_t>(found - newsFrequencies.begin());
    return position < hoursAllowed.size() ? std::optional(hoursAllowed.at(position)) : std::nullopt;
}

} // namespace

std::string newsStamp(NewsClock now)
{
    return std::to_string(now.day) + '-' + std::to_string(now.hour);
}

bool areNewsDue(std::string_view stored, std::string_view frequency, NewsClock now, bool isShown)
{
    const FieldList parts{std::string(stored), '-'};
    if (!isShown || parts.size() != 2)
        return true;
    const std::optional<std::int32_t> day = parseInt32(parts.at(0));
    const std::optional<std::int32_t> hour = parseInt32(parts.at(1));
    if (!day || !hour || *day != now.day)
        return true;
    const std::optional<int> allowed = hoursOf(frequency);
    return allowed && std::int64_t{now.hour} - *hour > *allowed;
}
