#include "live/statistics/StatisticsCells.h"

#include "live/statistics/StatisticsRows.h"
#include "platform/system/CodePage.h"
#include "ui/GridView.h"

#include <QScrollBar>

#include <algorithm>
#include <array>

namespace {

constexpr std::array columnsOfPlayers{
    GridColumn{"Slot", 400_twips, Qt::AlignLeft},         GridColumn{"Name", 1100_twips, Qt::AlignLeft},
    GridColumn{"Team", 500_twips, Qt::AlignHCenter},      GridColumn{"Shots Fired", 900_twips, Qt::AlignRight},
    GridColumn{"Kills", 500_twips, Qt::AlignRight},       GridColumn{"Deaths", 600_twips, Qt::AlignRight},
    GridColumn{"DoubleKills", 900_twips, Qt::AlignRight}, GridColumn{"Headshots", 900_twips, Qt::AlignRight},
    GridColumn{"Knifings", 700_twips, Qt::AlignRight},    GridColumn{"SniperKills", 950_twips, Qt::AlignRight},
    GridColumn{"MedSaves", 950_twips, Qt::AlignRight},    GridColumn{"Exp.", 550_twips, Qt::AlignRight},
    GridColumn{"Timer", 800_twips, Qt::AlignRight},
};

constexpr std::array columnsOfWeapons{
    GridColumn{"", 300_twips, Qt::AlignLeft},           GridColumn{"Weapon", 3900_twips, Qt::AlignLeft},
    GridColumn{"Stance", 1500_twips, Qt::AlignHCenter}, GridColumn{"Shots", 1000_twips, Qt::AlignRight},
    GridColumn{"Kills", 1000_twips, Qt::AlignRight},    GridColumn{"Exp.", 1000_twips, Qt::AlignRight},
    GridColumn{"Timer", 1000_twips, Qt::AlignRight},
};

} // namespace

std::span<const GridColumn> playerColumns()
{
    return columnsOfPlayers;
}

std::span<const GridColumn> weaponColumns()
{
    return columnsOfWeapons;
}

GridRow cellsOf(const PlayerRow& row, const CodePage& codePage)
{
    GridRow cells{.cells = {codePage.toText(row.slot), codePage.toText(row.name), codePage.toText(row.team)},
                  .pictures = {},
                  .data = 0};
    for (const std::string_view count : row.counts)
        cells.cells.push_back(codePage.toText(count));
    cells.cells.push_back(codePage.toText(timeText(row.seconds)));
    return cells;
}

GridRow cellsOf(const WeaponRow& row, const CodePage& codePage)
{
    return {.cells = {QString::number(row.position), codePage.toText(row.weapon), codePage.toText(row.stance),
                      codePage.toText(row.shots), codePage.toText(row.kills), codePage.toText(row.experience),
                      codePage.toText(timeText(row.seconds))},
            .pictures = {},
            .data = 0};
}

void refill(GridView& grid, std::size_t count, std::function<GridRow(int)> make)
{
    const int selected = grid.selectedRow();
    const int scrolled = grid.verticalScrollBar()->value();
    const int rows = static_cast<int>(count);
    grid.rows().setRows(rows, std::move(make));
    if (selected >= 0 && rows > 0)
        grid.selectRow(std::min(selected, rows - 1));
    grid.verticalScrollBar()->setValue(scrolled);
}
