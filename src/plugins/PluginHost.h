#pragma once

#include "base/RuntimeError.h"
#include "platform/components/Component.h"

#include <QObject>

#include <array>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class QWidget;
struct Client;
struct InstalledVersions;
struct LeftOutPlugin;
struct Plugin;
struct PluginTable;
struct ProblemFiles;

/// What the plugin host needs to know of the account.
struct PluginAccess
{
    /// Whether the account may do everything.
    std::function<bool()> isSuper;
    /// Whether the account may not use a plugin of that name.
    std::function<bool(const std::string& plugin)> isRestricted;
    /// The two privilege lists of the plugin's permission record, "name=value" each; empty when it has none.
    std::function<std::array<ComponentValue, 2>(const std::string& plugin)> privileges;
};

/// Loads the plugins into one table, decides which of them may be used, shows their windows and hands them what their
/// counterparts on the tracker send.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    /// Registers for "GetStatus" and for messages to plugins. All arguments outlive the host.
    /// @param clientVersion  four parts
    PluginHost(Client& client, PluginTable& table, Components& components, const ProblemFiles& problems,
               PluginAccess access, std::string clientVersion);

    /// Builds the table anew. A file that cannot be loaded is left out and named, once for each reason; those behind it
    /// are loaded. One that must pass a trial first is left out until it has, and the table is then built again: no
    /// event runs here.
    void LoadPlugins();
    /// Plugin files that an update has just put into their folder are registered, and those that can be used from now
    /// on are loaded. What became of them is told through `arrived`, after a trial and thus later.
    /// @param files  their names; what is no plugin file is not looked at
    void takeArrived(const std::vector<std::string>& files);
    /// Forgets the tracker's plugins and builds the table anew, behind what is going on. Happens by itself when the
    /// link is lost.
    void forgetTracker();
    /// Hands a plugin the account's privileges and shows its window. A window of another plugin that was shown by a
    /// menu item is hidden first.
    /// @param menuItem  the entry that was used, handed on in the list; empty for none
    /// @param frame     the main window, for its native handle
    /// @throws RuntimeError ObjectNotSet for a plugin that is not in the table, and what the plugin raises
    void showInterface(const std::string& plugin, std::int32_t profileId, const std::string& menuItem,
                       const QWidget& frame);
    /// Hides the window that a menu item showed, if any.
    void hideInterface();

Q_SIGNALS:
    /// The table has been built anew.
    void tableChanged();
    /// The tracker has sent a message for a plugin that is not here. Told once a login of each, and of a few only.
    /// @param component  what it named, in the host's code page; not cleaned
    void unknownPlugin(const std::string& component);
    /// Plugin files that an update brought have been registered and tried.
    /// @param files  each with why it is left out, for people; with nothing when it can be used
    void arrived(const std::vector<LeftOutPlugin>& files);

private:
    void loadFiles();
    void tell(const std::vector<RuntimeError>& faults);
    void load(const std::string& file, const std::string& base, const InstalledVersions& installed);
    void judge(const std::string& file, Plugin& plugin, const InstalledVersions& installed);
    void tryBehind(const std::string& progId);
    void tryNextClass();
    void concludeTrial();
    void takeNext();
    void concludeArrival(const ComponentFault& fault);
    void showStatus(std::string_view body);
    void passOn(const std::string& component, const std::string& payload);

    Client& m_client;
    PluginTable& m_table;
    Components& m_components;
    const ProblemFiles& m_problems;
    PluginAccess m_access;
    std::string m_clientVersion;
    std::set<std::string> m_unknown;      ///< components that messages of this connection named and that are not here
    std::deque<std::string> m_trials;     ///< classes to be tried; the first one is under way
    std::deque<std::string> m_waiting;    ///< files to be registered; the first one is under way
    std::vector<LeftOutPlugin> m_arrived; ///< those that are done
    std::set<std::string> m_told;         ///< what was wrong with files at the last load
    std::string m_warned;                 ///< what was told last of disabled files
    std::string m_shown;                  ///< name of the plugin whose window a menu item shows
};
