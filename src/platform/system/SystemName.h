#pragma once

#include "base/Text.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What the operating system says of itself, as far as it tells.
struct SystemName
{
    std::string name;    ///< such as "Debian GNU/Linux 12 (bookworm)"
    std::string version; ///< parts separated by dots; more follow the second on most systems
    std::int32_t servicePackMajor = 0;
    std::int32_t servicePackMinor = 0;

    bool operator==(const SystemName&) const = default;
};

SystemName systemName();

/// The part of a system's name that is meant for people: some systems put the place of their files behind a "|".
inline std::string_view shortSystemName(std::string_view name)
{
    return trimmed(name.substr(0, name.find('|')));
}

/// Releases that windows are laid out differently on.
struct PlatformFlags
{
    bool isVista = false;
    bool isWindows7 = false;
    bool isWindows2000 = false;

    bool operator==(const PlatformFlags&) const = default;
};

/// @param name  a system's name, in any letter case
inline PlatformFlags platformFlags(std::string_view name)
{
    const std::string lower = lowerAscii(shortSystemName(name));
    const auto names = [&lower](const char* release) { return lower.find(release) != std::string::npos; };
    return {.isVista = names("vista"), .isWindows7 = names("windows 7"), .isWindows2000 = names("windows 2000")};
}
