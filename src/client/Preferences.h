#pragma once

#include <array>
#include <chrono>

/// What the user likes otherwise than it is at first. Written by the options alone.
struct Preferences
{
    /// What a question may precede.
    struct AskBefore
    {
        bool detach = false;
        bool stopGame = false;
        bool kick = false;
        bool deleteAccount = false;

        bool operator==(const AskBefore&) const = default;
    };

    bool reconnects = false;               ///< a connection that was lost is tried again
    std::chrono::seconds listRefresh{5};   ///< pause between refreshes of the profile list; 0 for none
    std::chrono::seconds playerRefresh{0}; ///< the same of player statistics
    AskBefore asksBefore = {};

    bool operator==(const Preferences&) const = default;
};

/// The pauses that can be chosen.
inline constexpr std::array<std::chrono::seconds, 5> refreshPauses{std::chrono::seconds(0), std::chrono::seconds(5),
                                                                   std::chrono::seconds(10), std::chrono::seconds(30),
                                                                   std::chrono::seconds(60)};
