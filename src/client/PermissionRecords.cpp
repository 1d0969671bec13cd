#include "client/PermissionRecords.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "store/clsMFD.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 3> knownSections{"Profiles", "Options", "Profile Admins"};

/// Whether the item is a section's name rather than "key=number".
bool isSection(std::string_view item)
{
    return !isNumeric(clsMFD::ParseIniKey(item));
}

/// A section counts when it is one of ours, or when the tracker marks it by a "...=0" behind it.
bool isRecognised(std::string_view section, std::string_view followingItem)
{
    return std::find(knownSections.begin(), knownSections.end(), section) != knownSections.end() ||
           clsMFD::ParseIniKey(followingItem, true)[1] == "0";
}

} // namespace

std::optional<std::string_view> PermissionRecord::value(std::string_view privilege) const
{
    const auto found = std::find_if(privileges.begin(), privileges.end(),
                                    [privilege](const auto& entry) { return entry.first == privilege; });
    if (found == privileges.end())
        return {};
    return found->second;
}

const PermissionRecord* Permissions::find(std::string_view name) const
{
    const auto found =
        std::find_if(records.begin(), records.end(), [name](const auto& record) { return record.name == name; });
    return found == records.end() ? nullptr : &*found;
}

std::optional<std::string_view> Permissions::value(std::string_view section, std::string_view privilege) const
{
    const PermissionRecord* record = find(section);
    return record ? record->value(privilege) : std::nullopt;
}

bool Permissions::isPluginRestricted(std::string_view plugin) const
{
    return !isSuper && std::none_of(records.begin(), records.end(), [plugin](const PermissionRecord& record) {
        return record.name.find(plugin) != std::string::npos;
    });
}

Permissions decodePermissions(std::string_view privileges, std::size_t most)
{
    const std::string decoded = base64::decode(without(privileges, "[ND]"));
    Permissions permissions;
    permissions.isSuper = decoded == "Super";
    const std::vector<std::string_view> items = splitBounded(decoded, '|', most, "privileges");
    std::vector<PermissionRecord>& records = permissions.records;
    for (std::size_t index = 1; index < items.size(); ++index) {
        const std::string_view item = items[index];
        if (isSection(item)) {
            if (records.empty() || !records.back().name.empty())
                records.emplace_back();
            if (isRecognised(item, index + 1 < items.size() ? items[index + 1] : std::string_view()))
                records.back().name = std::string(item);
        } else {
            if (records.empty())
                records.emplace_back();
            auto [key, value] = clsMFD::ParseIniKey(item, true);
            records.back().privileges.emplace_back(std::move(key), std::move(value));
        }
    }
    return permissions;
}
