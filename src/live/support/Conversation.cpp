#include "live/support/Conversation.h"

#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view emptyLine = "\n\n";
constexpr std::size_t longestWord = 1000;

std::string asShown(std::string_view entry)
{
    std::string shown;
    shown.reserve(entry.size() + emptyLine.size());
    std::size_t word = 0;
    for (std::size_t at = 0; at < entry.size(); ++at) {
        if (entry[at] == '\r' && at + 1 < entry.size() && entry[at + 1] == '\n')
            continue;
        const char shownAs = entry[at] == '\r' ? '\n' : entry[at];
        word = shownAs == '\n' || shownAs == ' ' ? 0 : word + 1;
        if (word > longestWord) {
            shown += '\n';
            word = 1;
        }
        shown += shownAs;
    }
    while (!shown.ends_with(emptyLine))
        shown += '\n';
    return shown;
}

std::optional<std::size_t> position(std::size_t offset)
{
    return offset == std::string_view::npos ? std::nullopt : std::optional(offset + 1);
}

} // namespace

Conversation::Number Conversation::add(std::string_view entry)
{
    m_entries.push_back(asShown(entry));
    const Number number = m_entries.size() - 1;
    if (m_isFiltered)
        m_shown.push_back(number);
    m_isTextCurrent = false;
    return number;
}

std::optional<TextSpan> Conversation::replace(Number number, std::string_view entry)
{
    std::string shown = asShown(entry);
    m_entries[number].swap(shown);
    if (m_isFiltered && !std::binary_search(m_shown.begin(), m_shown.end(), number))
        return {};
    m_isTextCurrent = false;
    TextSpan span{0, shown.size()};
    for (std::size_t at = shownCount(); at-- > 0;) {
        const Number newer = m_isFiltered ? m_shown[at] : at;
        if (newer == number)
            break;
        span.start += m_entries[newer].size();
    }
    return span;
}

bool Conversation::filter(Speaker who, std::string_view text, std::string_view user)
{
    const bool isOff = trimmed(text).empty();
    if (isOff && !m_isFiltered)
        return false;
    m_isFiltered = !isOff;
    m_isTextCurrent = false;
    m_shown.clear();
    if (isOff)
        return true;
    const std::string speaker = who == Speaker::User ? std::string(user) + " says:" : "Host says:";
    for (Number number = 0; number < size(); ++number) {
        const std::string_view said = m_entries[number];
        if (said.find(text) != std::string_view::npos &&
            (who == Speaker::All || said.find(speaker) != std::string_view::npos))
            m_shown.push_back(number);
    }
    return true;
}

const std::string& Conversation::shownText() const
{
    if (!m_isTextCurrent) {
        m_text.clear();
        for (std::size_t at = shownCount(); at-- > 0;)
            m_text += m_entries[m_isFiltered ? m_shown[at] : at];
        m_isTextCurrent = true;
    }
    return m_text;
}

std::optional<std::size_t> findFirst(std::string_view text, std::string_view what)
{
    return what.empty() ? std::nullopt : position(text.find(what));
}

std::optional<std::size_t> findNext(std::string_view text, std::string_view what, TextSpan selection)
{
    if (what.empty() || selection.start > text.size())
        return {};
    const bool isOccurrence = text.substr(selection.start, selection.length) == what;
    return position(text.find(what, selection.start + (isOccurrence ? what.size() : 0)));
}

std::optional<std::size_t> findPrevious(std::string_view text, std::string_view what, TextSpan selection)
{
    if (what.empty() || selection.start == 0)
        return {};
    return position(text.rfind(what, selection.start - 1));
}
