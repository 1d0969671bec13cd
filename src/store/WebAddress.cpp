#include "store/WebAddress.h"

#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::int32_t maxPort = 65535;
constexpr std::size_t maxHostLabel = 63;

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Letters beyond ASCII count: a host's name may have them.
bool isHostCharacter(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Names of one or more parts with dots between them, the last one perhaps followed by a dot.
bool isHostName(std::string_view host)
{
    if (host.ends_with('.'))
        host.remove_suffix(1);
    const auto isLabel = [](std::string_view label) {
        return !label.empty() && label.size() <= maxHostLabel && label.front() != '-' && label.back() != '-' &&
               std::all_of(label.begin(), label.end(), isHostCharacter);
    };
    const std::vector<std::string_view> labels = split(host, '.');
    return std::all_of(labels.begin(), labels.end(), isLabel);
}

bool isBracketedAddress(std::string_view host)
{
    if (!host.starts_with('[') || !host.ends_with(']') || host.find(':') == std::string_view::npos)
        return false;
    host = host.substr(1, host.size() - 2);
    return std::all_of(host.begin(), host.end(), [](char c) { return isHexDigit(c) || c == ':' || c == '.'; });
}

bool isPort(std::string_view port)
{
    const auto value = parseInt32(port);
    return value && *value >= 1 && *value <= maxPort && isNumeric(port);
}

/// A host, perhaps with ":" and a port.
bool isHostAndPort(std::string_view authority)
{
    const auto behindBrackets = authority.find(']');
    const auto colon = authority.find(':', behindBrackets == std::string_view::npos ? 0 : behindBrackets);
    const std::string_view host = authority.substr(0, colon);
    if (colon != std::string_view::npos && !isPort(authority.substr(colon + 1)))
        return false;
    return isHostName(host) || isBracketedAddress(host);
}

bool isBlankOrControl(char c)
{
    const auto value = static_cast<unsigned char>(c);
    return value <= 0x20 || value == 0x7F;
}

} // namespace

std::string webAddress(std::string_view typed)
{
    constexpr std::string_view schemeEnd = "://";
    const std::string_view text = trimmed(typed);
    // A "://" further behind belongs to a query or a path.
    const auto colon = std::min(text.find_first_of(":/?#"), text.size());
    const bool namesScheme = text.substr(colon).starts_with(schemeEnd);
    std::string address = namesScheme ? lowerAscii(text.substr(0, colon)) : "http";
    if (address != "http" && address != "https")
        return {};

    std::string_view rest = namesScheme ? text.substr(colon + schemeEnd.size()) : text;
    while (rest.ends_with('/'))
        rest.remove_suffix(1);
    std::string_view host = rest.substr(0, rest.find_first_of("/\\?#"));
    // Without a scheme, what has a user before its host is a mail address.
    if (const auto at = host.rfind('@'); namesScheme && at != std::string_view::npos)
        host.remove_prefix(at + 1);
    if (!isHostAndPort(host) || std::any_of(rest.begin(), rest.end(), isBlankOrControl))
        return {};
    return address.append(schemeEnd).append(rest);
}
