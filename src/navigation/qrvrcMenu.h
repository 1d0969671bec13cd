#pragma once

#include "client/PermissionRecords.h"

#include <QWidget>

#include <string_view>

class StripTabBar;
struct ChosenProfile;
struct Client;
struct PluginTable;
struct SelectedProfile;

/// The navigation at the top of the frame: `tsMain` (or `tsSM` in its place while the server manager is open) and
/// `tsSection` beside it.
class qrvrcMenu : public QWidget
{
    Q_OBJECT

public:
    /// All outlive the window. `permissions` is written here alone.
    qrvrcMenu(Client& client, Permissions& permissions, const SelectedProfile& selected, const PluginTable& plugins,
              QWidget* parent);

    /// Fills the strips for the logged-in or the logged-out client; logged in, it also turns `privileges` (Base64) into
    /// the account's permission records.
    void LoadMenus(bool loggedIn, std::string_view privileges);
    /// From now on the strips react.
    void setReady();
    /// Selects the tab "Profile List", which opens it.
    void showProfileList();
    /// Makes the strips say that this window is in front, which they do not show: that of a tab, of the server manager,
    /// or one that was opened from the profile list.
    /// @return false when it cannot be there: the server manager without a profile
    bool pointAt(const QString& window);
    /// Whether the strips are those of a client that is logged in.
    bool isFilled() const;
    /// Enables the three strips.
    void unlockStrips();

Q_SIGNALS:
    /// The window of that name belongs in front.
    void windowWanted(const QString& name);
    /// The window that a plugin's tab stands for belongs in front, for the profile that is selected.
    void pluginWanted(const std::string& plugin, const std::string& menuItem, const ChosenProfile& profile);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class StripLock;

    void layOut();
    void wireStrip(StripTabBar* strip, const char* procedure, void (qrvrcMenu::*clicked)());
    void followHeldClick();
    void mainClicked();
    void sectionClicked();
    void serverManagerClicked();
    void openServerManager();
    void fillServerManager();
    void openProfileManager();
    void fillMain(bool loggedIn);
    void selectQuietly(StripTabBar* strip, int index);
    bool isLive() const;

    Client& m_client;
    Permissions& m_permissions;
    const SelectedProfile& m_selected;
    const PluginTable& m_plugins;
    bool m_ready = false;
    StripTabBar* m_heldStrip = nullptr; ///< where the last click fell while the strips were locked; null without one
    int m_heldTab = -1;
    StripTabBar* tsSection;
    StripTabBar* tsMain;
    StripTabBar* tsSM;
};
