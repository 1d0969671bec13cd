#pragma once

#include "base/Bounds.h"
#include "client/Client.h"
#include "client/PermissionRecords.h"
#include "client/Preferences.h"
#include "client/SelectedProfile.h"
#include "client/StatusSlot.h"
#include "diagnostics/errorlog/ErrorLogSender.h"
#include "diagnostics/report/BoxQueue.h"
#include "diagnostics/report/Reporter.h"
#include "link/EventWait.h"
#include "link/LinkKeeper.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "live/support/SupportDesk.h"
#include "login/KeptPasswords.h"
#include "platform/components/Component.h"
#include "platform/net/Inet.h"
#include "platform/net/Winsock.h"
#include "platform/system/CodePage.h"
#include "plugins/ComponentEntries.h"
#include "plugins/PluginHost.h"
#include "plugins/PluginTable.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "ui/PictureStore.h"
#include "ui/WindowRegistry.h"
#include "updates/UpdateServices.h"
#include "updates/UpdateTargets.h"

#include <QUrl>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class LockableInterface;
class MessageBoxes;

/// What the program is started with.
struct Setup
{
    std::filesystem::path folder; ///< the application folder; exists
    QUrl makerHost;               ///< web host behind the built-in addresses
    std::string version;          ///< four parts
    /// This executable, which updates replace and which tries components that are new in a process of their own; empty
    /// for neither.
    std::filesystem::path program = {};
    /// Whether components are tried.
    bool probesComponents = true;
    /// What it was started with, to be started with again after an update.
    std::vector<std::string> arguments = {};
    /// Public key of the update locations, as minisign writes it; empty for none.
    std::string updateKey = {};
    /// Whether the system's package manager keeps the program current, so that it does not update itself.
    bool isPackaged = false;
    /// Where the licence texts lie that come with the program; need not exist.
    std::filesystem::path licences = {};
    /// The boxes to speak through; null for real windows.
    MessageBoxes* boxes = nullptr;
    /// How much and how often the program takes from others.
    Bounds bounds = {};
    SupportDesk::Limits support = {};
    /// Where passwords may be kept; null for nowhere but the profile store.
    std::shared_ptr<Keyring> keyring = {};
    /// How long it may take to answer.
    std::chrono::milliseconds keyringLimit = std::chrono::seconds(10);
};

/// Everything of the program that is no window, in the order in which one part needs the other. Owned by the frame.
struct ClientCore
{
    using HelpOpener = std::function<void(const std::filesystem::path& file, const QString& topic)>;

    ClientCore(const Setup& setup, MessageBoxes& boxWindows, LockableInterface& interface, HelpOpener showHelp);

    AppFolder folder;
    UpdateTargets updateTargets;
    CodePage codePage;
    Inet inet;
    ErrorReportPage reportPage;
    clsMFD store;
    BoxQueue boxes;
    Reporter reporter;
    PictureStore pictures;
    ReplyDispatcher replies;
    Winsock wsMain{QStringLiteral("wsMain")};
    Winsock wSupport{QStringLiteral("wSupport")};
    clsWinSock link;
    LinkKeeper keeper{link};
    WindowRegistry windows{&EventWait::running};
    Permissions permissions;       ///< written by the navigation
    PluginTable plugins;           ///< written by the plugin host
    SelectedProfile selected;      ///< written by the profile list
    bool quitting = false;         ///< written by the frame
    bool updatesAvailable = false; ///< written by the update check
    ProblemFiles problems;         ///< written by the component check
    Components components;
    StatusSlot status;
    Preferences preferences; ///< written by the options
    Client client;
    KeptPasswords passwords; ///< whether they go to the keyring is written by the options
    PluginHost pluginHost;
    UpdateServices updates; ///< the location and its key are written by the options

private:
    bool isLoadedPlugin(const std::filesystem::path& file) const;
    PluginAccess pluginAccess();
    HelperServices services(HelpOpener showHelp);
};
