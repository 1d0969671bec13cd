#include "login/ConnectionFields.h"

#include "base/Text.h"
#include "store/clsMFD.h"

#include <algorithm>

std::optional<std::string_view> firstFault(const ConnectionFields& fields, ProfileKind kind)
{
    if (trimmed(fields.profile).empty())
        return "Profile Name field is empty!";
    if (fields.profile.find_first_of(kind == ProfileKind::New ? "[]\r\n" : "\r\n") != std::string::npos)
        return "The Profile Name cannot hold brackets or line breaks!";
    if (isSameSection(fields.profile, newProfileName))
        return "Please choose another Profile Name!";
    if (trimmed(fields.host).empty())
        return "Host field is empty!";
    if (trimmed(fields.port).empty())
        return "Port field is empty!";
    if (trimmed(fields.user).empty())
        return "Username field is empty!";
    if (kind != ProfileKind::StoredWithoutPassword && trimmed(fields.password).empty())
        return "Password field is empty!";
    return {};
}

ConnectionFields storedConnection(std::string_view profile, const std::vector<std::string>& lines)
{
    const auto valueAt = [&lines](std::size_t index) {
        return lines.size() >= 2 && index < lines.size() ? clsMFD::ParseIniKey(lines[index]) : std::string();
    };
    return {std::string(profile), valueAt(0), valueAt(1), valueAt(2), valueAt(3)};
}

std::vector<IniEntry> entriesOf(const ConnectionFields& fields)
{
    return {{"Host", fields.host}, {"Port", fields.port}, {"User", fields.user}, {"Pass", fields.password}};
}

bool isDottedAddress(std::string_view host)
{
    const std::vector<std::string_view> parts = split(host, '.');
    return parts.size() == 4 && std::all_of(parts.begin(), parts.end(),
                                            [](std::string_view part) { return part.size() <= 3 && isNumeric(part); });
}

std::string hostToConnect(std::string_view host)
{
    const std::string_view bare = trimmed(host);
    return isDottedAddress(bare) ? std::string(bare) : without(without(bare, "www."), "http://");
}

std::optional<std::uint16_t> portNumber(std::string_view text)
{
    const std::optional<std::int32_t> value = isNumeric(text) ? parseInt32(text) : std::nullopt;
    if (!value || *value < 1 || *value > 65535)
        return {};
    return static_cast<std::uint16_t>(*value);
}
