#pragma once

#include <QTest>

/// Adds the columns of a test's table: the type of each one's cells, and its name.
template <typename... Cells, typename... Names>
void addColumns(const Names&... names)
{
    (QTest::addColumn<Cells>(names), ...);
}

/// Adds a row to a test's table: its name, and one cell for each column, of that column's type.
template <typename... Cells>
void addRow(const char* name, const Cells&... cells)
{
    (QTest::newRow(name) << ... << cells);
}
