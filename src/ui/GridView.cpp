#include "ui/GridView.h"

#include "ui/BackgroundPicture.h"
#include "ui/GridDelegate.h"
#include "ui/PictureStore.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal gridFontPoints = 8.25; // what the column widths are made for
constexpr int rowPadding = 4;          // pixels added to a line of text
constexpr int minRowHeight = 20;       // pixels; the status pictures are 16 high
constexpr int minColumnWidth = 4;      // pixels; the style's own minimum is wider than a picture column
constexpr int emptyTextInset = 12;
constexpr int headerMargin = 6; // pixels that a header keeps free of text, both sides together
constexpr int headerFontSteps = 3;
constexpr qreal headerFontStep = 0.5;    // points
constexpr QStringView lineEnd = u"\r\n"; // of copied rows

/// Whether nothing is lost when the first cell covers the others.
bool isOneText(const GridRow& row)
{
    return std::all_of(row.cells.begin(), row.cells.end(),
                       [&row](const QString& cell) { return cell.isEmpty() || cell == row.cells.front(); });
}

} // namespace

GridView::GridView(const QString& name, QWidget* parent)
    : QTableView(parent),
      m_model(new GridModel(this)),
      m_delegate(new GridDelegate(this))
{
    setObjectName(name);
    QFont small = this->font();
    small.setPointSizeF(gridFontPoints);
    setFont(small);
    setModel(m_model);
    setItemDelegate(m_delegate);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false); // paintLines() shows it
    setTextElideMode(Qt::ElideRight);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false); // Tab leaves the grid; the arrow keys move in it
    setHorizontalScrollMode(ScrollPerPixel);

    horizontalHeader()->setMinimumSectionSize(minColumnWidth);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setTextElideMode(Qt::ElideRight);
    horizontalHeader()->setSectionsClickable(false);
    // What the columns leave of the header looks like the rows below it.
    QPalette headerGround = horizontalHeader()->palette();
    headerGround.setColor(QPalette::Window, headerGround.color(QPalette::Base));
    horizontalHeader()->setPalette(headerGround);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->hide();
    fixRowHeight();
    addCopyActions();

    connect(this, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& at) { Q_EMIT rowOpened(at.row()); });
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        clearSpans();
        spanTitles(0);
    });
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first) { spanTitles(first); });
}

GridView::~GridView() = default;

void GridView::addCopyActions()
{
    const auto add = [this](const QString& name, const QString& caption, void (GridView::*copy)() const) {
        auto* action = new QAction(caption, this);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, copy);
        m_copyActions += action;
        return action;
    };
    add(u"mnuCopyCell"_s, u"&Copy Cell"_s, &GridView::copyCell);
    QAction* row = add(u"mnuCopyRow"_s, u"Copy &Row"_s, &GridView::copyRows);
    row->setShortcut(QKeySequence::Copy); // shown in the menu; keyPressEvent takes the key
    row->setShortcutContext(Qt::WidgetShortcut);
    add(u"mnuCopyAll"_s, u"Copy &All"_s, &GridView::copyAll);
}

void GridView::setOwnMenu(std::function<void(int row, const QPoint& place)> show)
{
    m_ownMenu = std::move(show);
}

/// @return where the menu belongs on the screen
QPoint GridView::noteMenuCell(const QContextMenuEvent& event)
{
    const bool isByKey = event.reason() == QContextMenuEvent::Keyboard;
    m_menuCell = isByKey ? m_model->index(selectedRow(), currentIndex().column()) : indexAt(event.pos());
    const std::array<bool, 3> possible{m_menuCell.isValid(), selectionModel()->hasSelection(), m_model->rowCount() > 0};
    for (qsizetype at = 0; at < m_copyActions.size(); ++at)
        m_copyActions[at]->setEnabled(possible.at(static_cast<std::size_t>(at)));
    if (!isByKey || !m_menuCell.isValid())
        return event.globalPos();
    scrollTo(m_menuCell);
    return viewport()->mapToGlobal(visualRect(m_menuCell).bottomLeft());
}

void GridView::contextMenuEvent(QContextMenuEvent* event)
{
    const QPoint place = noteMenuCell(*event);
    if (m_ownMenu) {
        if (m_menuCell.isValid())
            m_ownMenu(m_menuCell.row(), place);
        return;
    }
    auto* menu = new QMenu(this);
    menu->setObjectName(u"mnuCopy"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_copyActions);
    menu->popup(place);
}

void GridView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        return copyRows();
    QTableView::keyPressEvent(event);
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (const int row = selectedRow(); isReturn && !event->isAutoRepeat() && row >= 0)
        Q_EMIT rowOpened(row);
}

void GridView::copyCell() const
{
    if (m_menuCell.isValid())
        QGuiApplication::clipboard()->setText(m_menuCell.data(Qt::AccessibleTextRole).toString());
}

void GridView::copyRows() const
{
    QModelIndexList selected = selectionModel()->selectedRows();
    std::sort(selected.begin(), selected.end());
    QStringList lines;
    for (const QModelIndex& row : selected)
        lines += lineOf(row.row());
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(lineEnd));
}

void GridView::copyAll() const
{
    QStringList headers;
    for (int column = 0; column < m_model->columnCount(); ++column)
        headers += m_model->headerData(column, Qt::Horizontal).toString();
    QStringList lines{headers.join(u'\t')};
    for (int row = 0; row < m_model->rowCount(); ++row)
        lines += lineOf(row);
    QGuiApplication::clipboard()->setText(lines.join(lineEnd));
}

/// The row as a table elsewhere takes it: pictures by their meaning, and nothing in a cell that would end it.
QString GridView::lineOf(int row) const
{
    if (m_model->row(row).title)
        return singleLine(m_model->text(row, 0));
    QStringList cells;
    for (int column = 0; column < m_model->columnCount(); ++column)
        cells += singleLine(m_model->index(row, column).data(Qt::AccessibleTextRole).toString());
    return cells.join(u'\t');
}

void GridView::setColumns(std::span<const GridColumn> columns)
{
    m_model->setColumns(columns);
    for (std::size_t column = 0; column < columns.size(); ++column)
        setColumnWidth(static_cast<int>(column), columns[column].width.pixels());
    fitHeaderFont();
}

int GridView::selectedRow() const
{
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : selected.front().row();
}

void GridView::setEmptyText(const QString& text)
{
    m_emptyText = text;
    setAccessibleDescription(text);
    if (m_model->rowCount() == 0) // otherwise it is not seen
        viewport()->update();
}

void GridView::setBackground(PictureStore& pictures, std::string layoutName)
{
    m_pictures = &pictures;
    m_background = std::move(layoutName);
    viewport()->update();
}

void GridView::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_delegate->forgetTexts();
        fixRowHeight();
        fitHeaderFont();
    }
}

void GridView::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    const QRect area = viewport()->rect();
    paintLines(painter, event->rect());
    if (m_model->rowCount() == 0 && !m_emptyText.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(area.adjusted(emptyTextInset, emptyTextInset, -emptyTextInset, -emptyTextInset),
                         Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
    }
    if (m_pictures)
        paintBackground(painter, m_pictures->scaled(m_background, area.size(), devicePixelRatioF()), area);
}

/// The lines that the table would draw point by point, which takes as long as half of its texts.
void GridView::paintLines(QPainter& painter, const QRect& dirty) const
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const auto colour =
        QColor::fromRgba(static_cast<QRgb>(style()->styleHint(QStyle::SH_Table_GridLineColor, &option, this)));
    const int columns = m_model->columnCount();
    const int left = -horizontalHeader()->offset();
    for (int row = qMax(0, rowAt(dirty.top())); row < m_model->rowCount(); ++row) {
        const QRect whole(left, rowViewportPosition(row), horizontalHeader()->length(), rowHeight(row));
        if (whole.top() > dirty.bottom())
            break;
        painter.fillRect(whole.adjusted(0, whole.height() - gridLineWidth, 0, 0), colour);
        for (int column = columnSpan(row, 0) - 1; column < columns; ++column) {
            const int end = columnViewportPosition(column) + columnWidth(column);
            painter.fillRect(end - gridLineWidth, whole.top(), gridLineWidth, whole.height(), colour);
        }
    }
}

void GridView::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    if (m_pictures)
        viewport()->update(); // the picture stays where it is while the rows move over it
}

void GridView::fixRowHeight()
{
    const int height = qMax(minRowHeight, fontMetrics().height() + rowPadding);
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
}

/// The widths are made for small fonts: a header that would not fit gets a smaller one, within reason.
void GridView::fitHeaderFont()
{
    QFont fitting = font();
    const auto fits = [this, &fitting] {
        const QFontMetrics metrics(fitting);
        for (int column = 0; column < m_model->columnCount(); ++column) {
            const QString text = m_model->headerData(column, Qt::Horizontal).toString();
            if (metrics.horizontalAdvance(text) + headerMargin > columnWidth(column))
                return false;
        }
        return true;
    };
    for (int step = 0; step < headerFontSteps && !fits(); ++step)
        fitting.setPointSizeF(fitting.pointSizeF() - headerFontStep);
    horizontalHeader()->setFont(fitting);
}

void GridView::spanTitles(int firstRow)
{
    const int columns = m_model->isLazy() ? 0 : m_model->columnCount();
    for (int row = firstRow; columns > 1 && row < m_model->rowCount(); ++row) {
        if (m_model->row(row).title && isOneText(m_model->row(row)))
            setSpan(row, 0, 1, columns);
    }
}
