#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

/// What the profile list shows, in numbers.
struct ListNews
{
    bool isKnown = false; ///< the tracker has told of its profiles
    std::size_t profiles = 0;
    std::size_t hosting = 0;
    std::uint64_t players = 0;
    QString why = {}; ///< it is not known; empty where that goes without saying

    bool operator==(const ListNews&) const = default;
};
