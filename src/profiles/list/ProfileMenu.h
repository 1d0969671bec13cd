#pragma once

#include "profiles/list/ProfileActions.h"

#include <QMenu>

#include <optional>
#include <string>
#include <vector>

class CodePage;
class ProfileGrid;
struct PluginTable;

/// The pop-up menu of the profile list. It is about the profile that it was opened for, for as long as it is open,
/// whatever the list shows meanwhile. An entry that is used without the menu, by a shortcut or a tool, is about the
/// profile that is selected.
class ProfileMenu : public QMenu
{
    Q_OBJECT

public:
    /// Opens when the grid wants it. @param grid  outlives the menu, and gives it its "Copy" entries
    ProfileMenu(ProfileGrid& grid, QWidget* parent);

    /// The entry with this objectName, also in a menu below. It must exist.
    QAction* entry(const QString& name) const;
    /// Puts the entries of the plugins at the end, in the place of those that stand there.
    void followPlugins(const PluginTable& plugins, const CodePage& codePage);
    /// Closes and forgets what it was about.
    void drop();

Q_SIGNALS:
    /// Comes behind the menu, which has the keyboard no longer then: an action may open a window or wait.
    void actionChosen(ProfileAction action, const ProfileAim& aim);
    void pluginChosen(const std::string& plugin, const std::string& menuItem, const ProfileAim& aim);

private:
    void addOwnEntries();
    void wireActions();
    void popUp(const ProfileAim& aim, const QPoint& place);
    void forgetWhenClosed();
    std::optional<ProfileAim> aim() const;

    ProfileGrid& m_grid;
    std::optional<ProfileAim> m_aim;       ///< what it was opened for last
    std::vector<QAction*> m_pluginEntries; ///< a separator and the plugins' entries
};
