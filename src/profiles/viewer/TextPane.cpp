#include "profiles/viewer/TextPane.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPaneAccessible.h"
#include "profiles/viewer/TextPart.h"

#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>

#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr int inset = 4;        // pixels around the text
constexpr int wheelColumns = 4; // columns for a step of the horizontal bar
constexpr int dragScrollMilliseconds = 40;

TextCursor::WordBytes wordBytesOf(const CodePage& codePage)
{
    TextCursor::WordBytes words;
    for (std::size_t byte = 0; byte < words.size(); ++byte) {
        const char single = static_cast<char>(byte);
        const QChar character = codePage.toText({&single, 1})[0];
        const bool isHalf = character.isLowSurrogate(); // of a character of two bytes
        words[byte] = character.isLetterOrNumber() || character == u'_' || isHalf;
    }
    return words;
}

struct KeyMove
{
    QKeySequence::StandardKey key;
    TextCursor::Move move;
    bool selects;
};

std::optional<KeyMove> moveOf(const QKeyEvent& event)
{
    using Move = TextCursor::Move;
    static constexpr std::array moves{
        KeyMove{QKeySequence::MoveToPreviousChar, Move::Back, false},
        KeyMove{QKeySequence::SelectPreviousChar, Move::Back, true},
        KeyMove{QKeySequence::MoveToNextChar, Move::On, false},
        KeyMove{QKeySequence::SelectNextChar, Move::On, true},
        KeyMove{QKeySequence::MoveToPreviousWord, Move::WordBack, false},
        KeyMove{QKeySequence::SelectPreviousWord, Move::WordBack, true},
        KeyMove{QKeySequence::MoveToNextWord, Move::WordOn, false},
        KeyMove{QKeySequence::SelectNextWord, Move::WordOn, true},
        KeyMove{QKeySequence::MoveToPreviousLine, Move::Up, false},
        KeyMove{QKeySequence::SelectPreviousLine, Move::Up, true},
        KeyMove{QKeySequence::MoveToNextLine, Move::Down, false},
        KeyMove{QKeySequence::SelectNextLine, Move::Down, true},
        KeyMove{QKeySequence::MoveToPreviousPage, Move::PageUp, false},
        KeyMove{QKeySequence::SelectPreviousPage, Move::PageUp, true},
        KeyMove{QKeySequence::MoveToNextPage, Move::PageDown, false},
        KeyMove{QKeySequence::SelectNextPage, Move::PageDown, true},
        KeyMove{QKeySequence::MoveToStartOfLine, Move::LineBegin, false},
        KeyMove{QKeySequence::SelectStartOfLine, Move::LineBegin, true},
        KeyMove{QKeySequence::MoveToEndOfLine, Move::LineEnd, false},
        KeyMove{QKeySequence::SelectEndOfLine, Move::LineEnd, true},
        KeyMove{QKeySequence::MoveToStartOfDocument, Move::TextBegin, false},
        KeyMove{QKeySequence::SelectStartOfDocument, Move::TextBegin, true},
        KeyMove{QKeySequence::MoveToEndOfDocument, Move::TextEnd, false},
        KeyMove{QKeySequence::SelectEndOfDocument, Move::TextEnd, true},
    };
    const auto* found =
        std::find_if(moves.begin(), moves.end(), [&event](const KeyMove& move) { return event.matches(move.key); });
    return found == moves.end() ? std::nullopt : std::optional(*found);
}

} // namespace

TextPane::TextPane(const CodePage& codePage, QWidget* parent)
    : QAbstractScrollArea(parent),
      m_codePage(codePage),
      m_painter(codePage),
      m_text(std::make_shared<const LinedText>(std::string())),
      m_cursor(*m_text, m_words)
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
    m_words = wordBytesOf(m_codePage);
    m_cursor = TextCursor(*text, m_words);
    m_text = std::move(text);
    m_message.clear();
    setScrollRanges();
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    viewport()->update();
}

void TextPane::clear()
{
    setText(std::make_shared<const LinedText>(std::string()));
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
    m_painter.setFont(font());
    setScrollRanges();
}

void TextPane::setScrollRanges()
{
    const QSize room = viewport()->size();
    const int lines = static_cast<int>(m_text->lineCount());
    verticalScrollBar()->setRange(
        0, std::max(0, lines - std::max(1, (room.height() - 2 * inset) / m_painter.lineHeight())));
    verticalScrollBar()->setPageStep(visibleLines());
    verticalScrollBar()->setSingleStep(1);
    const int width =
        static_cast<int>(std::ceil(static_cast<qreal>(m_text->maxColumns() + 1) * m_painter.cell())) + 2 * inset;
    horizontalScrollBar()->setRange(0, std::max(0, width - room.width()));
    horizontalScrollBar()->setPageStep(room.width());
    horizontalScrollBar()->setSingleStep(static_cast<int>(wheelColumns * m_painter.cell()));
}

int TextPane::visibleLines() const
{
    return std::max(1, (viewport()->height() - 2 * inset) / m_painter.lineHeight());
}

QRect TextPane::characterRect(std::size_t offset) const
{
    const std::size_t line = m_text->lineOf(offset);
    const std::string_view shown = m_text->line(line);
    const std::size_t at = std::min(offset - m_text->lineStart(line), shown.size());
    const std::size_t left = columnOf(shown, at);
    const std::size_t width = at < shown.size() ? columnOf(shown, at + 1) - left : 1;
    const auto row = static_cast<int>(static_cast<std::ptrdiff_t>(line) - verticalScrollBar()->value());
    return {inset + static_cast<int>(static_cast<qreal>(left) * m_painter.cell()) - horizontalScrollBar()->value(),
            inset + row * m_painter.lineHeight(), static_cast<int>(static_cast<qreal>(width) * m_painter.cell()),
            m_painter.lineHeight()};
}

std::size_t TextPane::offsetAt(const QPoint& point) const
{
    const int row = static_cast<int>(std::floor(static_cast<double>(point.y() - inset) / m_painter.lineHeight()));
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_text->lineCount()) - 1;
    const auto line = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(verticalScrollBar()->value() + row, 0, last));
    const double column = std::round((point.x() - inset + horizontalScrollBar()->value()) / m_painter.cell());
    const std::string_view shown = m_text->line(line);
    const std::size_t at = byteAtColumn(shown, static_cast<std::size_t>(std::max(0.0, column)));
    return m_text->lineStart(line) + m_codePage.map().startOf(shown, at);
}

void TextPane::bringIntoSight()
{
    const QRect place = characterRect(cursor());
    const int row = (place.top() - inset) / m_painter.lineHeight();
    QScrollBar& lines = *verticalScrollBar();
    if (row < -visibleLines() || row >= 2 * visibleLines())
        lines.setValue(lines.value() + row - visibleLines() / 2); // from afar: into the middle
    else if (place.top() < inset)
        lines.setValue(lines.value() + row);
    else if (row >= visibleLines())
        lines.setValue(lines.value() + row - visibleLines() + 1);
    QScrollBar& columns = *horizontalScrollBar();
    const int ahead = std::min(viewport()->width() / 3, static_cast<int>(8 * m_painter.cell()));
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
    const int from = std::max(0, (event->rect().top() - inset) / m_painter.lineHeight());
    const int to = (event->rect().bottom() - inset) / m_painter.lineHeight();
    for (int row = from; row <= to && firstLine + static_cast<std::size_t>(row) < m_text->lineCount(); ++row)
        paintLine(painter, firstLine + static_cast<std::size_t>(row), inset + row * m_painter.lineHeight());
    if (hasFocus()) {
        const QRect place = characterRect(cursor());
        painter.fillRect(QRect(place.left(), place.top(), 1, m_painter.lineHeight()), palette().color(QPalette::Text));
    }
}

void TextPane::paintLine(QPainter& painter, std::size_t line, int top) const
{
    // In offsets of the line. Behind the last one nothing is selected.
    const std::size_t start = m_text->lineStart(line);
    const TextRange selection = m_cursor.selection();
    const TextRange selected{std::max(selection.begin, start) - start, std::max(selection.end, start) - start};
    m_painter.paint(painter, m_text->line(line), QPointF(inset - horizontalScrollBar()->value(), top),
                    viewport()->width(), selected, palette());
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

void TextPane::followCursor()
{
    bringIntoSight();
    viewport()->update();
    if (QAccessible::isActive()) {
        QAccessibleTextCursorEvent event(this, static_cast<int>(cursor()));
        QAccessible::updateAccessibility(&event);
    }
}

void TextPane::keepCharacterWhole(bool onward, bool selects)
{
    const std::size_t line = m_text->lineStart(m_text->lineOf(cursor()));
    const std::string_view shown = m_text->line(m_text->lineOf(cursor()));
    const std::size_t begin = line + m_codePage.map().startOf(shown, cursor() - line);
    if (begin == cursor())
        return;
    const std::size_t place = onward ? cursor() + 1 : begin;
    m_cursor.select(selects ? m_cursor.anchor() : place, place);
}

void TextPane::select(std::size_t anchor, std::size_t cursor)
{
    m_cursor.select(anchor, cursor);
    followCursor();
}

void TextPane::selectAll()
{
    // The text stays where it is: nobody wants to be taken to its end.
    m_cursor.select(m_text->size(), 0);
    viewport()->update();
}

void TextPane::copy() const
{
    putSelection(QClipboard::Clipboard);
}

/// Where what is selected can be pasted with the middle mouse button, it is.
void TextPane::offerSelection() const
{
    if (QGuiApplication::clipboard()->supportsSelection())
        putSelection(QClipboard::Selection);
}

void TextPane::putSelection(QClipboard::Mode mode) const
{
    if (!m_cursor.selection().isEmpty())
        QGuiApplication::clipboard()->setMimeData(new TextPart(m_text, m_cursor.selection(), m_codePage), mode);
}

void TextPane::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (const std::optional<KeyMove> move = moveOf(*event)) {
        const std::size_t before = cursor();
        m_cursor.go(move->move, move->selects, visibleLines() - 1);
        keepCharacterWhole(cursor() > before, move->selects);
        followCursor();
        if (move->selects)
            offerSelection();
    } else {
        event->ignore();
    }
}

void TextPane::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const std::size_t at = offsetAt(event->position().toPoint());
    select(event->modifiers().testFlag(Qt::ShiftModifier) ? m_cursor.anchor() : at, at);
}

void TextPane::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        const std::size_t at = offsetAt(event->position().toPoint());
        m_cursor.selectWord(at);
        followCursor();
        offerSelection();
    }
}

void TextPane::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint point = event->position().toPoint();
    select(m_cursor.anchor(), offsetAt(point));
    if (viewport()->rect().contains(point))
        m_dragScroll.stop();
    else if (!m_dragScroll.isActive())
        m_dragScroll.start(dragScrollMilliseconds, this);
}

void TextPane::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragScroll.stop();
    if (event->button() == Qt::LeftButton)
        offerSelection();
}

void TextPane::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_dragScroll.timerId())
        select(m_cursor.anchor(), offsetAt(viewport()->mapFromGlobal(QCursor::pos())));
    else
        QAbstractScrollArea::timerEvent(event);
}

void TextPane::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* copyEntry = menu->addAction(u"&Copy"_s, QKeySequence::Copy, this, &TextPane::copy);
    copyEntry->setEnabled(!m_cursor.selection().isEmpty());
    menu->addAction(u"Select &All"_s, QKeySequence::SelectAll, this, &TextPane::selectAll);
    menu->popup(event->globalPos());
}
