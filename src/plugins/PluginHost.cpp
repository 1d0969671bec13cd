#include "plugins/PluginHost.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "link/ReplyDispatcher.h"
#include "link/StatusReply.h"
#include "link/clsWinSock.h"
#include "platform/system/FileVersion.h"
#include "plugins/ComponentEntries.h"
#include "plugins/PluginRules.h"
#include "plugins/PluginTable.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"

#include <QPointer>
#include <QWidget>

#include <utility>

namespace {

constexpr std::string_view pluginFolder = "\\Plugins\\";
constexpr std::size_t maxUnknown = 20; // components that are told of in one login
constexpr std::string_view gameModule = "\\qrvrcGMF.dll";

std::string classOf(std::string_view base)
{
    return std::string(trimmed(base)) + ".clsPlugin";
}

std::vector<std::string> textsOf(const ComponentValue& value)
{
    std::vector<std::string> texts;
    for (const ComponentValue& item : *value.toList())
        texts.push_back(item.toString());
    return texts;
}

/// A file's version as digits without dots; "0" for a file that is missing or has none.
std::string versionDigits(const std::filesystem::path& file)
{
    const std::string digits = without(fileVersionOf(file).value_or(std::string()), ".");
    return digits.empty() ? "0" : digits;
}

} // namespace

PluginHost::PluginHost(Client& client, PluginTable& table, Components& components, const ProblemFiles& problems,
                       PluginAccess access, std::string clientVersion)
    : m_client(client),
      m_table(table),
      m_components(components),
      m_problems(problems),
      m_access(std::move(access)),
      m_clientVersion(std::move(clientVersion))
{
    // What a tracker runs is known for one connection only: behind the names of an earlier one, the next tracker's
    // versions would never be looked at.
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] {
        m_table.isTrackerKnown = false;
        m_unknown.clear();
        if (!m_table.trackerNames.empty())
            forgetTracker();
    });
    m_client.replies.on("GetStatus", this, [this](std::string_view body) { showStatus(body); });
    m_client.replies.onPluginMessage(
        this, [this](const std::string& component, const std::string& payload) { passOn(component, payload); });
}

void PluginHost::LoadPlugins()
{
    m_client.reporter.trap("LoadPlugins", [this] { loadFiles(); });
    Q_EMIT tableChanged();
}

void PluginHost::loadFiles()
{
    m_table.plugins.clear();
    m_table.updateNeeded.clear();
    m_table.disabled.clear();
    const InstalledVersions installed{
        .client = without(m_clientVersion, "."),
        .module = versionDigits(m_client.folder.path(gameModule)),
    };
    for (const std::string& file : m_client.folder.fileNames(pluginFolder)) {
        if (!lowerAscii(file).ends_with(".dll"))
            continue;
        Plugin plugin;
        plugin.base = componentBase(file);
        if (plugin.base.empty() || m_problems.contains(plugin.base + ".dll") || m_problems.contains(file))
            continue;
        try {
            load(file, plugin, installed);
        } catch (const RuntimeError& error) {
            if (error.description().find(file) != std::string::npos)
                throw;
            throw RuntimeError(error.number(), file + ": " + error.description());
        }
        m_table.plugins.push_back(std::move(plugin));
    }
}

void PluginHost::load(const std::string& file, Plugin& plugin, const InstalledVersions& installed)
{
    plugin.component = m_components.createObject(classOf(plugin.base));
    const ObjectRef data = plugin.component->call("GetData").toObject();
    if (!data)
        throw RuntimeError(ErrorNumber::ObjectNotSet, file);
    plugin.name = data->call("Name").toString();
    plugin.file = data->call("File").toString();
    plugin.version = data->call("Version").toString();
    plugin.author = data->call("Author").toString();
    plugin.description = data->call("Description").toString();
    plugin.game = data->call("Game");
    plugin.hasInterface = data->call("HasInterface").toBoolean();
    m_client.reporter.trap("PluginAllowed", [&] { plugin.restricted = m_access.isRestricted(plugin.name); });
    plugin.profileMenu = data->call("ProfileMenu").toBoolean();
    plugin.serverMenu = data->call("ServerMenu").toBoolean();
    plugin.profileMenuItems = textsOf(data->call("ProfileMenuItems"));
    plugin.serverMenuItems = textsOf(data->call("ServerMenuItems"));
    plugin.helpFile = data->call("HelpFile").toString();
    judge(file, plugin, *data, installed);
}

void PluginHost::judge(const std::string& file, Plugin& plugin, ComponentObject& data,
                       const InstalledVersions& installed)
{
    const PluginFacts facts{
        .name = plugin.name,
        .file = file,
        .minClient = data.call("MinRCCVer").toString(),
        .minModule = data.call("MinGMFVer").toString(),
        .fileVersion = versionDigits(m_client.folder.path(std::string(pluginFolder) + file)),
    };
    const PluginVerdict verdict = judgePlugin(facts, m_table.trackerNames, m_table.trackerVersions, installed);
    plugin.enabled = verdict.enabled;
    if (verdict.updateNeeded.empty())
        return;
    if (m_table.updateNeeded.find(verdict.updateNeeded) == std::string::npos)
        m_table.updateNeeded += verdict.updateNeeded + "\r\n";
    m_table.disabled += plugin.name + " (" + file + ")\r\n";
}

void PluginHost::forgetTracker()
{
    m_table.trackerNames.clear();
    // It may take its time, and the account's rights are to be gone by then.
    QMetaObject::invokeMethod(this, &PluginHost::LoadPlugins, Qt::QueuedConnection);
}

void PluginHost::showStatus(std::string_view body)
{
    std::vector<TrackerPlugin> said;
    for (const std::string_view entry : splitStatusReply(body))
        said.push_back(decodeStatusEntry(entry));
    if (m_table.trackerNames.empty())
        m_table.trackerVersions.clear(); // versions of an earlier connection would stand at the wrong positions
    for (const TrackerPlugin& plugin : said) {
        m_table.trackerNames.push_back(plugin.name);
        if (plugin.version)
            m_table.trackerVersions.push_back(*plugin.version);
    }
    m_table.isTrackerKnown = true;
    LoadPlugins();
    if (!m_table.disabled.empty()) {
        m_client.store.UpdateWarning(m_table.updateNeeded + "\r\n\r\nThe following files have been disabled: \r\n" +
                                     m_table.disabled);
    }
}

void PluginHost::passOn(const std::string& component, const std::string& payload)
{
    // The name comes from the host: only what is one of the plugins here is created.
    const bool isPlugin = std::any_of(m_table.plugins.begin(), m_table.plugins.end(),
                                      [&component](const Plugin& plugin) { return trimmed(plugin.base) == component; });
    if (isPlugin)
        m_components.createObject(classOf(component))->call("RemoteData", {payload});
    // Once is enough to know of: the tracker may send such messages every few seconds, and make up names.
    else if (m_unknown.size() < maxUnknown && m_unknown.insert(component).second)
        Q_EMIT unknownPlugin(component);
}

void PluginHost::showInterface(const std::string& name, std::int32_t profileId, const std::string& menuItem,
                               const QWidget& frame)
{
    const Plugin* plugin = m_table.find(name);
    if (!plugin)
        throw RuntimeError(ErrorNumber::ObjectNotSet, name);
    const ObjectRef component = plugin->component; // held, because the plugin's window may let the table change
    if (!menuItem.empty())
        hideInterface();
    std::array<ComponentValue, 2> privileges = m_access.privileges(name);
    component->call("SetPrivis", {privileges[0], privileges[1], m_access.isSuper()});
    component->call("LoadInterface", {profileId, static_cast<std::int32_t>(frame.winId()),
                                      ComponentValue::listOf({menuItem}), m_client.link.user()});
    if (!menuItem.empty())
        m_shown = name;
}

void PluginHost::hideInterface()
{
    const Plugin* plugin = m_table.find(std::exchange(m_shown, {}));
    if (!plugin)
        return;
    const ObjectRef component = plugin->component;
    m_client.reporter.trap("frmMenu_tsSM_Click", [&] { component->call("HideInterface", {m_client.link.user()}); });
}
