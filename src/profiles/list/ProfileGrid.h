#pragma once

#include "profiles/list/ProfileActions.h"
#include "ui/Grid.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CodePage;
class ProfilePictures;

/// The grid of the profile list, one row a profile. Tells what the user chooses in it from what comes and goes.
class ProfileGrid : public GridView
{
    Q_OBJECT

public:
    /// Code page and pictures outlive the grid.
    ProfileGrid(const CodePage& codePage, ProfilePictures& pictures, QWidget* parent);

    /// Selection and scrolling stay with the profiles that go on.
    void showRecords(std::vector<ProfileRecord> records);
    /// The same rows with pictures that have come behind them.
    void showNewPictures();
    /// Leaves no rows. @param why  stands in the empty grid
    void clearRecords(const QString& why);
    /// Selects the profile with this id, or the first one when there is none such. No choice of the user's.
    void select(const std::optional<std::string>& profile);

    /// The profile with this id; nothing when there is none such.
    std::optional<ProfileRecord> find(std::string_view id) const;
    /// The profile that is selected, if one is.
    std::optional<ProfileAim> aimAtSelected() const;
    /// How often the user has chosen a row.
    unsigned choices() const { return m_choices; }

Q_SIGNALS:
    /// The user has chosen a row, perhaps the one that was selected already.
    void rowChosen();
    /// The user wants the menu of this profile, whose row he has chosen by that.
    void menuWanted(const ProfileAim& aim, const QPoint& place);

private:
    enum Column { Id, GameName, Mod, Players, Map, GameType, Timer, StatusText, Status, ColumnCount };

    void replaceRows(const RowMoves& moves);
    GridRow rowFor(const ProfileRecord& record);
    void noteChoice();
    void askForMenu(int row, const QPoint& place);

    const CodePage& m_codePage;
    ProfilePictures& m_pictures;
    std::shared_ptr<const std::vector<ProfileRecord>> m_records; ///< what is shown, row by row; never null
    unsigned m_choices = 0;
    bool m_isFilling = false; ///< rows come and go, and nobody chooses
};
