#pragma once

#include "ui/Grid.h"

#include <span>

class CodePage;
struct PlayerRow;
struct WeaponRow;

// How the two tables of the statistics look: their columns, and the cells of a row.
std::span<const GridColumn> playerColumns();
std::span<const GridColumn> weaponColumns();
GridRow cellsOf(const PlayerRow& row, const CodePage& codePage);
GridRow cellsOf(const WeaponRow& row, const CodePage& codePage);
