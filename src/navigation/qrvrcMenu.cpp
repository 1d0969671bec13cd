#include "navigation/qrvrcMenu.h"

#include "client/Client.h"
#include "client/SelectedProfile.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "plugins/PluginTable.h"
#include "ui/BusyPointer.h"
#include "ui/StripTabBar.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QTimer>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view background = "\\background.gif";

struct MainTab
{
    const char16_t* caption;
    const char16_t* window;
    bool needsLogin;
};

constexpr std::array mainTabs{
    MainTab{u"Login", u"qrvrcLogin", false},     MainTab{u"Profile List", u"qrvrcProfilesList", true},
    MainTab{u"Options", u"qrvrcOptions", false}, MainTab{u"Plugins", u"qrvrcPlugins", false},
    MainTab{u"Update", u"qrvrcUpdate", false},   MainTab{u"Help", u"qrvrcHelp", false},
    MainTab{u"About", u"qrvrcAbout", false},
};

enum Section { ProfileManager, ServerManager };

const QString adminKey = u"qrvrcProfileAdmin"_s;

} // namespace

/// Disables the strips and shows the busy pointer while a click is worked off.
class qrvrcMenu::StripLock
{
public:
    explicit StripLock(qrvrcMenu& menu) : m_menu(menu)
    {
        // Disabling a strip takes the keyboard from it; it belongs there again afterwards.
        m_focused = m_menu.focusWidget() && m_menu.focusWidget()->hasFocus() ? m_menu.focusWidget() : nullptr;
        for (StripTabBar* strip : {m_menu.tsSection, m_menu.tsMain, m_menu.tsSM})
            strip->setEnabled(false);
    }
    StripLock(const StripLock&) = delete;
    StripLock& operator=(const StripLock&) = delete;
    ~StripLock()
    {
        m_menu.unlockStrips();
        if (m_focused && m_focused->isVisible())
            m_focused->setFocus();
    }

private:
    qrvrcMenu& m_menu;
    QWidget* m_focused;
    BusyPointer m_pointer;
};

qrvrcMenu::qrvrcMenu(Client& client, Permissions& permissions, const SelectedProfile& selected,
                     const PluginTable& plugins, QWidget* parent)
    : QWidget(parent),
      m_client(client),
      m_permissions(permissions),
      m_selected(selected),
      m_plugins(plugins),
      tsSection(new StripTabBar(u"tsSection"_s, client.pictures, std::string(background), this)),
      tsMain(new StripTabBar(u"tsMain"_s, client.pictures, std::string(background), this)),
      tsSM(new StripTabBar(u"tsSM"_s, client.pictures, std::string(background), this))
{
    setObjectName(u"qrvrcMenu"_s);
    tsMain->setAccessibleName(u"Main sections"_s);
    tsSection->setAccessibleName(u"Manager"_s);
    tsSM->setAccessibleName(u"Server manager sections"_s);
    setTabOrder(tsMain, tsSM);
    setTabOrder(tsSM, tsSection);
    tsSM->hide();
    layOut();
    wireStrip(tsMain, "frmMenu_tsMain_Click", &qrvrcMenu::mainClicked);
    wireStrip(tsSection, "frmMenu_tsSection_Click", &qrvrcMenu::sectionClicked);
    wireStrip(tsSM, "frmMenu_tsSM_Click", &qrvrcMenu::serverManagerClicked);
}

void qrvrcMenu::layOut()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->setSpacing(0);
    for (StripTabBar* strip : {tsMain, tsSM, tsSection}) {
        strip->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding); // the background fills the row
        row->addWidget(strip, strip == tsSection ? 0 : 1);
    }
}

void qrvrcMenu::wireStrip(StripTabBar* strip, const char* procedure, void (qrvrcMenu::*clicked)())
{
    const auto run = [this, procedure, clicked] {
        if (isLive())
            m_client.reporter.trap(procedure, [this, clicked] { (this->*clicked)(); });
    };
    strip->installEventFilter(this);
    connect(strip, &QTabBar::currentChanged, this, [run](int index) {
        if (index >= 0)
            run();
    });
    connect(strip, &QTabBar::tabBarClicked, this, [strip, run](int index) {
        if (index >= 0 && index == strip->currentIndex()) // a click on another tab changes the current one
            run();
    });
}

/// A click on a locked strip is held back, not lost: the last one is followed when the strip is free.
bool qrvrcMenu::eventFilter(QObject* watched, QEvent* event)
{
    auto* strip = qobject_cast<StripTabBar*>(watched);
    if (strip && !strip->isEnabled() && event->type() == QEvent::MouseButtonPress) {
        m_heldStrip = strip;
        m_heldTab = strip->tabAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        return true;
    }
    if (strip && strip == m_heldStrip && strip->isEnabled() && event->type() == QEvent::EnabledChange)
        QTimer::singleShot(0, this, &qrvrcMenu::followHeldClick); // behind what was waited for
    return QWidget::eventFilter(watched, event);
}

void qrvrcMenu::followHeldClick()
{
    if (!m_heldStrip || !m_heldStrip->isEnabled())
        return; // followed already, or locked again
    StripTabBar* strip = std::exchange(m_heldStrip, nullptr);
    if (!strip->isVisible() || m_heldTab < 0 || m_heldTab >= strip->count())
        return;
    if (m_heldTab == strip->currentIndex())
        Q_EMIT strip->tabBarClicked(m_heldTab);
    else
        strip->setCurrentIndex(m_heldTab);
}

bool qrvrcMenu::isLive() const
{
    return m_ready && !m_client.quitting;
}

void qrvrcMenu::setReady()
{
    m_ready = true;
}

void qrvrcMenu::LoadMenus(bool loggedIn, std::string_view privileges)
{
    m_client.reporter.trap("LoadMenus", [&] {
        if (loggedIn) {
            m_permissions = Permissions();
            m_permissions = decodePermissions(privileges, m_client.bounds.shortListEntries);
            fillMain(true);
            const QSignalBlocker quiet(tsSection);
            tsSection->removeAllTabs();
            tsSection->addKeyedTab(u"Profile Manager"_s, {});
            tsSection->addKeyedTab(u"Server Manager"_s, {});
            tsSection->show();
            return;
        }
        m_permissions.isSuper = false;
        m_heldStrip = nullptr;
        if (tsSection->count() > 0) {
            const QSignalBlocker quietSection(tsSection);
            const QSignalBlocker quietServerManager(tsSM);
            tsSection->removeAllTabs();
            tsSM->removeAllTabs();
        }
        tsSection->hide();
        tsSM->hide();
        tsMain->show();
        if (tsMain->count() == 0 || isFilled())
            fillMain(false);
        selectQuietly(tsMain, 0);
        if (isLive())
            Q_EMIT windowWanted(tsMain->key(0));
    });
}

void qrvrcMenu::fillMain(bool loggedIn)
{
    const QSignalBlocker quiet(tsMain);
    const QString shown = tsMain->key(tsMain->currentIndex());
    tsMain->removeAllTabs();
    for (const MainTab& tab : mainTabs) {
        if (loggedIn || !tab.needsLogin)
            tsMain->addKeyedTab(QString::fromUtf16(tab.caption), QString::fromUtf16(tab.window));
    }
    tsMain->setCurrentIndex(std::max(0, tsMain->indexOfKey(shown)));
}

void qrvrcMenu::selectQuietly(StripTabBar* strip, int index)
{
    const QSignalBlocker quiet(strip);
    strip->setCurrentIndex(index);
}

void qrvrcMenu::showProfileList()
{
    const int index = tsMain->indexOfKey(u"qrvrcProfilesList"_s);
    if (index < 0)
        return;
    if (tsMain->currentIndex() == index)
        mainClicked();
    else
        tsMain->setCurrentIndex(index);
}

bool qrvrcMenu::pointAt(const QString& window)
{
    if (window == adminKey) {
        if (!m_selected.hasProfiles)
            return false;
        selectQuietly(tsSection, ServerManager);
        fillServerManager();
        return true;
    }
    const int own = tsMain->indexOfKey(window);
    selectQuietly(tsMain, own >= 0 ? own : tsMain->indexOfKey(u"qrvrcProfilesList"_s));
    return true;
}

bool qrvrcMenu::isFilled() const
{
    return tsMain->indexOfKey(u"qrvrcProfilesList"_s) >= 0;
}

void qrvrcMenu::unlockStrips()
{
    for (StripTabBar* strip : {tsSection, tsMain, tsSM})
        strip->setEnabled(true);
}

void qrvrcMenu::mainClicked()
{
    const StripLock lock(*this);
    Q_EMIT windowWanted(tsMain->key(tsMain->currentIndex()));
}

void qrvrcMenu::sectionClicked()
{
    const StripLock lock(*this);
    if (tsSection->currentIndex() == ServerManager)
        openServerManager();
    else
        openProfileManager();
}

void qrvrcMenu::openServerManager()
{
    if (!m_selected.hasProfiles) {
        selectQuietly(tsSection, ProfileManager);
        m_client.reporter.ReportMsg(MessageKind::Error,
                                    u"You must have atleast 1 profile created to access the 'Server Manager'!"_s);
        return;
    }
    fillServerManager();
    serverManagerClicked();
}

void qrvrcMenu::fillServerManager()
{
    const QSignalBlocker quiet(tsSM);
    tsSM->removeAllTabs();
    tsSM->addKeyedTab(u"Admin"_s, adminKey);
    for (const Plugin& plugin : m_plugins.plugins) {
        if (!plugin.isOffered() || !plugin.serverMenu)
            continue;
        for (const std::string& item : plugin.serverMenuItems)
            tsSM->addKeyedTab(m_client.codePage.toText(item), m_client.codePage.toText(plugin.name));
    }
    tsMain->hide();
    tsSM->show();
    tsSM->setCurrentIndex(0);
}

void qrvrcMenu::openProfileManager()
{
    tsSM->hide();
    tsMain->show();
    selectQuietly(tsMain, tsMain->indexOfKey(u"qrvrcProfilesList"_s));
    Q_EMIT windowWanted(u"qrvrcProfilesList"_s);
}

void qrvrcMenu::serverManagerClicked()
{
    if (tsSM->key(tsSM->currentIndex()) == adminKey) {
        Q_EMIT windowWanted(adminKey);
        return;
    }
    const std::optional<ChosenProfile> profile = m_selected.profile;
    if (!profile || profile->status < 2 || profile->status > 4) {
        selectQuietly(tsSM, 0);
        m_client.reporter.ReportMsg(
            MessageKind::ActionRequired,
            u"You must select an active profile before you can use this section of the Server Manager!"_s);
        return;
    }
    const int index = tsSM->currentIndex();
    const std::string name = m_client.codePage.toBytes(tsSM->key(index));
    if (m_plugins.find(name))
        Q_EMIT pluginWanted(name, m_client.codePage.toBytes(tsSM->tabText(index)), *profile);
}
