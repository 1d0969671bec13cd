#pragma once

#include "platform/components/Component.h"
#include "plugins/PluginData.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

/// Name of the plugin that starts games.
inline constexpr std::string_view startPlugin = "BHD Auto Start";

/// One plugin as the rest of the program sees it.
struct Plugin : PluginData
{
    ObjectRef component;
    bool enabled = false;
    bool restricted = false; ///< the account may not use it
    /// The file's name without ".dll": what its class is named after.
    std::string base;

    /// Whether the account can use it now.
    bool isOffered() const { return enabled && !restricted; }
};

/// A plugin file that is not among the plugins, and why.
struct LeftOutPlugin
{
    std::string file;
    std::string why; ///< for people

    bool operator==(const LeftOutPlugin&) const = default;
};

/// The plugins of this client and what the tracker says of its own. Written by the plugin host.
struct PluginTable
{
    std::vector<Plugin> plugins;
    std::vector<LeftOutPlugin> leftOut;
    /// Whether the tracker has said on this connection which plugins it runs.
    bool isTrackerKnown = false;
    /// Names and versions of the tracker's plugins, at matching positions.
    std::vector<std::string> trackerNames;
    std::vector<std::string> trackerVersions;
    /// Files that must be updated before a disabled plugin can work, a line each.
    std::string updateNeeded;
    /// Disabled plugins, a line each.
    std::string disabled;

    /// The first plugin of that name, or null; valid until the table is built anew.
    const Plugin* find(std::string_view name) const
    {
        const auto found =
            std::find_if(plugins.begin(), plugins.end(), [name](const Plugin& plugin) { return plugin.name == name; });
        return found == plugins.end() ? nullptr : &*found;
    }
    bool isEnabled(std::string_view name) const
    {
        const Plugin* plugin = find(name);
        return plugin && plugin->enabled;
    }
};
