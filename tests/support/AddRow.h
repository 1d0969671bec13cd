#pragma once

#include <QTest>

/// Adds a row to a test's table: its name, and one cell for each column, of that column's type.
template <typename... Cells>
void addRow(const char* name, const Cells&... cells)
{
    (QTest::newRow(name) << ... << cells);
}
