#include "app/qrvrcMain.h"

#include "admins/qrvrcProfileAdmin.h"
#include "app/ComponentProbe.h"
#include "app/FrameUpdates.h"
#include "app/HelpKey.h"
#include "app/Homecoming.h"
#include "app/Housekeeping.h"
#include "app/Notices.h"
#include "app/StatusLine.h"
#include "app/qrvrcAbout.h"
#include "app/qrvrcProgress.h"
#include "diagnostics/errorlog/qrvrcHelp.h"
#include "link/LoginExchange.h"
#include "live/recovery/qrvrcRecovery.h"
#include "live/statistics/qrvrcPlayerStats.h"
#include "live/support/SupportDesk.h"
#include "live/support/qrvrcSupport.h"
#include "login/qrvrcLogin.h"
#include "navigation/qrvrcMenu.h"
#include "platform/system/PathText.h"
#include "platform/system/SystemName.h"
#include "plugins/AwaitComponent.h"
#include "plugins/ComponentCheck.h"
#include "profiles/editor/qrvrcModify.h"
#include "profiles/files/qrvrcFileManager.h"
#include "profiles/list/ProfileActions.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "profiles/viewer/qrvrcNotePad.h"
#include "ui/Dialogs.h"
#include "ui/Twips.h"

#include <QApplication>
#include <QCloseEvent>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize fixedSize(Twips{11400}.pixels(), Twips{7425}.pixels());
constexpr int navigationHeight = 28;

} // namespace

qrvrcMain::qrvrcMain(const Setup& setup)
    : m_ownBoxes(setup.boxes ? nullptr : std::make_unique<Dialogs>(this)),
      m_lock(*this, [this] { m_menu->unlockStrips(); }),
      m_core(std::make_unique<ClientCore>(
          setup, setup.boxes ? *setup.boxes : *m_ownBoxes, m_lock,
          [this](const std::filesystem::path& file, const QString& topic) { m_help.showTopic(file, topic); })),
      m_version(setup.version),
      m_licences(setup.licences)
{
    if (setup.probesComponents && !setup.program.empty())
        m_core->components.setProbe(childProcessProbe(textOf(setup.program), setup.folder));
    m_supportDesk = std::make_unique<SupportDesk>(m_core->client, m_core->wSupport, setup.support);
    buildFrame();
    wireLink();
    m_updates = std::make_unique<FrameUpdates>(*m_core, RestartOrder{setup.program, setup.arguments}, this, [this] {
        m_isQuitAgreed = true;
        close();
    });
    registerWindows();
    m_notices = std::make_unique<Notices>(*m_core, *m_supportDesk, *m_statusLine, *this);
}

qrvrcMain::~qrvrcMain()
{
    m_core->reporter.silence();
    m_core->boxes.silence();
    m_core->link.disconnect();
    m_core->windows.deleteUnloaded();
    delete m_core->windows.existing<qrvrcSupport>();
    delete m_pages; // the windows go before what they refer to
    delete m_menu;
}

void qrvrcMain::buildFrame()
{
    setObjectName(u"qrvrcMain"_s);
    setWindowTitle(u"QRVRC"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    setFixedSize(fixedSize);
    statusBar()->setObjectName(u"sbMain"_s);
    statusBar()->setSizeGripEnabled(false);
    m_statusLine = new StatusLine(*statusBar(), *m_core, this);
    new Housekeeping(*statusBar(), m_core->updatesAvailable, this);

    m_menu = new qrvrcMenu(m_core->client, m_core->permissions, m_core->selected, m_core->plugins, this);
    m_menu->setFixedHeight(navigationHeight);
    setMenuWidget(m_menu);
    m_pages = new QWidget(this);
    setCentralWidget(m_pages);
    auto* pages = new QVBoxLayout(m_pages);
    const int below = platformFlags(systemName().name).isWindows7 ? 4 : 2; // its frames are a little thicker
    pages->setContentsMargins(1, 0, 2, below);
    m_progress = new qrvrcProgress(this);
    connect(m_menu, &qrvrcMenu::windowWanted, this, &qrvrcMain::showWindow);
    connect(m_menu, &qrvrcMenu::pluginWanted, this,
            [this](const std::string& plugin, const std::string& menuItem, const ChosenProfile& profile) {
                if (const Plugin* found = m_core->plugins.find(plugin))
                    m_pluginHelp = m_core->codePage.toText(found->helpFile);
                showPlugin(plugin, menuItem, profile);
            });
}

void qrvrcMain::registerWindows()
{
    WindowRegistry& windows = m_core->windows;
    windows.add<qrvrcLogin>([this] { return new qrvrcLogin(m_core->client, m_core->passwords, m_pages); });
    windows.add<qrvrcProfilesList>([this] {
        const ActionHooks hooks{
            .navigation = m_menu,
            .startGame = [this](const ChosenProfile& profile) { startGame(profile); },
            .showWindow = [this](const QString& name, const ChosenProfile& profile) { showWindowFor(name, profile); },
        };
        auto* list = new qrvrcProfilesList(m_core->client, m_core->permissions, m_core->plugins, m_core->selected,
                                           hooks, m_pages);
        connect(list, &qrvrcProfilesList::quitRequested, this, &qrvrcMain::close);
        connect(list, &qrvrcProfilesList::pluginChosen, this, &qrvrcMain::showPlugin);
        connect(list, &qrvrcProfilesList::listTold, m_statusLine, &StatusLine::followList);
        connect(&m_core->pluginHost, &PluginHost::tableChanged, list, &qrvrcProfilesList::followPlugins);
        list->followPlugins();
        return list;
    });
    windows.add<qrvrcModify>([this] { return new qrvrcModify(m_core->client, m_menu, m_pages); });
    windows.add<qrvrcFileManager>([this] { return new qrvrcFileManager(m_core->client, m_opened, m_pages); });
    windows.add<qrvrcPlayerStats>([this] { return new qrvrcPlayerStats(m_core->client, m_opened, m_pages); });
    windows.add<qrvrcProfileAdmin>(
        [this] { return new qrvrcProfileAdmin(m_core->client, m_core->permissions, m_core->selected, m_pages); });
    windows.add<qrvrcNotePad>([this] { return new qrvrcNotePad(m_core->client, this); });
    windows.add<qrvrcSupport>([this] { return new qrvrcSupport(m_core->client, *m_supportDesk, this); });
    windows.add<qrvrcAbout>([this] { return new qrvrcAbout(m_core->client, m_version, m_licences, m_pages); });
    windows.add<qrvrcRecovery>([this] { return new qrvrcRecovery(m_core->client, qrvrcRecovery::Limits(), this); });
    windows.add<qrvrcHelp>([this] {
        const HelpHooks hooks{
            .showManual = [this](const std::filesystem::path& file) { m_help.openManual(file); },
            .openSupport = [this] { m_supportDesk->open(); },
            .page = m_core->reportPage,
        };
        return new qrvrcHelp(m_core->client, hooks, m_pages);
    });
    m_updates->registerWindows(*m_exchange, m_pages);
}

qrvrcLogin& qrvrcMain::login()
{
    return *m_core->windows.window<qrvrcLogin>();
}

void qrvrcMain::wireLink()
{
    clsWinSock& link = m_core->link;
    m_homecoming =
        std::make_unique<Homecoming>(*m_core, *m_menu,
                                     Homecoming::Hooks{.front = [this] { return m_front.data(); },
                                                       .leave = [this](WorkingWindow& window) { leave(window); },
                                                       .show = [this](const QString& name) { showWindow(name); }});
    m_exchange = std::make_unique<LoginExchange>(
        link, m_core->reporter, [this] { return m_core->plugins.isTrackerKnown; }, m_version);
    connect(&link, &clsWinSock::loginSucceeded, this, [this](const std::string& privileges) {
        m_menu->LoadMenus(true, privileges);
        if (QWidget* list = m_core->windows.existing<qrvrcProfilesList>())
            list->setEnabled(true);
    });
    connect(m_exchange.get(), &LoginExchange::completed, m_homecoming.get(), &Homecoming::arrive);
    connect(&link, &clsWinSock::progress, this, [this](qint32 total, qint32 received, bool update) {
        m_core->reporter.trap("DoProgress", [&] { m_progress->DoProgress(total, received, update); });
    });
    connect(&link, &clsWinSock::replyComplete, m_progress, &qrvrcProgress::finish);
    connect(&link, &clsWinSock::linkLost, m_progress, &qrvrcProgress::finish);
    connect(m_progress, &qrvrcProgress::stopRequested, this, &qrvrcMain::stopReceiving);
}

/// What is asked about is the reply that is under way: once it is complete there is nothing to stop.
void qrvrcMain::stopReceiving()
{
    bool isOver = false;
    const QObject watch;
    for (const auto over : {&clsWinSock::replyComplete, &clsWinSock::linkLost})
        connect(&m_core->link, over, &watch, [&isOver] { isOver = true; });
    if (m_core->client.boxes.confirm(u"Stop"_s, u"Do you want to stop receiving and disconnect from the host?"_s) &&
        !isOver) {
        m_core->keeper.yield();
        m_core->link.close();
    }
}

/// While a lost connection is tried again and again, the user stays where he has gone after the loss.
void qrvrcMain::showLoggedOut()
{
    if (m_menu->isFilled() || !m_core->keeper.isUnderWay())
        m_menu->LoadMenus(false, {});
}

bool qrvrcMain::MDIFormLoad()
{
    m_helpKey = std::make_unique<HelpKey>(m_core->client, [this] { return helpSection(); });
    bool goesOn = true;
    m_core->reporter.trap("MDIFormLoad", [&] {
        for (const char* folder : {"\\imgs", "\\settings"})
            m_core->folder.makeFolder(folder);
        goesOn = !m_updates->updaterTakesOver();
    });
    if (!goesOn || !componentsAreChecked())
        return false;
    loadNavigation();
    // Once the first window is there: nobody waits for an update location.
    QTimer::singleShot(0, this, [this] { m_updates->askAtStart(); });
    return true;
}

bool qrvrcMain::componentsAreChecked()
{
    Components& components = m_core->components;
    ComponentCheck check(
        m_core->client,
        {.test = [&components](const std::string& progId) -> ComponentFault {
             if (const ComponentFault fault =
                     awaitComponent([&](const Components::Done& done) { components.tryClass(progId, done); }))
                 return fault;
             return faultIn([&] { components.createObject(progId); });
         },
         .registerFile =
             [&components](const std::filesystem::path& file) {
                 return awaitComponent([&](const Components::Done& done) { components.registerFile(file, done); });
             },
         .showText = [this](const QString& caption,
                            const QString& text) { m_core->windows.window<qrvrcNotePad>()->showText(caption, text); }},
        m_core->problems);
    return check.run(this);
}

void qrvrcMain::loadNavigation()
{
    m_core->reporter.trap("frmMenu_Form_Load", [this] { m_updates->load(); });
    m_core->reporter.trap("frmMenu_Form_Load", [this] {
        m_core->pluginHost.LoadPlugins();
        wireLogin();
        m_menu->setReady();
        m_menu->LoadMenus(false, {});
    });
}

void qrvrcMain::wireLogin()
{
    qrvrcLogin& window = login();
    connect(&window, &qrvrcLogin::notConnected, this, &qrvrcMain::showLoggedOut);
    connect(&window, &qrvrcLogin::disconnecting, &m_core->keeper, &LinkKeeper::yield);
    connect(&window, &qrvrcLogin::disconnecting, &m_core->pluginHost, &PluginHost::forgetTracker);
    connect(&window, &qrvrcLogin::otherConnectionWanted, &m_core->keeper, &LinkKeeper::stop);
    connect(&m_core->link, &clsWinSock::linkLost, this, &qrvrcMain::showLoggedOut);
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
    auto* window = qobject_cast<WorkingWindow*>(m_core->windows.window(name));
    if (!window)
        return;
    m_core->pluginHost.hideInterface();
    m_pluginHelp.reset();
    if (m_front != window) {
        m_pages->layout()->addWidget(window);
        connect(window, &WorkingWindow::closeWanted, this, &qrvrcMain::closeFront, Qt::UniqueConnection);
        const QPointer<WorkingWindow> left = std::exchange(m_front, window);
        if (left)
            left->hide();
        window->show();
        if (left && !m_homecoming->keeps(*left))
            leave(*left);
    }
    if (window->isEnabled())
        window->Form_Activate();
}

QString qrvrcMain::helpSection() const
{
    if (m_pluginHelp)
        return *m_pluginHelp;
    return m_front ? m_front->helpSection() : QString();
}

void qrvrcMain::showWindowFor(const QString& name, const ChosenProfile& profile)
{
    m_opened = profile;
    QWidget* const window = m_core->windows.window(name);
    if (auto* editor = qobject_cast<qrvrcModify*>(window)) {
        if (!editor->open(profile))
            return;
    } else if (window == m_front) {
        m_front.clear();
        m_core->windows.unload(name);
    }
    showWindow(name);
}

void qrvrcMain::leave(WorkingWindow& window)
{
    if (window.Form_Deactivate() == WorkingWindow::Leaving::Unloads)
        m_core->windows.unload(window.objectName());
}

void qrvrcMain::closeFront()
{
    if (QApplication::activeModalWidget()) { // its window is closed behind the box, as a box lets nobody do by hand
        m_closesBehindBox = m_front;
        return;
    }
    const QPointer<WorkingWindow> closed = m_front;
    m_menu->showProfileList();
    if (closed == m_front)
        showWindow(u"qrvrcLogin"_s); // nobody is logged in, so there is no list to go back to
    if (closed && closed != m_front)
        m_core->windows.unload(closed->objectName());
}

void qrvrcMain::showPlugin(const std::string& plugin, const std::string& menuItem, const ChosenProfile& profile)
{
    m_core->reporter.trap("frmMenu_tsSM_Click",
                          [&] { m_core->pluginHost.showInterface(plugin, profile.id, menuItem, *this); });
}

void qrvrcMain::startGame(const ChosenProfile& profile)
{
    m_core->pluginHost.showInterface(std::string(startPlugin), profile.id, {}, *this);
}

bool qrvrcMain::event(QEvent* event)
{
    if (event->type() == QEvent::WindowUnblocked && m_closesBehindBox) {
        QTimer::singleShot(0, this, [this, held = std::exchange(m_closesBehindBox, nullptr)] {
            if (held && held == m_front)
                closeFront();
        });
    }
    return PluginFrame::event(event);
}

void qrvrcMain::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange && (isMaximized() || isFullScreen()))
        showNormal();
    PluginFrame::changeEvent(event);
}

void qrvrcMain::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (m_core->quitting)
        return;
    login().stopPolling();
    if (!m_isQuitAgreed && !m_core->client.boxes.confirm(u"Quit"_s, u"Are you sure you want to quit?"_s)) {
        login().startPolling();
        return;
    }
    m_core->quitting = true;
    event->accept();
    unload();
}

void qrvrcMain::unload()
{
    m_helpKey.reset();
    m_core->keeper.yield();
    m_core->reporter.silence();
    m_core->boxes.silence();
    m_help.close();
    m_core->windows.unload(u"qrvrcRecovery"_s);
    m_core->link.closeSupportLink();
    m_core->link.close(); // ends the waits that are open
    QCoreApplication::quit();
}
