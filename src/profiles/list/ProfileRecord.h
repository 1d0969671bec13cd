#pragma once

#include "client/SelectedProfile.h"
#include "link/Request.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One server profile as the tracker tells of it.
struct ProfileRecord
{
    std::string id; ///< decimal number that fits 32 bits, written as short as can be
    std::string name;
    std::string modPicture; ///< file name of the mod's picture; comes from the host, so not to be trusted as a path
    std::string players;    ///< blank while the profile is not attached to a game
    std::string map;        ///< empty while the profile is not hosting
    std::string gameType;
    std::string timer;
    std::string statusText;
    std::int32_t status = 0; ///< 0 to 5; other values have no picture
    std::string gameVersion;

    bool operator==(const ProfileRecord&) const = default;
};

/// One profile of a "GetProfiles" reply.
/// @param element  Base64 of eleven fields joined by "|"; the map is Base64 again, empty when not hosting
/// @throws RuntimeError SubscriptOutOfRange for fewer fields, TypeMismatch for an id or status code that is no number
///         and for what is no Base64, Overflow for a number that does not fit
ProfileRecord decodeProfileRecord(std::string_view element);

/// One profile and its picture as they stand in the reply. Views into the reply.
struct ProfileElement
{
    std::string_view text;    ///< for `decodeProfileRecord`
    std::string_view picture; ///< for `decodePictureBytes`; empty when the tracker sends none
};

/// The profiles of a "GetProfiles" reply in grid order, the first ones of them. Blank ones are left out; the pictures
/// keep their positions.
struct ProfileElements
{
    std::vector<ProfileElement> profiles;
    bool isCut = false; ///< there are more
};

/// @param most  of the profiles that are taken
ProfileElements splitProfilesReply(std::string_view body, std::size_t most);

/// The bytes of a picture: decimal numbers separated by "/". The tracker ends an entry with "/", so the last piece is
/// never a byte; empty pieces are skipped.
/// @throws RuntimeError TypeMismatch for a piece that is no number, Overflow for one above 255
std::string decodePictureBytes(std::string_view entry);

/// How many play, as far as the players text tells: the number that it begins with, at most `mostPlayers`.
std::uint32_t playersIn(const ProfileRecord& record);
inline constexpr std::uint32_t mostPlayers = 100'000;

/// The profile as those know it who work on it.
ChosenProfile chosen(const ProfileRecord& record);

/// @param heldPictures  file names of the mod pictures that need not be sent again
Request getProfilesRequest(std::string_view user, const std::vector<std::string>& heldPictures);
