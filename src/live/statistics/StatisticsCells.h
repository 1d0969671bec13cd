#pragma once

#include "ui/Grid.h"

#include <cstddef>
#include <functional>
#include <span>

class CodePage;
class GridView;
struct PlayerRow;
struct WeaponRow;

// How the two tables of the statistics look: their columns, and the cells of a row.
std::span<const GridColumn> playerColumns();
std::span<const GridColumn> weaponColumns();
GridRow cellsOf(const PlayerRow& row, const CodePage& codePage);
GridRow cellsOf(const WeaponRow& row, const CodePage& codePage);

/// Replaces the rows and leaves selection and view where they are.
void refill(GridView& grid, std::size_t count, std::function<GridRow(int)> make);
