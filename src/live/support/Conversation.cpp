#include "live/support/Conversation.h"

#include "base/LongWords.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view emptyLine = "\n\n";

std::string asShown(std::string_view entry)
{
    std::string shown;
    shown.reserve(entry.size() + emptyLine.size());
    for (std::size_t at = 0; at < entry.size(); ++at) {
        if (entry[at] == '\r' && at + 1 < entry.size() && entry[at + 1] == '\n')
            continue;
        shown += entry[at] == '\r' ? '\n' : entry[at];
    }
    while (!shown.ends_with(emptyLine))
        shown += '\n';
    return shown;
}

/// What of `text` stands in so many lines, saying so when that is not all.
std::string cut(std::string text, std::size_t lines)
{
    std::size_t end = text.find('\n');
    while (end != std::string::npos && --lines > 0)
        end = text.find('\n', end + 1);
    if (end != std::string::npos && end + emptyLine.size() < text.size())
        text.replace(end, std::string::npos, "\n(The rest of the message is too long.)\n\n");
    return text;
}

std::optional<std::size_t> position(std::size_t offset)
{
    return offset == std::string_view::npos ? std::nullopt : std::optional(offset + 1);
}

} // namespace

Conversation::Entry Conversation::made(std::string_view entry) const
{
    std::string text = cut(asShown(entry), m_maxMessageLines);
    const std::size_t breaks = longWords::breaksIn(text).size();
    const auto ends = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    const std::size_t laidOut = text.size() + breaks;
    return {.text = std::move(text), .laidOut = laidOut, .lines = ends + breaks};
}

void Conversation::count(const Entry& entry)
{
    m_bytes += entry.text.size();
    m_lines += entry.lines;
}

void Conversation::discount(const Entry& entry)
{
    m_bytes -= entry.text.size();
    m_lines -= entry.lines;
}

Conversation::Number Conversation::add(std::string_view entry)
{
    m_entries.push_back(made(entry));
    count(m_entries.back());
    const Number number = end() - 1;
    if (m_isFiltered)
        m_shown.push_back(number);
    m_isTextCurrent = false;
    dropOldest();
    return number;
}

void Conversation::dropOldest()
{
    while ((m_bytes > m_maxBytes || m_lines > m_maxLines) && m_entries.size() > 1) {
        discount(m_entries.front());
        m_entries.pop_front();
        if (!m_shown.empty() && m_shown.front() == m_first)
            m_shown.pop_front();
        ++m_first;
    }
}

std::optional<TextSpan> Conversation::replace(Number number, std::string_view entry)
{
    Entry before = std::exchange(m_entries[number - m_first], made(entry));
    discount(before);
    count(m_entries[number - m_first]);
    TextSpan span{0, before.laidOut};
    const bool isShown = !m_isFiltered || std::binary_search(m_shown.begin(), m_shown.end(), number);
    if (isShown) {
        m_isTextCurrent = false;
        for (std::size_t at = shownCount(); at-- > 0;) {
            const Number newer = m_isFiltered ? m_shown[at] : m_first + at;
            if (newer == number)
                break;
            span.start += m_entries[newer - m_first].laidOut;
        }
    }
    dropOldest();
    return isShown ? std::optional(span) : std::nullopt;
}

std::size_t Conversation::laidOutSize() const
{
    std::size_t size = 0;
    if (m_isFiltered) {
        for (const Number number : m_shown)
            size += m_entries[number - m_first].laidOut;
    } else {
        for (const Entry& entry : m_entries)
            size += entry.laidOut;
    }
    return size;
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
    for (Number number = m_first; number < end(); ++number) {
        const std::string_view said = entry(number);
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
            m_text += entry(m_isFiltered ? m_shown[at] : m_first + at);
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
