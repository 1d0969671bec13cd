#pragma once

#include "link/Request.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the editor edits of a profile, and what it needs to show it. Check boxes hold their value, 0 for unchecked.
struct ProfileSettings
{
    std::string name;                 ///< shown, never sent back
    std::vector<std::string> scripts; ///< each an address, ":" and a server id
    std::string hostName = "Host";    ///< under which messages are sent in the game
    std::int32_t connectOnStart = 0;
    std::int32_t announceRanks = 0;
    std::int32_t leftLeaning = 0; ///< 0 ignore, 1 disarm, 2 kill; -1 for nothing chosen
    std::int32_t reportToMaster = 0;
    std::int32_t antiPadding = 0;
    std::string padMinutes; ///< as the tracker keeps it, a number or not
    std::string padPlayers;
    std::string statsSystem;               ///< the chosen one; empty for none
    std::vector<std::string> statsSystems; ///< those that the tracker offers; never sent back

    bool operator==(const ProfileSettings&) const = default;
};

/// Reads the reply to "GetProfile": elements joined by "_", each Base64 by itself.
/// @param most  of the scripts, and of the statistics systems
/// @param into  takes each setting as it is read, so that an error leaves those before it
/// @throws RuntimeError SubscriptOutOfRange for too few elements, TypeMismatch for what is no Base64 and for a switch
///         that is no number, Overflow for one that does not fit and for a longer list
void readProfileSettings(std::string_view body, std::size_t most, ProfileSettings& into);

/// What is to be sent when a form showed `shown` for the settings `read` and shows `typed` now: the tracker's own value
/// for everything that was not changed, also where the form could not show it as it is.
ProfileSettings withChanges(const ProfileSettings& read, const ProfileSettings& shown, const ProfileSettings& typed);

/// The ten settings that travel back, each Base64 by itself, joined by "_". Their order differs from the reply's.
std::string settingsText(const ProfileSettings& settings);

Request getProfileRequest(std::string_view user, std::int32_t profileId);
Request setProfileRequest(std::string_view user, std::int32_t profileId, const ProfileSettings& settings);
