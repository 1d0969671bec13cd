#include "client/PermissionRecords.h"

#include "Check.h"
#include "base/Base64.h"
#include "base/Text.h"

#include <algorithm>

namespace {

/// More than an input has room for.
constexpr std::size_t most = 10'000;

/// Key and value of an item "key=value"; an item without "=" has no value.
std::pair<std::string_view, std::string_view> keyAndValue(std::string_view item)
{
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos)
        return {item, {}};
    return {item.substr(0, equals), item.substr(equals + 1)};
}

/// The items that grant or refuse something stand in the records in their order, and nothing else does.
void checkPrivileges(std::string_view decoded, const Permissions& permissions)
{
    std::vector<std::string_view> items = split(decoded, '|');
    items.erase(items.begin());
    auto item = items.begin();
    for (const PermissionRecord& record : permissions.records) {
        check(record.further.empty());
        check(record.name.empty() || std::find(items.begin(), items.end(), record.name) != items.end());
        for (const auto& [key, value] : record.privileges) {
            item = std::find_if(item, items.end(), [](auto text) { return isNumeric(keyAndValue(text).second); });
            check(item != items.end() &&
                  keyAndValue(*item) == std::pair<std::string_view, std::string_view>(key, value));
            ++item;
        }
    }
    check(std::none_of(item, items.end(), [](auto text) { return isNumeric(keyAndValue(text).second); }));
}

void checkLookups(const Permissions& permissions, std::string_view plugin)
{
    bool isNamed = false;
    for (const PermissionRecord& record : permissions.records) {
        const PermissionRecord* found = permissions.find(record.name);
        check(found && found <= &record && found->name == record.name);
        for (const auto& [key, value] : record.privileges) {
            const auto first = record.value(key);
            check(first.has_value());
            check(found != &record || permissions.value(record.name, key) == first);
        }
        isNamed = isNamed || record.name.find(plugin) != std::string::npos;
        check(!permissions.isPluginRestricted(record.name));
    }
    check(permissions.isPluginRestricted(plugin) == (!permissions.isSuper && !isNamed));
    if (!permissions.find(plugin))
        check(!permissions.value(plugin, plugin));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    const auto error = raisedBy([&] { decodePermissions(input, most); }); // as it might come over the wire
    check(!error || error == ErrorNumber::TypeMismatch);

    // The first line is a plugin's name, the rest a privilege string.
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string_view plugin = input.substr(0, end);
    const std::string_view decoded = input.substr(std::min(end + 1, size));
    const Permissions permissions = decodePermissions(base64::encode(decoded), most);
    check(permissions.isSuper == (decoded == "Super"));
    check(decodePermissions("[ND]" + base64::encode(decoded) + "[ND]", most) == permissions);
    checkPrivileges(decoded, permissions);
    checkLookups(permissions, plugin);
    return 0;
}
