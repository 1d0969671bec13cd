#include "live/support/ConversationView.h"

#include "base/LongWords.h"
#include "live/support/SupportDesk.h"
#include "platform/system/CodePage.h"

#include <QScrollBar>

#include <algorithm>
#include <optional>
#include <string>

using namespace Qt::StringLiterals;

namespace {

/// Counts from 1.
std::optional<std::size_t> positionOf(ConversationView::Search search, std::string_view text, std::string_view what,
                                      TextSpan selection)
{
    switch (search) {
    case ConversationView::Search::First:
        return findFirst(text, what);
    case ConversationView::Search::Next:
        return findNext(text, what, selection);
    case ConversationView::Search::Previous:
        return findPrevious(text, what, selection);
    }
    return {};
}

/// Where the character at `offset` of the talk's text stands when its long words are broken.
std::size_t laidOut(std::size_t offset, const std::vector<std::size_t>& breaks)
{
    return offset + static_cast<std::size_t>(std::upper_bound(breaks.begin(), breaks.end(), offset) - breaks.begin());
}

/// The other way round; a break itself counts as what stands behind it.
std::size_t inTalk(std::size_t offset, const std::vector<std::size_t>& breaks)
{
    std::size_t before = 0;
    while (before < breaks.size() && breaks[before] + before < offset)
        ++before;
    return offset - before;
}

} // namespace

ConversationView::ConversationView(const SupportDesk& desk, const CodePage& codePage, QWidget* parent)
    : QPlainTextEdit(parent),
      m_desk(desk),
      m_codePage(codePage)
{
    setObjectName(u"txtMessages"_s);
    setAccessibleName(u"Messages, newest first"_s);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    // What was found stays visible while the search field has the keyboard.
    QPalette colours = palette();
    colours.setColor(QPalette::Inactive, QPalette::Highlight, colours.color(QPalette::Active, QPalette::Highlight));
    colours.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     colours.color(QPalette::Active, QPalette::HighlightedText));
    setPalette(colours);
}

const Conversation& ConversationView::conversation() const
{
    return m_desk.talk()->conversation;
}

void ConversationView::showAll()
{
    setPlainText(m_codePage.toText(longWords::broken(conversation().shownText())));
    moveCursor(QTextCursor::Start);
}

void ConversationView::addEntries(Conversation::Number first)
{
    std::string text;
    for (Conversation::Number number = conversation().end(); number-- > std::max(first, conversation().first());)
        text += conversation().entry(number);
    insertText(0, 0, text);
    cutToSize();
}

void ConversationView::replaceEntry(Conversation::Number number, TextSpan span)
{
    const bool isGone = number < conversation().first(); // it has become too long for those that came behind it
    insertText(span.start, span.length, isGone ? std::string() : conversation().entry(number));
    cutToSize();
}

/// Takes the oldest entries, which are gone, off the end.
void ConversationView::cutToSize()
{
    const std::size_t size = conversation().laidOutSize();
    if (const auto shown = static_cast<std::size_t>(document()->characterCount() - 1); shown > size)
        insertText(size, shown - size, {});
}

/// Puts `text` in the place of `length` characters. What the user reads and has selected stays where it is, unless he
/// reads the newest entry.
void ConversationView::insertText(std::size_t at, std::size_t length, const std::string& text)
{
    QScrollBar* bar = verticalScrollBar();
    const int read = bar->value();
    const int before = bar->maximum();
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(at));
    cursor.setPosition(static_cast<int>(at + length), QTextCursor::KeepAnchor);
    cursor.insertText(m_codePage.toText(longWords::broken(text)));
    bar->setValue(read == 0 ? 0 : read + bar->maximum() - before);
}

void ConversationView::find(Search search, const QString& text)
{
    if (!m_codePage.firstForeign(text).isEmpty())
        return;
    const std::string wanted = m_codePage.toBytes(text);
    const std::string& said = conversation().shownText();
    const std::vector<std::size_t> breaks = longWords::breaksIn(said);
    if (const auto position = positionOf(search, said, wanted, selection(breaks))) {
        const std::size_t start = laidOut(*position - 1, breaks);
        select(start, laidOut(*position - 1 + wanted.size() - 1, breaks) + 1 - start);
    }
}

/// What is selected, in characters of the talk's text, in which no words are broken.
TextSpan ConversationView::selection(const std::vector<std::size_t>& breaks) const
{
    const QTextCursor cursor = textCursor();
    const std::size_t start = inTalk(static_cast<std::size_t>(cursor.selectionStart()), breaks);
    return {start, inTalk(static_cast<std::size_t>(cursor.selectionEnd()), breaks) - start};
}

void ConversationView::select(std::size_t start, std::size_t length)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(start + length), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    setFocus();
}
