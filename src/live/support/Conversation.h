#pragma once

#include "base/Bounds.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

/// A stretch of text, in characters from 0.
struct TextSpan
{
    std::size_t start = 0;
    std::size_t length = 0;

    bool operator==(const TextSpan&) const = default;
};

/// The conversation of the support console: what was said, of which a filter may show a part. Texts are bytes of the
/// host's code page, one a character. Entries are shown newest first, one below the other; each ends in an empty line,
/// so that words of different entries never touch. When there are too many bytes or lines the oldest entries go; the
/// newest one stays in any case.
class Conversation
{
public:
    enum class Speaker { Host = 0, User = 1, All = 2 };

    /// Counts from 0 in the order in which entries came, also those that are gone.
    using Number = std::size_t;

    explicit Conversation(const Bounds& bounds = {})
        : m_maxBytes(bounds.conversationBytes),
          m_maxLines(bounds.conversationLines),
          m_maxMessageLines(bounds.messageLines)
    {}

    /// Adds what was said last. It is shown whatever the filter, so that nothing new is overlooked.
    Number add(std::string_view entry);
    /// More of an entry, which is not gone, has come.
    /// @return where it stood in the text as it is laid out; nothing when it is not shown
    std::optional<TextSpan> replace(Number number, std::string_view entry);

    /// Shows the entries that contain `text`, exactly and in its letter case, and, unless `who` is All, the mark of
    /// that speaker. A `text` of blanks shows everything again.
    /// @param user  name under which the user speaks
    /// @return whether what is shown was chosen anew; false for a text of blanks while nothing is filtered
    bool filter(Speaker who, std::string_view text, std::string_view user);
    /// Whether a filter is in force.
    bool isFiltered() const { return m_isFiltered; }

    /// The number of the oldest entry that is not gone, and so how many are.
    Number first() const { return m_first; }
    /// The number of the next entry.
    Number end() const { return m_first + m_entries.size(); }
    std::size_t size() const { return m_entries.size(); }
    std::size_t shownCount() const { return m_isFiltered ? m_shown.size() : size(); }
    /// An entry that is not gone, as it is shown. Its lines end in LF.
    const std::string& entry(Number number) const { return m_entries[number - m_first].text; }
    /// How many characters all shown entries have when they are laid out, with their long words broken.
    std::size_t laidOutSize() const;
    /// All shown entries. Put together when it is asked for, so that adding an entry costs the same however many
    /// there are.
    const std::string& shownText() const;

private:
    struct Entry
    {
        std::string text;
        std::size_t laidOut = 0; ///< characters, with long words broken
        std::size_t lines = 0;   ///< the same
    };

    Entry made(std::string_view entry) const;
    void count(const Entry& entry);
    void discount(const Entry& entry);
    void dropOldest();

    std::size_t m_maxBytes;
    std::size_t m_maxLines;
    std::size_t m_maxMessageLines;
    std::deque<Entry> m_entries; ///< the oldest first
    Number m_first = 0;
    std::size_t m_bytes = 0;
    std::size_t m_lines = 0;
    std::deque<Number> m_shown; ///< ascending; in use while a filter is in force
    bool m_isFiltered = false;
    mutable std::string m_text;
    mutable bool m_isTextCurrent = true;
};

/// Positions count from 1; nothing when `what` is empty or not there.
std::optional<std::size_t> findFirst(std::string_view text, std::string_view what);
/// The first occurrence behind the selected one; from the selection's start on when another text is selected, or none.
std::optional<std::size_t> findNext(std::string_view text, std::string_view what, TextSpan selection);
/// The last occurrence that begins before the selection does.
std::optional<std::size_t> findPrevious(std::string_view text, std::string_view what, TextSpan selection);
