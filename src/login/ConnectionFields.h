#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// The first thing that keeps the fields from being saved and connected, in the words shown to the user.
std::optional<std::string_view> firstFault(const ConnectionFields& fields);

/// Reads a stored connection by position: host, port, user name, password, whatever their keys are called.
/// @param lines  "key=value" lines of the profile's section
/// @return nothing when there are fewer than two lines; fields that are missing are empty
std::optional<ConnectionFields> storedConnection(std::string_view profile, const std::vector<std::string>& lines);

/// Whether the host is four dotted numbers of at most three digits each, whatever their values.
bool isDottedAddress(std::string_view host);

/// The host that is really connected to: "www." and "http://" taken out of what is no dotted address.
std::string hostToConnect(std::string_view host);

/// The port, or nothing when the text is no number from 1 to 65535.
std::optional<std::uint16_t> portNumber(std::string_view text);
