#pragma once

#include "client/SelectedProfile.h"
#include "ui/BusyPointer.h"
#include "ui/WorkingWindow.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ElidedLabel;
class GridView;
class ImageButton;
class PlayerStatistics;
class QuietRefresh;
class QGroupBox;
class StripTabBar;
struct Client;
struct PlayerRow;
struct WeaponRow;

/// The live statistics of the players on one profile's game server: a table of the players, and one of the weapons of
/// the player who is selected in it. Asks the tracker when it is first shown and on Refresh.
class qrvrcPlayerStats : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client   outlives the window
    /// @param profile  whose players are shown
    qrvrcPlayerStats(Client& client, ChosenProfile profile, QWidget* parent);
    ~qrvrcPlayerStats() override;

    QString helpSection() const override { return QStringLiteral("View Player Stats"); }
    void Form_Activate() override;
    Leaving Form_Deactivate() override { return Leaving::Unloads; }

    /// Rebuilds the table of the chosen tab from what the tracker said last. The selected row stays selected, whoever
    /// stands in it by then, and the table stays scrolled to where it is.
    void UpdateGrid();

private:
    enum Tab { Players, Weapons };

    /// Rows with the statistics that they point into.
    template <typename Row>
    struct Table
    {
        std::shared_ptr<const PlayerStatistics> source;
        std::vector<Row> rows;
    };

    void buildControls();
    void layOut();
    void layOutOptions();
    void fitPositions();
    void wireSignals();
    void refresh();
    void refreshQuietly();
    void showWhatIsTold(std::string_view body, bool isQuiet);
    void showStatistics(std::string_view body);
    void showWhatArrived();
    void showGridOf(Tab tab);
    void fillGrid();
    void followPlayer(const std::string& player);
    void fillPlayers();
    void fillWeapons();
    void takeSelectedPlayer();
    void settlePlayer();
    bool lacksPlayer() const;
    void explain(const QString& why);
    void showTitle();
    Tab chosenTab() const;

    Client& m_client;
    const ChosenProfile m_profile;
    std::shared_ptr<const PlayerStatistics> m_statistics; ///< null until the tracker has told some
    std::shared_ptr<const Table<PlayerRow>> m_players;    ///< what fgPlayers shows; never null
    std::string m_selectedPlayer;                         ///< in fgPlayers; empty when none is
    std::string m_weaponsOf;                              ///< the player whose weapons fgWeapons shows
    int m_openRequests = 0;
    std::optional<BusyPointer> m_pointer; ///< while there are any
    bool m_isLoaded = false;              ///< the first request on this connection has been made
    bool m_isQuiet = false;               ///< the answer that comes next was asked for by the clock
    std::string m_lastDamage;             ///< of the statistics that came last, as it was reported
    QuietRefresh* m_clock = nullptr;

    StripTabBar* tsMain = nullptr;
    ElidedLabel* lblTitle = nullptr;
    GridView* fgPlayers = nullptr;
    GridView* fgWeapons = nullptr;
    QGroupBox* fmeOptions = nullptr;
    ImageButton* cmdRefresh = nullptr;
    ImageButton* cmdClose = nullptr;
};
