#pragma once

#include "client/ListNews.h"
#include "profiles/list/ListRefresh.h"
#include "profiles/list/ProfileActions.h"
#include "profiles/list/ProfileFiles.h"
#include "ui/WorkingWindow.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CutNote;
class ImageButton;
class ProfileControls;
class ProfileGrid;
class ProfileMenu;
class ProfilePictures;
class QGroupBox;
class QuietRefresh;
class RuntimeError;
struct Client;
struct Permissions;
struct PluginTable;
struct SelectedProfile;

/// The administrator's home window: every profile of the tracker with its live state, one grid row each.
class qrvrcProfilesList : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window. `selected` is written here alone.
    qrvrcProfilesList(Client& client, const Permissions& permissions, const PluginTable& plugins,
                      SelectedProfile& selected, ActionHooks hooks, QWidget* parent);
    ~qrvrcProfilesList() override;

    /// Asks the tracker for its profiles and shows them, the first one selected unless the user chooses meanwhile.
    /// Returns when they are shown or the wait for them has ended, or at once when they are being asked for already:
    /// then they are asked for once more behind that. The old rows stay in sight. Not logged in, it only empties the
    /// grid.
    void FormReload();
    /// The same behind an action: its profile is selected again unless the user has chosen since he aimed at it.
    void reloadBehind(const ProfileAim& aim);
    /// Another window opens for this profile; when the list is in front again, the profile is selected again.
    void chooseOnReturn(const ProfileAim& aim);
    /// The connection is back: the profile that was selected when it was lost is selected when the list is in front
    /// again, or behind the next call of `reloadBehindLoss`.
    void chooseAsBeforeLoss() { m_returnTo = m_lostFrom; }
    /// Reloads though the list is not in front.
    void reloadBehindLoss();
    /// Data rows shown.
    int rowCount() const;
    /// The profile with this id as the tracker told of it last; nothing when it is not in the list.
    std::optional<ProfileRecord> find(std::string_view id) const;
    /// Tells the user that the profile that he aimed at is not in the list any more.
    void tellGone(const ProfileRecord& profile);
    /// Follows a plugin table that has been built anew: the start and stop buttons, the plugins' menu entries.
    void followPlugins();

    QString helpSection() const override;
    void Form_Activate() override;

Q_SIGNALS:
    void quitRequested();
    /// What is shown has come from the tracker anew, or is gone.
    void listTold(const ListNews& news);
    /// A plugin's entry of the pop-up menu was chosen for this profile.
    void pluginChosen(const std::string& plugin, const std::string& menuItem, const ChosenProfile& profile);

private:
    void buildControls();
    void buildButtons();
    void layOut();
    void followPrivileges(const Permissions& permissions);
    void wireSignals();
    void wireActions();
    void reload(const std::optional<std::string>& profile, unsigned choice);
    void showProfiles(std::string_view body, const ReplyOwner& owner);
    void takeOutcome(const ProfileFiles::Outcome& outcome);
    void tellDamage(const std::optional<RuntimeError>& damage, bool isQuiet, std::optional<std::string>& told);
    void showNoProfiles(const QString& why);
    void followLoss();
    void updateSelection();
    void choosePlugin(const std::string& plugin, const std::string& menuItem, const ProfileAim& aim);

    Client& m_client;
    const PluginTable& m_plugins;
    SelectedProfile& m_selected;
    std::unique_ptr<ProfilePictures> m_pictures;
    std::unique_ptr<ProfileControls> m_controls;
    std::unique_ptr<ProfileActions> m_actions;
    std::unique_ptr<ListRefresh> m_refresh;
    std::optional<std::string> m_returnTo; ///< id of the profile that a window was opened for
    std::optional<std::string> m_lostFrom; ///< id of the one that was selected when the link was lost
    std::optional<ProfileAim> m_pressAim;  ///< what the button that went down last is about
    std::unique_ptr<ProfileFiles> m_files;
    std::optional<std::string> m_lastDamage; ///< of the newest list, as it was reported
    std::optional<std::string> m_lastFault;  ///< the same of its files
    bool m_isLeftOutTold = false;

    QGroupBox* fmeProfiles = nullptr;
    QGroupBox* fmeLegend = nullptr;
    ProfileGrid* fgProfiles = nullptr;
    CutNote* lblProfilesCut = nullptr;
    ImageButton* cmdAttach = nullptr;
    ImageButton* cmdDetach = nullptr;
    ImageButton* cmdStart = nullptr;
    ImageButton* cmdStop = nullptr;
    ImageButton* cmdModify = nullptr;
    ImageButton* cmdQuit = nullptr;
    ProfileMenu* mnuMain = nullptr;
    QuietRefresh* m_clock = nullptr;
};
