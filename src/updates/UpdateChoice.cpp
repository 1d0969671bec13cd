#include "updates/UpdateChoice.h"

#include "platform/system/CodePage.h"
#include "ui/Grid.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QShortcut>
#include <QStyleOptionButton>

#include <algorithm>
#include <array>
#include <utility>

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
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { Q_EMIT reasonChanged(m_reasons.value(selectedRow())); });
    clear();
}

void UpdateChoice::clear()
{
    m_files.clear();
    m_reasons.clear();
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
    std::vector<GridRow> grid;
    const auto text = [this](const std::string& version) { return m_codePage.toText(version); };
    addGroup(grid, u"Updated Files Available"_s, found.updated, true, [&](const Candidate& file) {
        return u"newer: version %1 is offered, %2 is here"_s.arg(text(file.record.version), text(file.local.version));
    });
    addGroup(grid, u"New Files Available"_s, found.added, true,
             [](const Candidate&) { return u"new: there is no such file here"_s; });
    addGroup(grid, u"Changed Files"_s, found.changed, false, [](const Candidate& file) {
        return u"changed: it has no version, %1 bytes are offered, %2 are here"_s.arg(file.record.size)
            .arg(file.local.size);
    });
    if (found.isEmpty()) {
        if (found.refused.empty())
            layColumns(messageColumn);
        m_files.emplace_back();
        m_reasons += QString();
        grid.push_back(
            {.cells = {u"No Updates Available!"_s}, .pictures = {}, .data = Title, .title = !found.refused.empty()});
    }
    addRefused(grid, found.refused);
    rows().setRows(std::move(grid));
    if (!found.isEmpty())
        selectRow(1);
}

void UpdateChoice::addTitle(std::vector<GridRow>& grid, const QString& title)
{
    grid.push_back({.cells = {title, title, title, title}, .pictures = {}, .data = Title, .title = true});
    m_files.emplace_back();
    m_reasons += QString();
}

GridRow UpdateChoice::rowOf(const UpdateRecord& record) const
{
    return {.cells = {{},
                      m_codePage.toText(record.name),
                      m_codePage.toText(record.version),
                      m_codePage.toText(record.type)},
            .pictures = {},
            .data = Title,
            .toolTip = m_codePage.toText(record.description)};
}

void UpdateChoice::addGroup(std::vector<GridRow>& grid, const QString& title, const std::vector<Candidate>& files,
                            bool checked, const std::function<QString(const Candidate&)>& reason)
{
    if (files.empty())
        return;
    addTitle(grid, title);
    for (const Candidate& file : files) {
        GridRow row = rowOf(file.record);
        row.pictures = {box(checked)};
        row.data = checked ? Checked : Unchecked;
        grid.push_back(std::move(row));
        m_files.emplace_back(file);
        m_reasons += reason(file);
    }
}

void UpdateChoice::addRefused(std::vector<GridRow>& grid, const std::vector<RefusedFile>& files)
{
    if (files.empty())
        return;
    addTitle(grid, u"Refused Files"_s);
    for (const RefusedFile& file : files) {
        grid.push_back(rowOf(file.record));
        m_files.emplace_back();
        m_reasons += u"refused: "_s + refusalText(file.why);
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

std::vector<Candidate> UpdateChoice::checked() const
{
    std::vector<Candidate> wanted;
    for (std::size_t row = 0; row < m_files.size(); ++row) {
        if (m_files[row] && rows().row(static_cast<int>(row)).data == Checked)
            wanted.push_back(*m_files[row]);
    }
    return wanted;
}

std::size_t UpdateChoice::offeredCount() const
{
    return static_cast<std::size_t>(
        std::count_if(m_files.begin(), m_files.end(), [](const auto& file) { return file.has_value(); }));
}

QString refusalText(Refusal why)
{
    switch (why) {
    case Refusal::OutsideFolder:
        return u"it would lie outside the program folder"_s;
    case Refusal::OwnState:
        return u"it would be written over the program's own records"_s;
    case Refusal::NotSigned:
        return u"the signed manifest does not know it"_s;
    case Refusal::NotAsSigned:
        return u"the signed manifest says something else of it"_s;
    }
    return {};
}
