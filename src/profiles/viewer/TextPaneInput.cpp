// How the text of a pane is moved in, selected and copied. What is seen of it is in TextPane.cpp.

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

namespace {

const QString plainText = u"text/plain"_s;
constexpr int dragScrollMilliseconds = 40;

/// A part of a text for the clipboard, which becomes characters when somebody wants them.
class TextPart : public QMimeData
{
public:
    TextPart(std::shared_ptr<const LinedText> text, std::size_t begin, std::size_t end, const CodePage& codePage)
        : m_text(std::move(text)),
          m_begin(begin),
          m_end(end),
          m_codePage(codePage)
    {}

    QStringList formats() const override { return {plainText}; }
    bool hasFormat(const QString& type) const override { return type == plainText; }

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override
    {
        if (type != plainText)
            return {};
        return m_codePage.toText(std::string_view(m_text->bytes()).substr(m_begin, m_end - m_begin));
    }

private:
    std::shared_ptr<const LinedText> m_text;
    std::size_t m_begin;
    std::size_t m_end;
    CodePage m_codePage;
};

} // namespace

void TextPane::moveCursor(std::size_t to, bool keepsAnchor)
{
    const std::size_t oldBegin = selectionBegin();
    const std::size_t oldEnd = selectionEnd();
    m_cursor = std::min(to, m_text->size());
    if (!keepsAnchor)
        m_anchor = m_cursor;
    bringIntoSight();
    viewport()->update();
    if (oldBegin != selectionBegin() || oldEnd != selectionEnd())
        Q_EMIT selectionChanged();
    if (QAccessible::isActive()) {
        QAccessibleTextCursorEvent event(this, static_cast<int>(m_cursor));
        QAccessible::updateAccessibility(&event);
    }
}

void TextPane::select(std::size_t anchor, std::size_t cursor)
{
    m_anchor = std::min(anchor, m_text->size());
    moveCursor(cursor, true);
    const std::size_t line = m_text->lineOf(m_cursor);
    m_column = columnOf(m_text->line(line), m_cursor - m_text->lineStart(line));
}

void TextPane::selectAll()
{
    // The text stays where it is: nobody wants to be taken to its end.
    m_anchor = m_text->size();
    m_cursor = 0;
    viewport()->update();
    Q_EMIT selectionChanged();
}

void TextPane::copy() const
{
    if (m_anchor != m_cursor)
        QGuiApplication::clipboard()->setMimeData(new TextPart(m_text, selectionBegin(), selectionEnd(), m_codePage));
}

/// Where what is selected can be pasted with the middle mouse button, it is.
void TextPane::offerSelection() const
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && m_anchor != m_cursor)
        clipboard->setMimeData(new TextPart(m_text, selectionBegin(), selectionEnd(), m_codePage),
                               QClipboard::Selection);
}

/// CR LF is passed as one.
std::size_t TextPane::before(std::size_t offset) const
{
    const std::string& bytes = m_text->bytes();
    if (offset == 0)
        return 0;
    return offset >= 2 && bytes[offset - 1] == '\n' && bytes[offset - 2] == '\r' ? offset - 2 : offset - 1;
}

std::size_t TextPane::after(std::size_t offset) const
{
    const std::string& bytes = m_text->bytes();
    if (offset >= bytes.size())
        return bytes.size();
    return offset + 1 < bytes.size() && bytes[offset] == '\r' && bytes[offset + 1] == '\n' ? offset + 2 : offset + 1;
}

bool TextPane::isInWord(std::size_t offset) const
{
    const QChar character = m_codePage.toText(std::string_view(m_text->bytes()).substr(offset, 1)).at(0);
    return character.isLetterOrNumber() || character == u'_';
}

/// Words, too, are looked for in one line's length at most.
std::size_t TextPane::wordBegin(std::size_t offset) const
{
    const std::size_t limit = offset - std::min(offset, LinedText::maxLineBytes);
    while (offset > limit && isInWord(offset - 1))
        --offset;
    return offset;
}

std::size_t TextPane::wordEnd(std::size_t offset) const
{
    const std::size_t limit = std::min(m_text->size(), offset + LinedText::maxLineBytes);
    while (offset < limit && isInWord(offset))
        ++offset;
    return offset;
}

std::size_t TextPane::lineBelow(std::ptrdiff_t lines)
{
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_text->lineCount()) - 1;
    const std::ptrdiff_t wanted = static_cast<std::ptrdiff_t>(m_text->lineOf(m_cursor)) + lines;
    const auto line = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(wanted, 0, last));
    return m_text->lineStart(line) + byteAtColumn(m_text->line(line), m_column);
}

std::size_t TextPane::target(Move move)
{
    const std::size_t line = m_text->lineOf(m_cursor);
    const auto skip = [this](std::size_t offset, bool on) {
        // Over what stands between words, then over the word.
        std::size_t steps = LinedText::maxLineBytes;
        while (steps-- > 0 && (on ? offset < m_text->size() : offset > 0) && !isInWord(on ? offset : offset - 1))
            offset = on ? offset + 1 : offset - 1;
        return on ? wordEnd(offset) : wordBegin(offset);
    };
    switch (move) {
    case Move::Back:
        return before(m_cursor);
    case Move::On:
        return after(m_cursor);
    case Move::WordBack:
        return skip(m_cursor, false);
    case Move::WordOn:
        return skip(m_cursor, true);
    case Move::Up:
        return lineBelow(-1);
    case Move::Down:
        return lineBelow(1);
    case Move::PageUp:
        return lineBelow(1 - visibleLines());
    case Move::PageDown:
        return lineBelow(visibleLines() - 1);
    case Move::LineBegin:
        return m_text->lineStart(line);
    case Move::LineEnd:
        return m_text->lineStart(line) + m_text->line(line).size();
    case Move::TextBegin:
        return 0;
    case Move::TextEnd:
        return m_text->size();
    }
    return m_cursor;
}

void TextPane::keyPressEvent(QKeyEvent* event)
{
    struct Key
    {
        QKeySequence::StandardKey key;
        Move move;
        bool selects;
    };
    static constexpr std::array keys{
        Key{QKeySequence::MoveToPreviousChar, Move::Back, false},
        Key{QKeySequence::SelectPreviousChar, Move::Back, true},
        Key{QKeySequence::MoveToNextChar, Move::On, false},
        Key{QKeySequence::SelectNextChar, Move::On, true},
        Key{QKeySequence::MoveToPreviousWord, Move::WordBack, false},
        Key{QKeySequence::SelectPreviousWord, Move::WordBack, true},
        Key{QKeySequence::MoveToNextWord, Move::WordOn, false},
        Key{QKeySequence::SelectNextWord, Move::WordOn, true},
        Key{QKeySequence::MoveToPreviousLine, Move::Up, false},
        Key{QKeySequence::SelectPreviousLine, Move::Up, true},
        Key{QKeySequence::MoveToNextLine, Move::Down, false},
        Key{QKeySequence::SelectNextLine, Move::Down, true},
        Key{QKeySequence::MoveToPreviousPage, Move::PageUp, false},
        Key{QKeySequence::SelectPreviousPage, Move::PageUp, true},
        Key{QKeySequence::MoveToNextPage, Move::PageDown, false},
        Key{QKeySequence::SelectNextPage, Move::PageDown, true},
        Key{QKeySequence::MoveToStartOfLine, Move::LineBegin, false},
        Key{QKeySequence::SelectStartOfLine, Move::LineBegin, true},
        Key{QKeySequence::MoveToEndOfLine, Move::LineEnd, false},
        Key{QKeySequence::SelectEndOfLine, Move::LineEnd, true},
        Key{QKeySequence::MoveToStartOfDocument, Move::TextBegin, false},
        Key{QKeySequence::SelectStartOfDocument, Move::TextBegin, true},
        Key{QKeySequence::MoveToEndOfDocument, Move::TextEnd, false},
        Key{QKeySequence::SelectEndOfDocument, Move::TextEnd, true},
    };
    if (event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    for (const Key& key : keys) {
        if (!event->matches(key.key))
            continue;
        const std::size_t to = target(key.move);
        const bool keepsColumn =
            key.move == Move::Up || key.move == Move::Down || key.move == Move::PageUp || key.move == Move::PageDown;
        if (keepsColumn)
            moveCursor(to, key.selects);
        else
            select(key.selects ? m_anchor : to, to);
        if (key.selects)
            offerSelection();
        return;
    }
    event->ignore();
}

void TextPane::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const std::size_t at = offsetAt(event->position().toPoint());
    select(event->modifiers().testFlag(Qt::ShiftModifier) ? m_anchor : at, at);
}

void TextPane::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        const std::size_t at = offsetAt(event->position().toPoint());
        select(wordBegin(at), wordEnd(at));
        offerSelection();
    }
}

void TextPane::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint point = event->position().toPoint();
    select(m_anchor, offsetAt(point));
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
        select(m_anchor, offsetAt(viewport()->mapFromGlobal(QCursor::pos())));
    else
        QAbstractScrollArea::timerEvent(event);
}

void TextPane::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* copyEntry = menu->addAction(u"&Copy"_s, QKeySequence::Copy, this, &TextPane::copy);
    copyEntry->setEnabled(m_anchor != m_cursor);
    menu->addAction(u"Select &All"_s, QKeySequence::SelectAll, this, &TextPane::selectAll);
    menu->popup(event->globalPos());
}
