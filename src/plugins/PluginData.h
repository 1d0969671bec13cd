#pragma once

#include "platform/components/Component.h"

#include <string>
#include <vector>

/// What a plugin says of itself. Texts in the host's code page, as the plugin gave them.
struct PluginData
{
    std::string name;
    std::string file;
    std::string version;
    std::string author;
    std::string description;
    ComponentValue game;
    bool hasInterface = false;
    bool profileMenu = false;
    bool serverMenu = false;
    std::vector<std::string> profileMenuItems;
    std::vector<std::string> serverMenuItems;
    std::string helpFile;  ///< the help section while the plugin's window is shown
    std::string minClient; ///< lowest client version that it works with, as digits without dots
    std::string minModule; ///< lowest game-module version, likewise
};

/// Reads "GetData", afresh for every property.
/// @throws RuntimeError what the plugin raises, and TypeMismatch for a property of another type
PluginData readPluginData(ComponentObject& plugin);
