#pragma once

#include "live/support/Conversation.h"

#include <QPlainTextEdit>

#include <cstddef>
#include <string>
#include <vector>

class CodePage;
class SupportDesk;

/// Shows what the desk's talk says, newest entry first, and selects what is searched for in it.
class ConversationView : public QPlainTextEdit
{
    Q_OBJECT

public:
    enum class Search { First, Next, Previous };

    /// Both outlive the view. It shows nothing before `showAll`.
    ConversationView(const SupportDesk& desk, const CodePage& codePage, QWidget* parent);

    /// Shows the talk anew, from the newest entry on.
    void showAll();
    /// Puts the entries from `first` on in front of the others, and takes away those that are gone.
    void addEntries(Conversation::Number first);
    /// @param span  where the entry stands in the text that is shown
    void replaceEntry(Conversation::Number number, TextSpan span);
    /// Selects an occurrence of `text` and takes the keyboard. Nothing happens when there is none, as with a text that
    /// no message can hold.
    void find(Search search, const QString& text);

private:
    const Conversation& conversation() const;
    void insertText(std::size_t at, std::size_t length, const std::string& text);
    void cutToSize();
    TextSpan selection(const std::vector<std::size_t>& breaks) const;
    void select(std::size_t start, std::size_t length);

    const SupportDesk& m_desk;
    const CodePage& m_codePage;
};
