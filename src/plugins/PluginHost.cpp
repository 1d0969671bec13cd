#include "plugins/PluginHost.h"

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

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view pluginFolder = "\\Plugins\\";
constexpr std::size_t maxUnknown = 20; // components that are told of in one login
constexpr std::string_view gameModule = "\\qrvrcGMF.dll";

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
    m_table.leftOut.clear();
    m_table.updateNeeded.clear();
    m_table.disabled.clear();
    const InstalledVersions installed{
        .client = without(m_clientVersion, "."),
        .module = versionDigits(m_client.folder.path(gameModule)),
    };
    std::vector<RuntimeError> faults;
    for (const std::string& file : componentFiles(m_client.folder.fileNames(pluginFolder))) {
        const std::string base = componentBase(file);
        if (base.empty())
            continue;
        if (m_problems.contains(base + ".dll") || m_problems.contains(file)) {
            m_table.leftOut.push_back({file, m_problems.reasonFor(file)});
        } else if (!m_components.isTried(pluginClass(base))) {
            m_table.leftOut.push_back({file, "it is being tried"});
            tryBehind(pluginClass(base));
        } else {
            try {
                load(file, base, installed);
            } catch (const RuntimeError& error) {
                m_table.leftOut.push_back({file, error.description()});
                const bool isNamed = error.description().find(file) != std::string::npos;
                faults.push_back(isNamed ? error : RuntimeError(error.number(), file + ": " + error.description()));
            }
        }
    }
    tell(faults);
}

void PluginHost::tell(const std::vector<RuntimeError>& faults)
{
    std::optional<RuntimeError> news;
    std::set<std::string> told;
    for (const RuntimeError& fault : faults) {
        told.insert(fault.description());
        if (!m_told.contains(fault.description()))
            news = news ? news->followedBy("\r\n" + m_client.store.reportable(fault)) : fault;
    }
    m_told = std::move(told);
    if (news)
        throw *news;
}

void PluginHost::load(const std::string& file, const std::string& base, const InstalledVersions& installed)
{
    Plugin plugin;
    plugin.base = base;
    plugin.component = m_components.createObject(pluginClass(base));
    static_cast<PluginData&>(plugin) = readPluginData(*plugin.component);
    m_client.reporter.trap("PluginAllowed", [&] { plugin.restricted = m_access.isRestricted(plugin.name); });
    judge(file, plugin, installed);
    m_table.plugins.push_back(std::move(plugin));
}

void PluginHost::judge(const std::string& file, Plugin& plugin, const InstalledVersions& installed)
{
    const PluginFacts facts{
        .name = plugin.name,
        .file = file,
        .minClient = plugin.minClient,
        .minModule = plugin.minModule,
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

/// The load may be part of a reply's handling, so the trial begins behind it. Every load names all that are new, and
/// each is tried once; one after the other, because each is a process of its own.
void PluginHost::tryBehind(const std::string& progId)
{
    if (std::find(m_trials.begin(), m_trials.end(), progId) != m_trials.end())
        return;
    m_trials.push_back(progId);
    if (m_trials.size() == 1)
        QMetaObject::invokeMethod(this, &PluginHost::tryNextClass, Qt::QueuedConnection);
}

void PluginHost::tryNextClass()
{
    m_components.tryClass(m_trials.front(), [host = QPointer(this)](const ComponentFault&) {
        if (host)
            QMetaObject::invokeMethod(host, &PluginHost::concludeTrial, Qt::QueuedConnection);
    });
}

/// The load says what came of it.
void PluginHost::concludeTrial()
{
    m_trials.pop_front();
    if (!m_trials.empty())
        tryNextClass();
    LoadPlugins();
}

void PluginHost::takeArrived(const std::vector<std::string>& files)
{
    const bool isIdle = m_waiting.empty();
    for (const std::string& file : componentFiles(files)) {
        if (isPlainFileName(file) && m_client.folder.fileExists(std::string(pluginFolder) + file))
            m_waiting.push_back(file);
    }
    if (isIdle && !m_waiting.empty())
        QMetaObject::invokeMethod(this, &PluginHost::takeNext, Qt::QueuedConnection);
}

void PluginHost::takeNext()
{
    // What comes of it comes by an event of its own, whoever called.
    const auto conclude = [host = QPointer(this)](const ComponentFault& fault) {
        if (host)
            QMetaObject::invokeMethod(
                host, [host, fault] { host->concludeArrival(fault); }, Qt::QueuedConnection);
    };
    const auto tryIt = [host = QPointer(this), conclude](const ComponentFault& fault) {
        if (fault)
            conclude(fault);
        else if (host)
            host->m_components.tryClass(pluginClass(componentBase(host->m_waiting.front())), conclude);
    };
    try {
        m_components.registerFile(m_client.folder.path(std::string(pluginFolder) + m_waiting.front()), tryIt);
    } catch (const RuntimeError& error) {
        conclude(error.description());
    }
}

void PluginHost::concludeArrival(const ComponentFault& fault)
{
    const std::string file = m_waiting.front();
    m_waiting.pop_front();
    std::string why = fault.value_or(std::string());
    if (why.empty() && m_problems.contains(file))
        why = "it was left unregistered when the program started";
    m_arrived.push_back({file, why});
    if (!m_waiting.empty()) {
        takeNext();
        return;
    }
    LoadPlugins();
    Q_EMIT arrived(std::exchange(m_arrived, {}));
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
    for (const std::string_view entry : splitStatusReply(body, m_client.bounds.shortListEntries))
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
    if (m_table.disabled.empty())
        return;
    const std::string warning =
        m_table.updateNeeded + "\r\n\r\nThe following files have been disabled: \r\n" + m_table.disabled;
    // A connection that is back by itself says again what is known.
    if (std::exchange(m_warned, warning) != warning || m_client.link.openedBy() == PendingRequest::Asked::ByUser)
        m_client.store.UpdateWarning(warning);
}

void PluginHost::passOn(const std::string& component, const std::string& payload)
{
    // The name comes from the host: only what is one of the plugins here is created.
    const bool isPlugin = std::any_of(m_table.plugins.begin(), m_table.plugins.end(),
                                      [&component](const Plugin& plugin) { return trimmed(plugin.base) == component; });
    if (isPlugin)
        m_components.createObject(pluginClass(component))->call("RemoteData", {payload});
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
