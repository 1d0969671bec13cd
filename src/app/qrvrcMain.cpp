#include "app/qrvrcMain.h"

#include "admins/qrvrcProfileAdmin.h"
#include "app/ComponentProbe.h"
#include "app/HelpKey.h"
#include "app/Housekeeping.h"
#include "app/qrvrcAbout.h"
#include "app/qrvrcProgress.h"
#include "diagnostics/qrvrcHelp.h"
#include "diagnostics/qrvrcHelpViewer.h"
#include "link/LoginExchange.h"
#include "live/SupportDesk.h"
#include "live/qrvrcPlayerStats.h"
#include "live/qrvrcRecovery.h"
#include "live/qrvrcSupport.h"
#include "login/qrvrcLogin.h"
#include "navigation/qrvrcMenu.h"
#include "platform/PathText.h"
#include "platform/SystemName.h"
#include "plugins/ComponentCheck.h"
#include "profiles/ProfileActions.h"
#include "profiles/qrvrcFileManager.h"
#include "profiles/qrvrcModify.h"
#include "profiles/qrvrcNotePad.h"
#include "profiles/qrvrcProfilesList.h"
#include "ui/Dialogs.h"
#include "ui/Twips.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateOptions.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QStatusBar>
#include <QTime>
#include <QTimer>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize fixedSize(Twips{11400}.pixels(), Twips{7425}.pixels());
constexpr int navigationHeight = 28;

/// Whether the user does something with it: what a locked frame does not take.
bool isInput(QEvent::Type type)
{
    constexpr std::array inputs{QEvent::MouseButtonPress,
                                QEvent::MouseButtonRelease,
                                QEvent::MouseButtonDblClick,
                                QEvent::Wheel,
                                QEvent::KeyPress,
                                QEvent::KeyRelease,
                                QEvent::Shortcut,
                                QEvent::ShortcutOverride,
                                QEvent::ContextMenu,
                                QEvent::TouchBegin,
                                QEvent::TouchUpdate,
                                QEvent::TouchEnd,
                                QEvent::Close};
    return std::find(inputs.begin(), inputs.end(), type) != inputs.end();
}

} // namespace

qrvrcMain::qrvrcMain(const Setup& setup)
    : m_ownBoxes(setup.boxes ? nullptr : std::make_unique<Dialogs>(this)),
      m_core(std::make_unique<ClientCore>(
          setup, setup.boxes ? *setup.boxes : *m_ownBoxes, *this,
          [this](const std::filesystem::path& file, const QString& topic) { showHelp(file, topic); })),
      m_version(setup.version),
      m_restart{setup.program, setup.arguments}
{
    if (setup.probesComponents && !setup.program.empty())
        m_core->components.setProbe(childProcessProbe(textOf(setup.program), setup.folder));
    m_supportDesk = std::make_unique<SupportDesk>(m_core->client, m_core->wSupport, [this] { return login().host(); });
    buildFrame();
    registerWindows();
    wireLink();
}

qrvrcMain::~qrvrcMain()
{
    m_core->reporter.silence();
    m_core->link.disconnect();
    delete m_core->windows.existing(u"qrvrcSupport"_s);
    delete m_pages; // the windows go before what they refer to
    delete m_menu;
    delete m_updateAgent;
}

void qrvrcMain::buildFrame()
{
    setObjectName(u"qrvrcMain"_s);
    setWindowTitle(u"QRVRC"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    setFixedSize(fixedSize);
    auto* area = new QWidget(this);
    setCentralWidget(area);
    statusBar()->setObjectName(u"sbMain"_s);
    statusBar()->setSizeGripEnabled(false);
    m_housekeeping = new Housekeeping(*statusBar(), m_core->updatesAvailable, this);

    const QSize inner(fixedSize.width(), fixedSize.height() - statusBar()->sizeHint().height());
    m_menu = new qrvrcMenu(m_core->client, m_core->permissions, m_core->selected, m_core->plugins, area);
    m_menu->setGeometry(0, 0, inner.width(), navigationHeight);
    m_pages = new QWidget(area);
    const int beyondPages = platformFlags(systemName().name).isWindows7 ? 32 : 30; // its frames are a little thicker
    m_pages->setGeometry(1, navigationHeight, inner.width() - 3, inner.height() - beyondPages);
    m_progress = new qrvrcProgress(this);
    connect(m_menu, &qrvrcMenu::windowWanted, this, &qrvrcMain::showWindow);
    connect(m_menu, &qrvrcMenu::pluginWanted, this, &qrvrcMain::showPlugin);
}

void qrvrcMain::registerWindows()
{
    WindowRegistry& windows = m_core->windows;
    windows.add(u"qrvrcLogin"_s, [this] { return new qrvrcLogin(m_core->client, m_pages); });
    windows.add(u"qrvrcProfilesList"_s, [this] {
        const ActionHooks hooks{
            .navigation = m_menu,
            .startGame = [this](std::int32_t profileId) { startGame(profileId); },
            .showWindow = [this](const QString& name) { showWindow(name); },
        };
        auto* list = new qrvrcProfilesList(m_core->client, m_core->permissions, m_core->plugins, m_core->selected,
                                           hooks, m_pages);
        connect(list, &qrvrcProfilesList::quitRequested, this, &qrvrcMain::close);
        connect(list, &qrvrcProfilesList::pluginChosen, this, &qrvrcMain::showPlugin);
        connect(&m_core->pluginHost, &PluginHost::tableChanged, list, &qrvrcProfilesList::followPlugins);
        list->followPlugins();
        return list;
    });
    windows.add(u"qrvrcModify"_s,
                [this] { return new qrvrcModify(m_core->client, m_core->selected, m_menu, m_pages); });
    windows.add(u"qrvrcFileManager"_s,
                [this] { return new qrvrcFileManager(m_core->client, m_core->selected.id, m_pages); });
    windows.add(u"qrvrcPlayerStats"_s,
                [this] { return new qrvrcPlayerStats(m_core->client, m_core->selected, m_pages); });
    windows.add(u"qrvrcProfileAdmin"_s, [this] {
        return new qrvrcProfileAdmin(m_core->client, m_core->permissions, m_core->selected, m_pages);
    });
    windows.add(u"qrvrcNotePad"_s, [this] { return new qrvrcNotePad(m_core->client, this); });
    windows.add(u"qrvrcSupport"_s, [this] { return new qrvrcSupport(m_core->client, *m_supportDesk, this); });
    windows.add(u"qrvrcAbout"_s, [this] { return new qrvrcAbout(m_core->client, m_version, m_pages); });
    windows.add(u"qrvrcRecovery"_s,
                [this] { return new qrvrcRecovery(m_core->client, qrvrcRecovery::Limits(), this); });
    windows.add(u"qrvrcHelp"_s, [this] {
        const HelpHooks hooks{
            .showManual = [this](const std::filesystem::path& file) { openManual(file); },
            .openSupport = [this] { m_supportDesk->open(); },
            .page = m_core->reportPage,
        };
        return new qrvrcHelp(m_core->client, hooks, m_pages);
    });
    registerUpdateWindows();
}

qrvrcLogin& qrvrcMain::login()
{
    return *static_cast<qrvrcLogin*>(m_core->windows.window(u"qrvrcLogin"_s));
}

void qrvrcMain::wireLink()
{
    clsWinSock& link = m_core->link;
    m_exchange = std::make_unique<LoginExchange>(
        link, m_core->session, m_core->reporter, [this] { return login().credentials(); }, m_version);
    connect(&link, &clsWinSock::loginSucceeded, this, [this](const std::string& privileges) {
        m_core->session.user = login().credentials().user;
        m_menu->LoadMenus(true, privileges);
        if (QWidget* list = m_core->windows.existing(u"qrvrcProfilesList"_s))
            list->setEnabled(true);
    });
    connect(m_exchange.get(), &LoginExchange::completed, m_menu, &qrvrcMenu::showProfileList);
    connect(&link, &clsWinSock::progress, this, [this](qint32 total, qint32 received, bool update) {
        m_core->reporter.trap("DoProgress", [&] { m_progress->DoProgress(total, received, update); });
    });
    connect(&link, &clsWinSock::replyComplete, m_progress, &qrvrcProgress::finish);
    connect(&link, &clsWinSock::linkLost, m_progress, &qrvrcProgress::finish);
    connect(m_progress, &qrvrcProgress::stopRequested, this, [this] {
        if (m_core->client.boxes.confirm(u"Stop"_s, u"Do you want to stop receiving and disconnect from the host?"_s))
            m_core->link.close();
    });
    // Boxes come behind the socket's own doings: they are modal, and the link is to be settled before they open.
    connect(
        &link, &clsWinSock::socketFailed, this,
        [this](int number, const QString& description) {
            m_core->client.boxes.show(u"Winsock Error"_s, u"%1: %2"_s.arg(number).arg(description));
            if (m_core->link.state() == SocketState::Error)
                m_core->link.close();
        },
        Qt::QueuedConnection);
    connect(
        &link, &clsWinSock::hostUnusable, this,
        [this](const QString& text) { m_core->reporter.ReportMsg(MessageKind::Failed, text); }, Qt::QueuedConnection);
    connect(&link, &clsWinSock::closedByHost, this, [this] {
        m_housekeeping->note(
            u"The host closed the connection at %1."_s.arg(QTime::currentTime().toString(u"HH:mm:ss"_s)));
    });
    connect(&link, &clsWinSock::connected, m_housekeeping, [this] { m_housekeeping->note({}); });
}

bool qrvrcMain::MDIFormLoad()
{
    m_helpKey = std::make_unique<HelpKey>(m_core->client);
    bool goesOn = true;
    m_core->reporter.trap("MDIFormLoad", [&] {
        for (const char* folder : {"\\imgs", "\\settings"})
            m_core->folder.makeFolder(folder);
        goesOn = !updaterTakesOver();
    });
    if (!goesOn || !componentsAreChecked())
        return false;
    loadNavigation();
    // Once the first window is there: nobody waits for an update location.
    QTimer::singleShot(0, this, &qrvrcMain::askForUpdates);
    return true;
}

bool qrvrcMain::componentsAreChecked()
{
    ComponentCheck check(
        m_core->client,
        {.create = [this](const std::string& progId) { m_core->components.createObject(progId); },
         .registerFile = [this](const std::filesystem::path& file) { return m_core->components.registerFile(file); },
         .showText =
             [this](const QString& caption, const QString& text) {
                 static_cast<qrvrcNotePad*>(m_core->windows.window(u"qrvrcNotePad"_s))->showText(caption, text);
             }},
        m_core->problems);
    return check.run(this);
}

void qrvrcMain::loadNavigation()
{
    m_core->reporter.trap("frmMenu_Form_Load", [this] { m_options->load(); });
    m_core->reporter.trap("frmMenu_Form_Load", [this] {
        m_core->pluginHost.LoadPlugins();
        qrvrcLogin& window = login();
        connect(&window, &qrvrcLogin::notConnected, m_menu, [this] { m_menu->LoadMenus(false, {}); });
        connect(&window, &qrvrcLogin::disconnecting, &m_core->pluginHost, &PluginHost::forgetTracker);
        connect(&m_core->link, &clsWinSock::linkLost, m_menu, [this] { m_menu->LoadMenus(false, {}); });
        m_menu->setReady();
        m_menu->LoadMenus(false, {});
    });
}

void qrvrcMain::connectProfile(const QString& name)
{
    if (login().chooseProfile(name))
        login().connectToHost();
    else
        m_core->reporter.ReportMsg(MessageKind::Failed, u"There is no connection profile named '%1'."_s.arg(name));
}

void qrvrcMain::showWindow(const QString& name)
{
    auto* window = static_cast<WorkingWindow*>(m_core->windows.window(name));
    if (!window)
        return;
    m_core->pluginHost.hideInterface();
    if (m_front != window) {
        window->setGeometry(m_pages->rect());
        connect(window, &WorkingWindow::closeWanted, this, &qrvrcMain::closeFront, Qt::UniqueConnection);
        const QPointer<WorkingWindow> left = std::exchange(m_front, window);
        if (left)
            left->hide();
        window->show();
        if (left)
            leave(*left);
    }
    if (window->isEnabled())
        window->Form_Activate();
}

void qrvrcMain::leave(WorkingWindow& window)
{
    if (window.Form_Deactivate() == WorkingWindow::Leaving::Unloads)
        m_core->windows.unload(window.objectName());
}

void qrvrcMain::closeFront()
{
    const QPointer<WorkingWindow> closed = m_front;
    m_menu->showProfileList();
    if (closed == m_front)
        showWindow(u"qrvrcLogin"_s); // nobody is logged in, so there is no list to go back to
    if (closed && closed != m_front)
        m_core->windows.unload(closed->objectName());
}

void qrvrcMain::showPlugin(const std::string& plugin, const std::string& menuItem)
{
    m_core->reporter.trap("frmMenu_tsSM_Click",
                          [&] { m_core->pluginHost.showInterface(plugin, m_core->selected.id, menuItem, *this); });
}

void qrvrcMain::startGame(std::int32_t profileId)
{
    m_core->pluginHost.showInterface(std::string(startPlugin), profileId, {}, *this);
}

void qrvrcMain::showHelp(const std::filesystem::path& file, const QString& topic)
{
    if (QWidget* modal = QApplication::activeModalWidget()) { // nothing but what belongs to it can be used meanwhile
        auto* viewer = modal->findChild<qrvrcHelpViewer*>();
        (viewer ? viewer : new qrvrcHelpViewer(modal))->showTopic(file, topic);
        return;
    }
    if (!m_helpViewer)
        m_helpViewer = std::make_unique<qrvrcHelpViewer>();
    m_helpViewer->showTopic(file, topic);
}

void qrvrcMain::openManual(const std::filesystem::path& file)
{
#ifdef Q_OS_WIN
    QDesktopServices::openUrl(QUrl::fromLocalFile(textOf(file)));
#else
    showHelp(file, {}); // no other system brings a viewer for such files
#endif
}

void qrvrcMain::lockInterface()
{
    // A reply is handled before the next event, so locking is no matter of widgets: greying the frame would repaint it
    // twice and take the keyboard from where the user has it. What a handler opens meanwhile runs over a dead frame.
    if (m_locks++ == 0)
        qApp->installEventFilter(this);
}

void qrvrcMain::unlockInterface()
{
    if (--m_locks > 0)
        return;
    qApp->removeEventFilter(this);
    setEnabled(true);
    m_menu->unlockStrips();
}

bool qrvrcMain::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    const bool isLockedInput = m_locks > 0 && isInput(event->type()) && widget && widget->window() == this;
    return isLockedInput || QMainWindow::eventFilter(watched, event);
}

void qrvrcMain::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange && (isMaximized() || isFullScreen()))
        showNormal();
    QMainWindow::changeEvent(event);
}

void qrvrcMain::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (m_core->session.quitting)
        return;
    login().stopPolling();
    if (!m_core->client.boxes.confirm(u"Quit"_s, u"Are you sure you want to quit?"_s)) {
        login().startPolling();
        return;
    }
    m_core->session.quitting = true;
    event->accept();
    unload();
}

void qrvrcMain::unload()
{
    m_helpKey.reset();
    m_core->reporter.silence();
    m_helpViewer.reset();
    m_core->windows.unload(u"qrvrcRecovery"_s);
    m_core->link.closeSupportLink();
    m_core->link.close(); // ends the waits that are open
    QCoreApplication::quit();
}
