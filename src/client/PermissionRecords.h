#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// One part of the tracker that the account may reach, with its privileges.
struct PermissionRecord
{
    using Privileges = std::vector<std::pair<std::string, std::string>>;

    std::string name;      ///< empty when the section was not recognised
    Privileges privileges; ///< name and value, in the order of the privilege string
    Privileges further;    ///< second list, for plugins

    /// The value of a privilege; nothing when the account lacks it.
    std::optional<std::string_view> value(std::string_view privilege) const;

    bool operator==(const PermissionRecord&) const = default;
};

/// What an account may do, rebuilt at each login.
struct Permissions
{
    bool isSuper = false;
    std::vector<PermissionRecord> records;

    /// The record of that name, or null.
    const PermissionRecord* find(std::string_view name) const;
    /// The value of a privilege in a section; nothing when section or privilege is missing.
    std::optional<std::string_view> value(std::string_view section, std::string_view privilege) const;
    /// Whether a plugin is restricted for the account: not for super accounts, nor when a record's name contains it.
    bool isPluginRestricted(std::string_view plugin) const;

    bool operator==(const Permissions&) const = default;
};

/// @param privileges  Base64, as the login reply carries it; "[ND]" in it is dropped
/// @param most        of the items in it
/// @throws RuntimeError TypeMismatch when it is no Base64, Overflow for more items
Permissions decodePermissions(std::string_view privileges, std::size_t most);
