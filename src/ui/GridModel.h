#pragma once

#include "ui/RowMoves.h"
#include "ui/Twips.h"

#include <QAbstractTableModel>
#include <QPixmap>

#include <functional>
#include <span>
#include <unordered_map>
#include <vector>

/// One column of a grid's layout; windows keep theirs as constexpr arrays.
struct GridColumn
{
    const char* header = ""; ///< Latin-1; what stands in row 0 of the old numbering
    Twips width;
    Qt::Alignment alignment = Qt::AlignLeft; ///< always centred vertically
};

/// A picture in a cell, shown in the middle and made smaller where it does not fit.
struct GridPicture
{
    int column = 0;
    QPixmap pixmap;
    QString text; ///< its meaning, for tool tips and screen readers; may be empty
};

/// One data row. Texts are always plain text; missing cells are empty.
struct GridRow
{
    std::vector<QString> cells;
    std::vector<GridPicture> pictures; ///< at most one a column; covers the column's text
    qint32 data = 0;                   ///< the row's data value
    QString toolTip = {};              ///< shown over the whole row; without it, tool tips show what is cut off
    bool title = false; ///< in bold; the first cell across all columns when the others are empty or the same
};

/// The rows of a grid. Row r of the old numbering, whose row 0 is the header, is model row r - 1.
class GridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setColumns(std::span<const GridColumn> columns);
    void clear();
    /// Replaces all rows with one reset, which also clears the selection.
    void setRows(std::vector<GridRow> rows);
    /// The same for `count` rows that are made when they are first looked at, so that what nobody scrolls to costs
    /// nothing. `make` is called at most once a row until the next reset; it owns what it needs, does not throw, and
    /// makes no title rows.
    void setRows(int count, std::function<GridRow(int row)> make);
    /// The same for rows of which some go on from the ones before: no reset, so selection, current cell and scrolling
    /// stay with the rows that they are on, and end with those that are gone. Rows that go on and have not changed are
    /// not made anew.
    void replaceRows(int count, std::function<GridRow(int row)> make, const RowMoves& moves);
    void appendRow(GridRow row);
    /// Row and column must exist; so for the next two.
    void setText(int row, int column, const QString& text);
    void setPicture(int row, GridPicture picture);
    void setRowData(int row, qint32 data);

    /// The row must exist; valid until the rows change.
    const GridRow& row(int row) const;
    /// Whether the rows are made when they are looked at.
    bool isLazy() const { return m_make != nullptr; }
    /// Empty for a cell that does not exist.
    QString text(int row, int column) const;
    /// Null when the cell has none.
    const GridPicture* pictureAt(int row, int column) const;
    Qt::Alignment alignment(int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    /// Qt::UserRole is the row's data value, in every column.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Column
    {
        QString header;
        Qt::Alignment alignment;
    };

    GridRow& editableRow(int row);
    void keepMade(const RowMoves& moves);
    void tellChanged(const std::vector<int>& rows);

    std::vector<Column> m_columns;
    std::vector<GridRow> m_rows;
    std::function<GridRow(int)> m_make;              ///< set when rows are made on demand; m_rows is empty then
    mutable std::unordered_map<int, GridRow> m_made; ///< those that were asked for
    int m_lazyCount = 0;
};
