#include "profiles/list/ProfileGrid.h"

#include "platform/system/CodePage.h"
#include "profiles/list/ProfilePictures.h"

#include <QItemSelectionModel>
#include <QScopedValueRollback>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

ProfileGrid::ProfileGrid(const CodePage& codePage, ProfilePictures& pictures, QWidget* parent)
    : GridView(u"fgProfiles"_s, parent),
      m_codePage(codePage),
      m_pictures(pictures),
      m_records(std::make_shared<const std::vector<ProfileRecord>>())
{
    static constexpr std::array<GridColumn, ColumnCount> columns{{
        {"", 400_twips, Qt::AlignLeft},
        {"Game Name", 1600_twips, Qt::AlignLeft},
        {"", 350_twips, Qt::AlignHCenter},
        {"Players", 700_twips, Qt::AlignHCenter},
        {"Map", 2700_twips, Qt::AlignLeft},
        {"Gametype", 850_twips, Qt::AlignHCenter},
        {"Timer", 800_twips, Qt::AlignHCenter},
        {"Status", 2500_twips, Qt::AlignHCenter},
        {"", 300_twips, Qt::AlignHCenter},
    }};
    setAccessibleName(u"Profiles"_s);
    setColumns(columns);
    setOwnMenu([this](int row, const QPoint& place) { askForMenu(row, place); });
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &ProfileGrid::noteChoice);
    connect(this, &QTableView::pressed, this, &ProfileGrid::noteChoice);
}

void ProfileGrid::showRecords(std::vector<ProfileRecord> records)
{
    const RowMoves moves =
        movesBetween(*m_records, records, [](const ProfileRecord& record) -> std::string_view { return record.id; });
    m_records = std::make_shared<const std::vector<ProfileRecord>>(std::move(records));
    replaceRows(moves);
}

void ProfileGrid::showNewPictures()
{
    RowMoves moves;
    moves.newRowOf.resize(m_records->size());
    std::iota(moves.newRowOf.begin(), moves.newRowOf.end(), 0);
    moves.changed = moves.newRowOf;
    replaceRows(moves);
}

void ProfileGrid::replaceRows(const RowMoves& moves)
{
    const QScopedValueRollback filling(m_isFilling, true);
    const auto make = [this, shown = m_records](int row) { return rowFor(shown->at(static_cast<std::size_t>(row))); };
    rows().replaceRows(static_cast<int>(m_records->size()), make, moves);
}

void ProfileGrid::clearRecords(const QString& why)
{
    setEmptyText(why);
    rows().clear();
    m_records = std::make_shared<const std::vector<ProfileRecord>>();
}

void ProfileGrid::select(const std::optional<std::string>& profile)
{
    const QScopedValueRollback filling(m_isFilling, true);
    const auto found = std::find_if(m_records->begin(), m_records->end(),
                                    [&](const ProfileRecord& record) { return record.id == profile; });
    const int row = found == m_records->end() ? 0 : static_cast<int>(found - m_records->begin());
    if (row < rows().rowCount() && row != selectedRow())
        selectRow(row);
}

GridRow ProfileGrid::rowFor(const ProfileRecord& record)
{
    GridRow row{.cells = {m_codePage.toText(record.id),
                          m_codePage.toText(record.name),
                          {},
                          m_codePage.toText(record.players),
                          m_codePage.toText(record.map),
                          m_codePage.toText(record.gameType),
                          m_codePage.toText(record.timer),
                          m_codePage.toText(record.statusText),
                          {}},
                .pictures = {},
                .data = record.status};
    const qreal ratio = devicePixelRatioF();
    if (QPixmap mod = m_pictures.modPicture(record.modPicture, ratio); !mod.isNull())
        row.pictures.push_back({Mod, std::move(mod), m_codePage.toText(record.modPicture)});
    if (QPixmap status = m_pictures.statusPicture(record.status, ratio); !status.isNull())
        row.pictures.push_back({Status, std::move(status), ProfilePictures::statusMeaning(record.status)});
    return row;
}

std::optional<ProfileRecord> ProfileGrid::find(std::string_view id) const
{
    const auto found = std::find_if(m_records->begin(), m_records->end(),
                                    [&](const ProfileRecord& record) { return record.id == id; });
    return found == m_records->end() ? std::nullopt : std::optional(*found);
}

std::optional<ProfileAim> ProfileGrid::aimAtSelected() const
{
    const int row = selectedRow();
    if (row < 0)
        return {};
    return ProfileAim{m_records->at(static_cast<std::size_t>(row)), m_choices};
}

void ProfileGrid::noteChoice()
{
    if (m_isFilling)
        return;
    ++m_choices;
    Q_EMIT rowChosen();
}

void ProfileGrid::askForMenu(int row, const QPoint& place)
{
    selectRow(row);
    noteChoice();
    if (const auto aim = aimAtSelected())
        Q_EMIT menuWanted(*aim, place);
}
