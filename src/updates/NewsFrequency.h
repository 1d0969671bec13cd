#pragma once

#include <array>
#include <string>
#include <string_view>

/// How often the news are fetched, in the order in which they are offered.
inline constexpr std::array<std::string_view, 5> newsFrequencies{"1 Hour", "3 Hours", "6 Hours", "12 Hours", "Day"};
inline constexpr std::string_view usualNewsFrequency = "6 Hours";

/// What the rule looks at of the local time.
struct NewsClock
{
    int day = 1;  ///< of the month
    int hour = 0; ///< 0 to 23
};

/// The stamp of a fetch, day and hour as in "5-9".
std::string newsStamp(NewsClock now);

/// Whether the news shown are too old: another day has begun, or more hours have passed than the frequency allows.
/// @param stored     stamp of the last fetch; one that cannot be read makes them due
/// @param frequency  one of the five texts; with any other the day alone counts
/// @param isShown    whether there are news to see
bool areNewsDue(std::string_view stored, std::string_view frequency, NewsClock now, bool isShown);
