#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The game version, with its two blanks, whose games can be started and whose statistics have a layout of their own.
inline constexpr std::string_view deltaForceVersion = "Delta Force,  V1.5.0.5";

/// What other windows know of the profile list, and nobody but the list writes.
struct SelectedProfile
{
    int row = 0;             ///< 1 and up; 0 when none is selected
    std::int32_t id = 0;     ///< 0 when none is selected
    std::int32_t status = 0; ///< status code of the selected profile
    std::string name;        ///< of the selected profile; empty when none is selected
    /// Game version of every row, indexed by row; index 0 is never filled.
    std::vector<std::string> gameVersions;

    /// Game version of the selected profile; empty when none is selected.
    std::string_view gameVersion() const
    {
        const auto at = static_cast<std::size_t>(row);
        return row > 0 && at < gameVersions.size() ? std::string_view(gameVersions[at]) : std::string_view();
    }
    bool hasProfiles() const { return gameVersions.size() > 1; }
};
