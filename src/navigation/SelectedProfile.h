#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What other windows know of the profile list, and nobody but the list writes.
struct SelectedProfile
{
    int row = 0;             ///< 1 and up; 0 when none is selected
    std::int32_t id = 0;     ///< 0 when none is selected
    std::int32_t status = 0; ///< status code of the selected profile
    /// Game version of every row, indexed by row; index 0 is never filled.
    std::vector<std::string> gameVersions;

    bool hasProfiles() const { return gameVersions.size() > 1; }
};
