#include "profiles/list/ProfileMenu.h"

#include "platform/system/CodePage.h"
#include "plugins/PluginTable.h"
#include "profiles/list/ProfileGrid.h"

#include <QTimer>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct MenuEntry
{
    const char16_t* name; ///< null for a separator
    const char16_t* caption;
};

constexpr std::array beforeMode{
    MenuEntry{u"mnuAttach", u"Attach to Process"},
    MenuEntry{u"mnuDetach", u"Detach from Process"},
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuStart", u"Start Game"},
    MenuEntry{u"mnuStop", u"Stop Game"},
};
constexpr std::array modes{
    MenuEntry{u"mnuGeneral", u"General"},
    MenuEntry{u"mnuSquad", u"Squad Match"},
    MenuEntry{u"menuTournament", u"Tournament"},
};
constexpr std::array behindMode{
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuModify", u"Modify Profile"},
    MenuEntry{u"mnuDelete", u"Delete Profile"},
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuPlayers", u"View Player Stats"},
    MenuEntry{u"mnuFileManager", u"Remote File Viewer"},
    MenuEntry{nullptr, nullptr},
};

template <std::size_t count>
void addEntries(QMenu* menu, const std::array<MenuEntry, count>& entries)
{
    for (const MenuEntry& entry : entries) {
        if (!entry.name) {
            menu->addSeparator();
            continue;
        }
        // A child of the menu, so that it is found below it by its name.
        auto* action = new QAction(QString::fromUtf16(entry.caption), menu);
        action->setObjectName(QString::fromUtf16(entry.name));
        menu->addAction(action);
    }
}

QMenu* addSubmenu(QMenu* menu, const QString& name, const QString& caption)
{
    QMenu* submenu = menu->addMenu(caption);
    submenu->setObjectName(name);
    submenu->menuAction()->setObjectName(name);
    return submenu;
}

} // namespace

ProfileMenu::ProfileMenu(ProfileGrid& grid, QWidget* parent) : QMenu(parent), m_grid(grid)
{
    setObjectName(u"mnuMain"_s);
    addOwnEntries();
    wireActions();
    connect(&grid, &ProfileGrid::menuWanted, this, &ProfileMenu::popUp);
    connect(this, &QMenu::aboutToHide, this, &ProfileMenu::forgetWhenClosed);
}

void ProfileMenu::addOwnEntries()
{
    addEntries(this, beforeMode);
    QMenu* mode = addSubmenu(this, u"mnuMode"_s, u"Tracking Mode"_s);
    addEntries(mode, modes);
    // The tracker knows no request that would change the mode.
    for (QAction* entry : mode->actions())
        entry->setEnabled(false);
    addEntries(this, behindMode);
    addSubmenu(this, u"mnuCopy"_s, u"Copy"_s)->addActions(m_grid.copyActions());
}

void ProfileMenu::wireActions()
{
    static constexpr std::array<std::pair<const char16_t*, ProfileAction>, 8> actions{{
        {u"mnuAttach", ProfileAction::AttachByMenu},
        {u"mnuDetach", ProfileAction::Detach},
        {u"mnuStart", ProfileAction::StartGame},
        {u"mnuStop", ProfileAction::StopGame},
        {u"mnuModify", ProfileAction::Modify},
        {u"mnuDelete", ProfileAction::Delete},
        {u"mnuPlayers", ProfileAction::ViewPlayers},
        {u"mnuFileManager", ProfileAction::ViewFiles},
    }};
    for (const auto& [name, action] : actions) {
        connect(entry(QString::fromUtf16(name)), &QAction::triggered, this, [this, does = action] {
            if (const auto about = aim())
                QTimer::singleShot(0, this, [this, does, about = *about] { Q_EMIT actionChosen(does, about); });
        });
    }
}

QAction* ProfileMenu::entry(const QString& name) const
{
    return findChild<QAction*>(name);
}

void ProfileMenu::followPlugins(const PluginTable& plugins, const CodePage& codePage)
{
    for (QAction* entry : std::exchange(m_pluginEntries, {}))
        delete entry;
    for (const Plugin& plugin : plugins.plugins) {
        if (!plugin.isOffered() || !plugin.profileMenu)
            continue;
        if (m_pluginEntries.empty())
            m_pluginEntries.push_back(addSeparator());
        for (const std::string& item : plugin.profileMenuItems) {
            QAction* entry = addAction(codePage.toText(item).replace(u'&', u"&&"_s));
            connect(entry, &QAction::triggered, this, [this, name = plugin.name, item] {
                if (const auto about = aim())
                    QTimer::singleShot(0, this,
                                       [this, name, item, about = *about] { Q_EMIT pluginChosen(name, item, about); });
            });
            m_pluginEntries.push_back(entry);
        }
    }
}

void ProfileMenu::drop()
{
    close();
    m_aim.reset();
}

void ProfileMenu::popUp(const ProfileAim& aim, const QPoint& place)
{
    m_aim = aim;
    popup(place);
}

/// The menu hides before the entry that was chosen in it is told.
void ProfileMenu::forgetWhenClosed()
{
    QTimer::singleShot(0, this, [this] {
        if (!isVisible())
            m_aim.reset();
    });
}

std::optional<ProfileAim> ProfileMenu::aim() const
{
    return m_aim ? m_aim : m_grid.aimAtSelected();
}
