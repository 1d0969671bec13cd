#pragma once

#include "app/ClientCore.h"
#include "app/FrameLock.h"
#include "app/HelpWindows.h"
#include "ui/PluginFrame.h"

#include <QPointer>

#include <memory>
#include <optional>

class Dialogs;
class FrameUpdates;
class HelpKey;
class Homecoming;
class LoginExchange;
class Notices;
class qrvrcLogin;
class qrvrcMenu;
class qrvrcProfilesList;
class qrvrcProgress;
class StatusLine;
class SupportDesk;
class WorkingWindow;

/// The main frame: the navigation at its top and one working window at a time below it. Owns everything.
class qrvrcMain : public PluginFrame
{
    Q_OBJECT

public:
    explicit qrvrcMain(const Setup& setup);
    ~qrvrcMain() override;

    /// Does what a start needs before the frame is shown.
    /// @return false when the program is to end at once: an updater has taken over, or the user quits
    bool MDIFormLoad();
    /// Chooses a saved connection profile and presses Connect; says so when there is no such profile.
    void connectProfile(const QString& name);

    /// Brings the window of that name to the front, creating it on first use.
    void showWindow(const QString& name);
    /// The same for a window that belongs to a profile: it is opened anew. The editor stays as it is when the user
    /// wants to keep what he typed into it, and where it is when that belongs elsewhere.
    void showWindowFor(const QString& name, const ChosenProfile& profile);

    /// The section that F1 opens the topic of: that of the window in front, or a plugin's help file.
    QString helpSection() const;
    ClientCore& core() { return *m_core; }
    SupportDesk& supportDesk() { return *m_supportDesk; }

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildFrame();
    void registerWindows();
    void wireLink();
    void wireLogin();
    void stopReceiving();
    void showLoggedOut();
    void loadNavigation();
    bool componentsAreChecked();
    void showPlugin(const std::string& plugin, const std::string& menuItem, const ChosenProfile& profile);
    void startGame(const ChosenProfile& profile);
    void leave(WorkingWindow& window);
    void closeFront();
    void unload();
    qrvrcLogin& login();

    std::unique_ptr<Dialogs> m_ownBoxes;
    FrameLock m_lock;
    HelpWindows m_help;
    std::unique_ptr<ClientCore> m_core;
    std::unique_ptr<SupportDesk> m_supportDesk;
    std::unique_ptr<LoginExchange> m_exchange;
    std::unique_ptr<HelpKey> m_helpKey;
    QWidget* m_pages = nullptr; ///< holds the working windows
    QPointer<WorkingWindow> m_front;
    QPointer<WorkingWindow> m_closesBehindBox; ///< wants to be closed, but a box is open
    std::optional<QString> m_pluginHelp; ///< help file of the plugin whose tab is in front; none for our own windows
    ChosenProfile m_opened;              ///< the profile for which a window is being opened
    bool m_isQuitAgreed = false;         ///< the user has been asked elsewhere
    qrvrcMenu* m_menu = nullptr;
    qrvrcProgress* m_progress = nullptr;
    StatusLine* m_statusLine = nullptr;
    std::string m_version;
    std::filesystem::path m_licences; ///< folder of the texts that the about window shows
    std::unique_ptr<FrameUpdates> m_updates;
    std::unique_ptr<Notices> m_notices;
    std::unique_ptr<Homecoming> m_homecoming;
};
