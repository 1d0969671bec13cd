#pragma once

#include "ui/WorkingWindow.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class GridView;
class ImageButton;
class ProfileActions;
class ProfileControls;
class ProfilePictures;
class QAction;
class QGroupBox;
class QMenu;
class QTimer;
struct ActionHooks;
struct Client;
struct GridRow;
struct Permissions;
struct PluginTable;
struct ProfileElement;
struct ProfileRecord;
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

    /// Asks the tracker for its profiles and shows them; returns when they are shown or the wait for them has ended.
    /// The old rows stay in sight meanwhile. Not logged in, it only empties the grid.
    void FormReload();
    /// Data rows shown.
    int rowCount() const;
    /// The selected profile as the tracker told of it last; nothing when none is selected.
    std::optional<ProfileRecord> selectedRecord() const;
    /// Follows a plugin table that has been built anew: the start and stop buttons, the plugins' menu entries.
    void followPlugins();

    void Form_Activate() override;

Q_SIGNALS:
    void quitRequested();
    /// A plugin's entry of the pop-up menu was chosen.
    void pluginChosen(const std::string& plugin, const std::string& menuItem);

private:
    enum Column { Id, GameName, Mod, Players, Map, GameType, Timer, StatusText, Status, ColumnCount };

    void buildControls();
    void buildLegend();
    void placeControls();
    void buildMenu();
    void wireSignals();
    void refreshQuietly();
    void askForProfiles();
    void showProfiles(std::string_view body);
    ProfileRecord take(const ProfileElement& element);
    void showRecords(std::vector<ProfileRecord> records);
    GridRow rowFor(const ProfileRecord& record);
    void showNoProfiles(const QString& why);
    void selectRow(int row);
    void updateSelection();
    void popUpMenu(const QPoint& position);
    void menuChosen(const QAction* action);

    Client& m_client;
    const PluginTable& m_plugins;
    SelectedProfile& m_selected;
    std::unique_ptr<ProfilePictures> m_pictures;
    std::unique_ptr<ProfileControls> m_controls;
    std::unique_ptr<ProfileActions> m_actions;
    std::shared_ptr<const std::vector<ProfileRecord>> m_records; ///< what the grid shows, row by row
    std::vector<QAction*> m_pluginEntries; ///< a separator and the plugins' entries at the end of the menu
    qint32 m_keptId = 0;                   ///< the profile that a quiet refresh keeps selected; 0 selects the first
    bool m_isAsking = false;

    QGroupBox* fmeProfiles = nullptr;
    QGroupBox* fmeLegend = nullptr;
    GridView* fgProfiles = nullptr;
    ImageButton* cmdAttach = nullptr;
    ImageButton* cmdDetach = nullptr;
    ImageButton* cmdStart = nullptr;
    ImageButton* cmdStop = nullptr;
    ImageButton* cmdModify = nullptr;
    ImageButton* cmdQuit = nullptr;
    QMenu* mnuMain = nullptr;
    QMenu* mnuMode = nullptr;
    QTimer* tmrRefresh = nullptr;
};
