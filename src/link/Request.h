#pragma once

#include <string>
#include <string_view>

/// One request to the tracker. `name` is what its reply is recognised by; head and tail travel. All bytes of the host's
/// code page.
struct Request
{
    std::string name;
    std::string head;
    std::string tail;

    bool operator==(const Request&) const = default;
};

/// Name of the requests that other programs queue.
inline constexpr std::string_view rawRequestName = "RCData";

/// The request as it goes over the wire, markers included. "RCData" carries its head alone.
std::string framed(const Request& request);

/// @param version  four-part file version of the client's executable
Request loginRequest(std::string_view user, std::string_view password, std::string_view version);
Request getStatusRequest(std::string_view user);
/// A text that another program queued; it travels unchanged.
Request rawRequest(std::string text);
