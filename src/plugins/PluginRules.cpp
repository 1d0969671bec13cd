#include "plugins/PluginRules.h"

#include <algorithm>

PluginVerdict judgePlugin(const PluginFacts& plugin, const std::vector<std::string>& trackerNames,
                          const std::vector<std::string>& trackerVersions, const InstalledVersions& installed)
{
    const auto named = std::find(trackerNames.begin(), trackerNames.end(), plugin.name);
    if (named == trackerNames.end())
        return {};
    if (plugin.minModule > installed.module)
        return {.enabled = false, .updateNeeded = "qrvrcGMF.dll"};
    const auto position = static_cast<std::size_t>(named - trackerNames.begin());
    const std::string trackerVersion = position < trackerVersions.size() ? trackerVersions[position] : std::string();
    if (trackerVersion.empty())
        return {.enabled = true, .updateNeeded = {}};
    if (plugin.fileVersion < trackerVersion)
        return {.enabled = false, .updateNeeded = plugin.file};
    if (plugin.minClient > installed.client)
        return {.enabled = false, .updateNeeded = "QRVV3RC.exe"};
    return {.enabled = true, .updateNeeded = {}};
}
