#include "live/support/ConversationView.h"

#include "live/support/SupportDesk.h"
#include "platform/system/CodePage.h"

#include <QScrollBar>

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
    setPlainText(m_codePage.toText(conversation().shownText()));
    moveCursor(QTextCursor::Start);
}

void ConversationView::addEntries(Conversation::Number first)
{
    std::string text;
    for (Conversation::Number number = conversation().size(); number-- > first;)
        text += conversation().entry(number);
    insertText(0, 0, m_codePage.toText(text));
}

void ConversationView::replaceEntry(Conversation::Number number, TextSpan span)
{
    insertText(static_cast<int>(span.start), static_cast<int>(span.length),
               m_codePage.toText(conversation().entry(number)));
}

/// Puts `text` in the place of `length` characters. What the user reads and has selected stays where it is, unless he
/// reads the newest entry.
void ConversationView::insertText(int at, int length, const QString& text)
{
    QScrollBar* bar = verticalScrollBar();
    const int read = bar->value();
    const int before = bar->maximum();
    QTextCursor cursor(document());
    cursor.setPosition(at);
    cursor.setPosition(at + length, QTextCursor::KeepAnchor);
    cursor.insertText(text);
    bar->setValue(read == 0 ? 0 : read + bar->maximum() - before);
}

void ConversationView::find(Search search, const QString& text)
{
    if (!m_codePage.firstForeign(text).isEmpty())
        return;
    const std::string wanted = m_codePage.toBytes(text);
    if (const auto position = positionOf(search, conversation().shownText(), wanted, selection()))
        select(static_cast<int>(*position - 1), static_cast<int>(wanted.size()));
}

TextSpan ConversationView::selection() const
{
    const QTextCursor cursor = textCursor();
    return {static_cast<std::size_t>(cursor.selectionStart()),
            static_cast<std::size_t>(cursor.selectionEnd() - cursor.selectionStart())};
}

void ConversationView::select(int start, int length)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(start);
    cursor.setPosition(start + length, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    setFocus();
}
