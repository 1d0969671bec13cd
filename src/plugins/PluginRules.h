#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What decides whether a plugin may be used. Versions are digits without dots and are compared as text, character by
/// character; an empty one is a file that is missing or has none.
struct PluginFacts
{
    std::string name;
    std::string file;        ///< the plugin's file name
    std::string minClient;   ///< lowest client version that the plugin works with
    std::string minModule;   ///< lowest game-module version that it works with
    std::string fileVersion; ///< version of the plugin's file
};

struct InstalledVersions
{
    std::string client;
    std::string module; ///< of "qrvrcGMF.dll"
};

struct PluginVerdict
{
    bool enabled = false;
    /// The file that must be updated before the plugin can work; empty when none is to blame.
    std::string updateNeeded;

    bool operator==(const PluginVerdict&) const = default;
};

/// @param trackerNames, trackerVersions  what the tracker runs, at matching positions; a version may be missing or
///                                       empty
PluginVerdict judgePlugin(const PluginFacts& plugin, const std::vector<std::string>& trackerNames,
                          const std::vector<std::string>& trackerVersions, const InstalledVersions& installed);
