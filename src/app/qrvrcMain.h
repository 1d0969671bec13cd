#pragma once

#include "app/ClientCore.h"
#include "link/InterfaceLock.h"
#include "updates/InstallUpdates.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class Dialogs;
class HelpKey;
class Housekeeping;
class LoginExchange;
class qrvrcHelpViewer;
class qrvrcLogin;
class qrvrcMenu;
class qrvrcProfilesList;
class qrvrcProgress;
class SupportDesk;
class UpdateAgent;
class UpdateOptions;
class WorkingWindow;

/// The main frame: the navigation at its top and one working window at a time below it. Owns everything.
class qrvrcMain : public QMainWindow, public LockableInterface
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

    ClientCore& core() { return *m_core; }
    SupportDesk& supportDesk() { return *m_supportDesk; }

    void lockInterface() override;
    void unlockInterface() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildFrame();
    void registerWindows();
    void wireLink();
    void loadNavigation();
    void registerUpdateWindows();
    bool updaterTakesOver();
    void askForUpdates();
    bool componentsAreChecked();
    void showPlugin(const std::string& plugin, const std::string& menuItem);
    void startGame(std::int32_t profileId);
    void leave(WorkingWindow& window);
    void closeFront();
    void showHelp(const std::filesystem::path& file, const QString& topic);
    /// Opens a help file at its beginning, in the system's viewer where it has one.
    void openManual(const std::filesystem::path& file);
    void unload();
    qrvrcLogin& login();

    std::unique_ptr<Dialogs> m_ownBoxes;
    std::unique_ptr<ClientCore> m_core;
    std::unique_ptr<SupportDesk> m_supportDesk;
    std::unique_ptr<LoginExchange> m_exchange;
    std::unique_ptr<HelpKey> m_helpKey;
    std::unique_ptr<qrvrcHelpViewer> m_helpViewer;
    QWidget* m_pages = nullptr; ///< holds the working windows
    QPointer<WorkingWindow> m_front;
    qrvrcMenu* m_menu = nullptr;
    qrvrcProgress* m_progress = nullptr;
    Housekeeping* m_housekeeping = nullptr;
    UpdateAgent* m_updateAgent = nullptr;
    std::unique_ptr<UpdateOptions> m_options;
    std::string m_version;
    RestartOrder m_restart;
    int m_locks = 0;
};
