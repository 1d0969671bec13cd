#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

/// One plugin as the rest of the program sees it.
struct Plugin
{
    std::string name;
    std::string file;
    std::string helpFile; ///< the help section while the plugin's window is shown
    bool enabled = false;
    bool restricted = false; ///< the account may not use it
    std::vector<std::string> serverMenuItems;
};

/// The plugins of this client and what the tracker says of its own. Written by the plugin host.
struct PluginTable
{
    std::vector<Plugin> plugins;
    /// Names and versions of the tracker's plugins, at matching positions.
    std::vector<std::string> trackerNames;
    std::vector<std::string> trackerVersions;
    /// Files that must be updated before a disabled plugin can work, a line each.
    std::string updateNeeded;
    /// Disabled plugins, a line each.
    std::string disabled;

    bool isEnabled(std::string_view name) const
    {
        return std::any_of(plugins.begin(), plugins.end(),
                           [name](const Plugin& plugin) { return plugin.enabled && plugin.name == name; });
    }
};
