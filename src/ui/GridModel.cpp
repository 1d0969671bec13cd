#include "ui/GridModel.h"

#include <algorithm>

void GridModel::setColumns(std::span<const GridColumn> columns)
{
    beginResetModel();
    m_columns.clear();
    for (const GridColumn& column : columns) {
        const Qt::Alignment horizontal = column.alignment & Qt::AlignHorizontal_Mask;
        m_columns.push_back({QString::fromLatin1(column.header),
                             (horizontal ? horizontal : Qt::Alignment(Qt::AlignLeft)) | Qt::AlignVCenter});
    }
    endResetModel();
}

void GridModel::clear()
{
    setRows(std::vector<GridRow>{});
}

void GridModel::setRows(std::vector<GridRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_make = nullptr;
    m_made.clear();
    m_lazyCount = 0;
    endResetModel();
}

void GridModel::setRows(int count, std::function<GridRow(int)> make)
{
    beginResetModel();
    m_rows.clear();
    m_make = std::move(make);
    m_made.clear();
    m_lazyCount = count;
    endResetModel();
}

void GridModel::replaceRows(int count, std::function<GridRow(int)> make, const RowMoves& moves)
{
    bool areInPlace = count == rowCount();
    for (int row = 0; areInPlace && row < count; ++row)
        areInPlace = moves.newRowOf.at(static_cast<std::size_t>(row)) == row;
    if (!areInPlace)
        Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    keepMade(moves);
    m_rows.clear();
    m_make = std::move(make);
    m_lazyCount = count;
    if (areInPlace) {
        tellChanged(moves.changed);
        return;
    }
    for (const QModelIndex& before : persistentIndexList()) {
        const int row = moves.newRowOf.at(static_cast<std::size_t>(before.row()));
        changePersistentIndex(before, row < 0 ? QModelIndex() : index(row, before.column()));
    }
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

/// Moves the rows that were made to where they are now, but for those that read differently.
void GridModel::keepMade(const RowMoves& moves)
{
    std::unordered_map<int, GridRow> kept;
    for (auto& [before, made] : m_made) {
        const int row = moves.newRowOf.at(static_cast<std::size_t>(before));
        if (row >= 0 && !std::binary_search(moves.changed.begin(), moves.changed.end(), row))
            kept.emplace(row, std::move(made));
    }
    m_made = std::move(kept);
}

void GridModel::tellChanged(const std::vector<int>& rows)
{
    for (std::size_t first = 0, last = 0; first < rows.size(); first = last + 1) {
        last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1)
            ++last;
        Q_EMIT dataChanged(index(rows[first], 0), index(rows[last], columnCount() - 1));
    }
}

void GridModel::appendRow(GridRow row)
{
    const int at = rowCount();
    beginInsertRows({}, at, at);
    if (isLazy())
        m_made.emplace(m_lazyCount++, std::move(row));
    else
        m_rows.push_back(std::move(row));
    endInsertRows();
}

const GridRow& GridModel::row(int row) const
{
    if (!isLazy())
        return m_rows.at(static_cast<std::size_t>(row));
    auto found = m_made.find(row);
    if (found == m_made.end())
        found = m_made.emplace(row, m_make(row)).first;
    return found->second;
}

GridRow& GridModel::editableRow(int row)
{
    if (!isLazy())
        return m_rows.at(static_cast<std::size_t>(row));
    this->row(row);
    return m_made.at(row);
}

void GridModel::setText(int row, int column, const QString& text)
{
    std::vector<QString>& cells = editableRow(row).cells;
    const auto at = static_cast<std::size_t>(column);
    if (cells.size() <= at)
        cells.resize(at + 1);
    cells[at] = text;
    Q_EMIT dataChanged(index(row, column), index(row, column));
}

void GridModel::setPicture(int row, GridPicture picture)
{
    const QModelIndex cell = index(row, picture.column);
    std::vector<GridPicture>& pictures = editableRow(row).pictures;
    const auto old = std::find_if(pictures.begin(), pictures.end(),
                                  [&picture](const GridPicture& other) { return other.column == picture.column; });
    if (old != pictures.end())
        *old = std::move(picture);
    else
        pictures.push_back(std::move(picture));
    Q_EMIT dataChanged(cell, cell);
}

void GridModel::setRowData(int row, qint32 data)
{
    editableRow(row).data = data;
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1), {Qt::UserRole});
}

QString GridModel::text(int row, int column) const
{
    if (row < 0 || row >= rowCount() || column < 0)
        return {};
    const std::vector<QString>& cells = this->row(row).cells;
    const auto at = static_cast<std::size_t>(column);
    return at < cells.size() ? cells[at] : QString();
}

const GridPicture* GridModel::pictureAt(int row, int column) const
{
    if (row < 0 || row >= rowCount())
        return nullptr;
    for (const GridPicture& picture : this->row(row).pictures) {
        if (picture.column == column && !picture.pixmap.isNull())
            return &picture;
    }
    return nullptr;
}

Qt::Alignment GridModel::alignment(int column) const
{
    return m_columns.at(static_cast<std::size_t>(column)).alignment;
}

int GridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_lazyCount + static_cast<int>(m_rows.size());
}

int GridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const GridPicture* const picture = pictureAt(index.row(), index.column());
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), index.column());
    case Qt::UserRole:
        return row(index.row()).data;
    case Qt::TextAlignmentRole:
        return static_cast<int>(alignment(index.column()));
    case Qt::DecorationRole:
        return picture ? QVariant(picture->pixmap) : QVariant();
    case Qt::AccessibleTextRole:
        return picture && !picture->text.isEmpty() ? picture->text : text(index.row(), index.column());
    case Qt::AccessibleDescriptionRole:
        return row(index.row()).toolTip;
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return m_columns[static_cast<std::size_t>(section)].header;
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(alignment(section));
    return {};
}
