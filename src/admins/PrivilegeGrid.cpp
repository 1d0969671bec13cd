#include "admins/PrivilegeGrid.h"

#include "platform/system/CodePage.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionButton>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = ChecklistRow::Kind;

constexpr int boxSize = 14; // pixels

/// What the font Wingdings draws as a box.
QString glyph(bool granted)
{
    return granted ? u"\u00fe"_s : u"q"_s;
}

} // namespace

PrivilegeGrid::PrivilegeGrid(const QString& name, const CodePage& codePage, QWidget* parent)
    : GridView(name, parent),
      m_codePage(codePage)
{
    static constexpr std::array<GridColumn, ColumnCount> columns{{
        {"", 400_twips, Qt::AlignHCenter},
        {"", 3550_twips, Qt::AlignLeft},
    }};
    setColumns(columns);
    horizontalHeader()->hide();
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void PrivilegeGrid::showReceived(Checklist received)
{
    Checklist unchanged = received;
    showEdited(std::move(received), std::move(unchanged));
}

void PrivilegeGrid::showReceivedKeepingEdits(Checklist received)
{
    Checklist edited = withEdits(received, m_received, m_rows);
    showEdited(std::move(received), std::move(edited));
}

void PrivilegeGrid::showEdited(Checklist received, Checklist edited)
{
    m_received = std::move(received);
    showRows(std::move(edited));
}

void PrivilegeGrid::showRows(Checklist rows)
{
    m_rows = std::move(rows);
    std::vector<GridRow> shown;
    shown.reserve(m_rows.size());
    for (const ChecklistRow& row : m_rows)
        shown.push_back(gridRow(row));
    const int scrolled = verticalScrollBar()->value();
    this->rows().setRows(std::move(shown));
    verticalScrollBar()->setValue(scrolled);
}

GridRow PrivilegeGrid::gridRow(const ChecklistRow& row)
{
    if (row.kind == Kind::Privilege)
        return {.cells = {glyph(row.granted), m_codePage.toText(row.name)}, .pictures = {box(row.granted)}};
    return {.cells = {m_codePage.toText(row.heading), m_codePage.toText(row.name)},
            .pictures = {},
            .title = row.kind == Kind::Section};
}

GridPicture PrivilegeGrid::box(bool granted)
{
    QPixmap& picture = m_boxes[granted ? 1 : 0];
    if (picture.isNull()) {
        const qreal ratio = devicePixelRatioF();
        picture = QPixmap(QSize(boxSize, boxSize) * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QStyleOptionButton option;
        option.initFrom(this);
        option.rect = QRect(0, 0, boxSize, boxSize);
        option.state = QStyle::State_Enabled | (granted ? QStyle::State_On : QStyle::State_Off);
        QPainter painter(&picture);
        style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
    }
    return {Box, picture, granted ? u"granted"_s : u"not granted"_s};
}

void PrivilegeGrid::AddCheckBox(int row, char state)
{
    const bool granted = state == '1';
    rows().setText(row, Box, glyph(granted));
    rows().setPicture(row, box(granted));
}

void PrivilegeGrid::toggle(int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= m_rows.size())
        return;
    Checklist changed = toggled(m_rows, static_cast<std::size_t>(row));
    for (std::size_t at = 0; at < changed.size(); ++at) {
        if (changed[at] != m_rows[at])
            AddCheckBox(static_cast<int>(at), changed[at].granted ? '1' : '0');
    }
    m_rows = std::move(changed);
}

void PrivilegeGrid::toggleAt(const QMouseEvent& event)
{
    const QModelIndex under = indexAt(event.position().toPoint());
    if (event.button() == Qt::LeftButton && under.isValid() && under.column() == Box)
        toggle(under.row());
}

void PrivilegeGrid::mousePressEvent(QMouseEvent* event)
{
    GridView::mousePressEvent(event);
    toggleAt(*event);
}

void PrivilegeGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    GridView::mouseDoubleClickEvent(event);
    toggleAt(*event); // the second of two quick clicks counts like any other
}

void PrivilegeGrid::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier)
        toggle(selectedRow());
    else
        GridView::keyPressEvent(event);
}

void PrivilegeGrid::focusInEvent(QFocusEvent* event)
{
    GridView::focusInEvent(event);
    if (event->reason() == Qt::MouseFocusReason || selectedRow() >= 0)
        return;
    // Who comes by keyboard stands on a box at once.
    const auto first =
        std::find_if(m_rows.begin(), m_rows.end(), [](const ChecklistRow& row) { return row.kind == Kind::Privilege; });
    if (first != m_rows.end())
        selectRow(static_cast<int>(first - m_rows.begin()));
}

void PrivilegeGrid::changeEvent(QEvent* event)
{
    GridView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        std::fill(std::begin(m_boxes), std::end(m_boxes), QPixmap());
        showRows(m_rows); // the boxes are painted by style and palette
    }
}
