// What is seen of the text. How it is moved in and selected is in TextPaneInput.cpp.

#include "profiles/viewer/TextPane.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPaneAccessible.h"

#include <QEvent>
#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace {

constexpr int inset = 4;        // pixels around the text
constexpr int wheelColumns = 4; // columns for a step of the horizontal bar
constexpr qreal widthSlack = 0.05;

/// Codes without a character, and characters that cannot be seen.
bool isBlind(char16_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0xAD;
}

} // namespace

TextPane::TextPane(const CodePage& codePage, QWidget* parent)
    : QAbstractScrollArea(parent),
      m_codePage(codePage),
      m_text(std::make_shared<const LinedText>(std::string()))
{
    installTextPaneAccessible();
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setBackgroundRole(QPalette::Base);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    measure();
}

TextPane::~TextPane() = default;

void TextPane::setText(std::shared_ptr<const LinedText> text)
{
    m_text = std::move(text);
    m_anchor = m_cursor = m_column = 0;
    m_message.clear();
    setScrollRanges();
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    viewport()->update();
    Q_EMIT selectionChanged();
}

void TextPane::setMessage(const QString& message)
{
    m_message = message;
    setAccessibleDescription(message);
    viewport()->update();
}

QString TextPane::characters(std::size_t begin, std::size_t end) const
{
    return m_codePage.toText(std::string_view(m_text->bytes()).substr(begin, end - begin));
}

void TextPane::measure()
{
    constexpr int sample = 64;
    const QFontMetricsF metrics(font());
    m_cell = metrics.horizontalAdvance(QString(sample, u'0')) / sample;
    m_lineHeight = static_cast<int>(std::ceil(metrics.lineSpacing()));
    for (std::size_t byte = 0; byte < m_fitsCell.size(); ++byte) {
        const char single = static_cast<char>(byte);
        const QString character = m_codePage.toText({&single, 1});
        m_fitsCell[byte] =
            !isBlind(character[0].unicode()) &&
            std::abs(metrics.horizontalAdvance(QString(sample, character[0])) - sample * m_cell) < sample * widthSlack;
    }
    setScrollRanges();
}

void TextPane::setScrollRanges()
{
    const QSize room = viewport()->size();
    const int lines = static_cast<int>(m_text->lineCount());
    verticalScrollBar()->setRange(0, std::max(0, lines - std::max(1, (room.height() - 2 * inset) / m_lineHeight)));
    verticalScrollBar()->setPageStep(visibleLines());
    verticalScrollBar()->setSingleStep(1);
    const int width = static_cast<int>(std::ceil(static_cast<qreal>(m_text->maxColumns() + 1) * m_cell)) + 2 * inset;
    horizontalScrollBar()->setRange(0, std::max(0, width - room.width()));
    horizontalScrollBar()->setPageStep(room.width());
    horizontalScrollBar()->setSingleStep(static_cast<int>(wheelColumns * m_cell));
}

int TextPane::visibleLines() const
{
    return std::max(1, (viewport()->height() - 2 * inset) / m_lineHeight);
}

QRect TextPane::characterRect(std::size_t offset) const
{
    const std::size_t line = m_text->lineOf(offset);
    const std::string_view shown = m_text->line(line);
    const std::size_t at = std::min(offset - m_text->lineStart(line), shown.size());
    const std::size_t left = columnOf(shown, at);
    const std::size_t width = at < shown.size() ? columnOf(shown, at + 1) - left : 1;
    const auto row = static_cast<int>(static_cast<std::ptrdiff_t>(line) - verticalScrollBar()->value());
    return {inset + static_cast<int>(static_cast<qreal>(left) * m_cell) - horizontalScrollBar()->value(),
            inset + row * m_lineHeight, static_cast<int>(static_cast<qreal>(width) * m_cell), m_lineHeight};
}

std::size_t TextPane::offsetAt(const QPoint& point) const
{
    const int row = static_cast<int>(std::floor(static_cast<double>(point.y() - inset) / m_lineHeight));
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_text->lineCount()) - 1;
    const auto line = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(verticalScrollBar()->value() + row, 0, last));
    const double column = std::round((point.x() - inset + horizontalScrollBar()->value()) / m_cell);
    return m_text->lineStart(line) + byteAtColumn(m_text->line(line), static_cast<std::size_t>(std::max(0.0, column)));
}

void TextPane::bringIntoSight()
{
    const QRect place = characterRect(m_cursor);
    const int row = (place.top() - inset) / m_lineHeight;
    QScrollBar& lines = *verticalScrollBar();
    if (row < -visibleLines() || row >= 2 * visibleLines())
        lines.setValue(lines.value() + row - visibleLines() / 2); // from afar: into the middle
    else if (place.top() < inset)
        lines.setValue(lines.value() + row);
    else if (row >= visibleLines())
        lines.setValue(lines.value() + row - visibleLines() + 1);
    QScrollBar& columns = *horizontalScrollBar();
    const int ahead = std::min(viewport()->width() / 3, static_cast<int>(8 * m_cell));
    if (place.left() < inset)
        columns.setValue(columns.value() + place.left() - inset - ahead);
    else if (place.right() > viewport()->width() - inset)
        columns.setValue(columns.value() + place.right() - viewport()->width() + inset + ahead);
}

void TextPane::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    if (!m_message.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_message);
        return;
    }
    const auto firstLine = static_cast<std::size_t>(verticalScrollBar()->value());
    const int from = std::max(0, (event->rect().top() - inset) / m_lineHeight);
    const int to = (event->rect().bottom() - inset) / m_lineHeight;
    for (int row = from; row <= to && firstLine + static_cast<std::size_t>(row) < m_text->lineCount(); ++row)
        paintLine(painter, firstLine + static_cast<std::size_t>(row), inset + row * m_lineHeight);
    if (hasFocus()) {
        const QRect place = characterRect(m_cursor);
        painter.fillRect(QRect(place.left(), place.top(), 1, m_lineHeight), palette().color(QPalette::Text));
    }
}

void TextPane::paintLine(QPainter& painter, std::size_t line, int top) const
{
    const std::string_view shown = m_text->line(line);
    const std::size_t start = m_text->lineStart(line);
    const qreal origin = inset - horizontalScrollBar()->value();
    const auto leftOf = [&](std::size_t column) { return origin + static_cast<qreal>(column) * m_cell; };
    const auto isSelected = [&](std::size_t at) {
        return start + at >= selectionBegin() && start + at < selectionEnd();
    };
    const qreal baseline = top + QFontMetricsF(font()).ascent();
    const QColor pale = palette().color(QPalette::PlaceholderText);
    const auto columnInSight = [&](qreal x) { return static_cast<std::size_t>(std::max(0.0, (x - origin) / m_cell)); };
    const std::size_t lastColumn = columnInSight(viewport()->width()) + 1;
    std::size_t at = byteAtColumn(shown, columnInSight(0));
    at -= std::min<std::size_t>(at, 1);
    std::size_t column = columnOf(shown, at);
    while (at < shown.size() && column <= lastColumn) {
        // A run of characters that look alike is painted at once; those of other widths have a column each all the
        // same.
        const bool selected = isSelected(at);
        const auto fits = [&](std::size_t which) { return m_fitsCell[static_cast<unsigned char>(shown[which])]; };
        std::size_t end = at + 1;
        while (fits(at) && end < shown.size() && column + (end - at) <= lastColumn && fits(end) &&
               isSelected(end) == selected)
            ++end;
        const std::size_t next =
            shown[at] == '\t' ? (column / LinedText::tabColumns + 1) * LinedText::tabColumns : column + (end - at);
        const QRectF cell(leftOf(column), top, static_cast<qreal>(next - column) * m_cell, m_lineHeight);
        if (selected)
            painter.fillRect(cell, palette().color(QPalette::Highlight));
        const QString run = m_codePage.toText(shown.substr(at, end - at));
        const QColor ink = palette().color(selected ? QPalette::HighlightedText : QPalette::Text);
        if (isBlind(run[0].unicode())) {
            painter.setPen(selected ? ink : pale);
            if (shown[at] != '\t')
                painter.drawText(cell, Qt::AlignCenter, QStringLiteral("·"));
        } else {
            painter.setPen(ink);
            if (fits(at))
                painter.drawText(QPointF(cell.left(), baseline), run);
            else
                painter.drawText(cell, Qt::AlignCenter | Qt::TextDontClip, run);
        }
        column = next;
        at = end;
    }
    // A line end has no width; half a column shows that it is selected too.
    if (at == shown.size() && line + 1 < m_text->lineCount() && isSelected(shown.size()))
        painter.fillRect(QRectF(leftOf(column), top, m_cell / 2, m_lineHeight), palette().color(QPalette::Highlight));
}

void TextPane::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    setScrollRanges();
}

void TextPane::scrollContentsBy(int, int)
{
    viewport()->update();
}

void TextPane::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        measure();
}

void TextPane::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void TextPane::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}
