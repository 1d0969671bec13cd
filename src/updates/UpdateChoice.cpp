#include "updates/UpdateChoice.h"

#include "platform/system/CodePage.h"
#include "ui/Grid.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QShortcut>
#include <QStyleOptionButton>

#include <array>

using namespace Qt::StringLiterals;

namespace {

enum Column { CheckBox, Name, Version, Type, ColumnCount };
enum RowState { Title = -1, Unchecked = 0, Checked = 1 };

constexpr std::array<GridColumn, ColumnCount> fileColumns{
    {{"", 300_twips, Qt::AlignHCenter}, {"", 1400_twips}, {"", 800_twips}, {"", 1600_twips}}};
constexpr std::array<GridColumn, 1> messageColumn{{{"", 4100_twips}}};

/// A check box as the style draws it.
QPixmap boxPicture(const QWidget& widget, bool checked)
{
    QStyleOptionButton option;
    option.initFrom(&widget);
    option.state |= checked ? QStyle::State_On : QStyle::State_Off;
    option.rect = widget.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &widget);
    option.rect.moveTo(0, 0);
    const qreal ratio = widget.devicePixelRatioF();
    QPixmap picture(option.rect.size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    widget.style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, &widget);
    return picture;
}

/// Keeps a picture under a name of its own; never shown itself.
void keepPicture(const QString& name, const QPixmap& picture, QWidget* parent)
{
    auto* box = new QLabel(parent);
    box->setObjectName(name);
    box->setPixmap(picture);
    box->hide();
}

} // namespace

UpdateChoice::UpdateChoice(const QString& name, const CodePage& codePage, QWidget* parent)
    : GridView(name, parent),
      m_codePage(codePage),
      m_checked(boxPicture(*parent, true)),
      m_unchecked(boxPicture(*parent, false))
{
    keepPicture(u"picChecked"_s, m_checked, parent);
    keepPicture(u"picUnchecked"_s, m_unchecked, parent);
    horizontalHeader()->hide();
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& cell) { toggle(cell.row()); });
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), this, nullptr, nullptr, Qt::WidgetShortcut);
    connect(space, &QShortcut::activated, this, [this] { toggle(selectedRow()); });
    clear();
}

void UpdateChoice::clear()
{
    m_records.clear();
    rows().clear();
    layColumns(fileColumns);
}

void UpdateChoice::layColumns(std::span<const GridColumn> columns)
{
    m_columns = columns;
    setColumns(columns);
    fitColumns();
}

/// The widths give proportions; together they fill the grid, with room for a scroll bar.
void UpdateChoice::fitColumns()
{
    const int room = contentsRect().width() - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    int whole = 0;
    for (const GridColumn& column : m_columns)
        whole += column.width.value;
    for (std::size_t column = 0; column < m_columns.size(); ++column)
        setColumnWidth(static_cast<int>(column), room * m_columns[column].width.value / whole);
}

void UpdateChoice::resizeEvent(QResizeEvent* event)
{
    fitColumns();
    GridView::resizeEvent(event);
}

void UpdateChoice::showCandidates(const Candidates& found)
{
    clear();
    if (found.isEmpty()) {
        layColumns(messageColumn);
        m_records.emplace_back();
        rows().setRows({GridRow{.cells = {u"No Updates Available!"_s}, .pictures = {}, .data = Title}});
        return;
    }
    std::vector<GridRow> grid;
    addGroup(grid, u"Updated Files Available"_s, found.updated, true);
    addGroup(grid, u"New Files Available"_s, found.added, true);
    addGroup(grid, u"Changed Files"_s, found.changed, false);
    rows().setRows(std::move(grid));
    selectRow(1);
}

void UpdateChoice::addGroup(std::vector<GridRow>& grid, const QString& title, const std::vector<UpdateRecord>& records,
                            bool checked)
{
    if (records.empty())
        return;
    grid.push_back({.cells = {title, title, title, title}, .pictures = {}, .data = Title, .title = true});
    m_records.emplace_back();
    for (const UpdateRecord& record : records) {
        grid.push_back({.cells = {{},
                                  m_codePage.toText(record.name),
                                  m_codePage.toText(record.version),
                                  m_codePage.toText(record.type)},
                        .pictures = {box(checked)},
                        .data = checked ? Checked : Unchecked,
                        .toolTip = m_codePage.toText(record.description)});
        m_records.emplace_back(record);
    }
}

GridPicture UpdateChoice::box(bool checked) const
{
    return {CheckBox, checked ? m_checked : m_unchecked, checked ? u"checked"_s : u"not checked"_s};
}

void UpdateChoice::toggle(int row)
{
    if (row < 0 || row >= rows().rowCount() || rows().row(row).data == Title)
        return;
    const bool checked = rows().row(row).data == Unchecked;
    rows().setPicture(row, box(checked));
    rows().setRowData(row, checked ? Checked : Unchecked);
}

std::vector<UpdateRecord> UpdateChoice::checked() const
{
    std::vector<UpdateRecord> wanted;
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (m_records[row] && rows().row(static_cast<int>(row)).data == Checked)
            wanted.push_back(*m_records[row]);
    }
    return wanted;
}
