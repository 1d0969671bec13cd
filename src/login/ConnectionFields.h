#pragma once

#include "store/IniText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The entry for new profiles in the list of profiles; none is stored under it.
inline constexpr const char* newProfileName = "New Profile";

/// Layout name of the profile store.
inline constexpr std::string_view connectionFile = "\\profiles.ini";

/// What the login window holds of one connection, as typed, in the code page of the profile store.
struct ConnectionFields
{
    std::string profile;
    std::string host;
    std::string port;
    std::string user;
    std::string password;

    bool operator==(const ConnectionFields&) const = default;
};

/// Whether a profile is saved for the first time. A stored one may have a name that a new one may not, and its password
/// may be elsewhere.
enum class ProfileKind { New, Stored, StoredWithoutPassword };

/// The first thing that keeps the fields from being saved and connected, in the words shown to the user.
std::optional<std::string_view> firstFault(const ConnectionFields& fields, ProfileKind kind);

/// Reads a stored connection by position: host, port, user name, password, whatever their keys are called.
/// @param lines  "key=value" lines of the profile's section
/// @return the profile's name, with fields that are empty where lines are missing, all when there are fewer than two
ConnectionFields storedConnection(std::string_view profile, const std::vector<std::string>& lines);

/// What a profile's section is to hold, in this order. Views into `fields`.
std::vector<IniEntry> entriesOf(const ConnectionFields& fields);

/// Whether the host is four dotted numbers of at most three digits each, whatever their values.
bool isDottedAddress(std::string_view host);

/// The host that is really connected to: "www." and "http://" taken out of what is no dotted address.
std::string hostToConnect(std::string_view host);

/// The port, or nothing when the text is no number from 1 to 65535.
std::optional<std::uint16_t> portNumber(std::string_view text);
