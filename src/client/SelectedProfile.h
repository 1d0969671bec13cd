#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The game version, with its two blanks, whose games can be started and whose statistics have a layout of their own.
inline constexpr std::string_view deltaForceVersion = "Delta Force,  V1.5.0.5";

/// One profile as it was when somebody chose it. Whatever belongs to a profile keeps one of these, so that it stays
/// with that profile whatever the list shows or selects later.
struct ChosenProfile
{
    std::int32_t id = 0; ///< any number, 0 too
    std::string name;
    std::string gameVersion;
    std::int32_t status = 0;

    bool operator==(const ChosenProfile&) const = default;
};

/// What the rest of the program knows of the profile list, and nobody but the list writes.
struct SelectedProfile
{
    std::optional<ChosenProfile> profile; ///< nothing when none is selected
    bool hasProfiles = false;
};
