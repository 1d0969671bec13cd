#include "live/support/SupportTexts.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Kind = SupportText::Kind;

constexpr char mark = '_';
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view emptyLine = "\r\n\r\n";
constexpr std::size_t groupChars = 4;
constexpr std::array<std::pair<std::string_view, Kind>, 2> firstWords{
    {{"Announce", Kind::Status}, {"Message", Kind::Message}}};
constexpr std::size_t longestWord = 8;

/// How many characters at the end of `value` may be the beginning of the next text's first word.
std::size_t begunWord(std::string_view value)
{
    std::size_t longest = 0;
    for (const auto& [word, kind] : firstWords) {
        for (std::size_t length = std::min(word.size(), value.size()); length > longest; --length) {
            if (value.ends_with(word.substr(0, length)))
                longest = length;
        }
    }
    return longest;
}

std::string_view withoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// @param code  whole groups; only the last ones are looked at
bool endsInEmptyLine(std::string_view code)
{
    const std::string_view tail = code.substr(code.size() - std::min(code.size(), 2 * groupChars));
    try {
        return base64::decode(tail).ends_with(emptyLine);
    } catch (const RuntimeError&) {
        return false;
    }
}

/// Also decodes a last group that was cut off, as far as it came.
SupportText decodeMessage(std::string_view code)
{
    try {
        std::string padded(code);
        padded.resize((code.size() + groupChars - 2) / groupChars * groupChars, '=');
        return {Kind::Message, base64::decode(padded)};
    } catch (const RuntimeError&) {
        return {Kind::Damaged, {}};
    }
}

} // namespace

void SupportTexts::add(std::string_view chunk)
{
    for (std::size_t end = chunk.find(mark); end != std::string_view::npos; end = chunk.find(mark)) {
        append(chunk.substr(0, end));
        endField();
        chunk.remove_prefix(end + 1);
    }
    append(chunk);
}

void SupportTexts::append(std::string_view bytes)
{
    if (m_kind == Kind::Message) {
        appendToMessage(bytes);
        return;
    }
    m_value.append(bytes);
    if (m_kind == Kind::Status && m_value.size() > maxStatusBytes + longestWord) {
        const std::string tail = m_value.substr(m_value.size() - longestWord);
        finish();
        m_value = tail;
    } else if (!m_kind && m_value.size() > longestWord) {
        m_value.erase(0, m_value.size() - longestWord);
    }
}

void SupportTexts::appendToMessage(std::string_view bytes)
{
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (blanks.find(bytes[at]) != std::string_view::npos)
            continue; // an encoder that breaks its lines
        if (m_value.size() == maxMessageBytes) {
            finish();
            throw RuntimeError(ErrorNumber::OutOfMemory, "the message is larger than 256 KiB");
        }
        m_value += bytes[at];
        if (bytes[at] == '=' && m_whole == 0)
            m_whole = (m_value.size() + groupChars - 1) / groupChars * groupChars;
        if (m_whole != 0 && m_value.size() == m_whole) {
            finish();
            append(bytes.substr(at + 1));
            return;
        }
    }
}

/// A "_" has come: it ends the first word of a text, or a field that is one's value.
void SupportTexts::endField()
{
    for (const auto& [word, kind] : firstWords) {
        if (m_value.ends_with(word)) {
            m_value.resize(m_value.size() - word.size());
            finish();
            m_kind = kind;
            return;
        }
    }
    finish();
}

/// The text under way is over; between texts, what was kept is of no use.
void SupportTexts::finish()
{
    if (m_kind)
        handOut(m_value.size());
    m_kind.reset();
    m_value.clear();
    m_whole = 0;
    m_taken = 0;
}

/// Hands out the first `length` characters of the value, unless they have been.
void SupportTexts::handOut(std::size_t length)
{
    if (length == m_taken)
        return;
    const std::string_view value = std::string_view(m_value).substr(0, length);
    SupportText text = m_kind == Kind::Message
                           ? decodeMessage(value)
                           : SupportText{Kind::Status, std::string(withoutBlanks(value.substr(0, maxStatusBytes)))};
    text.continues = m_taken != 0;
    if (text.value.empty() && text.kind != Kind::Damaged && !text.continues)
        return;
    m_taken = length;
    m_ready.push_back(std::move(text));
}

/// 0 when nothing looks so.
std::size_t SupportTexts::lengthThatLooksComplete() const
{
    const std::size_t before = m_value.size() - begunWord(m_value);
    if (m_kind == Kind::Status)
        return before;
    for (const std::size_t length : {before, m_value.size()}) {
        if (length != 0 && length % groupChars == 0 && endsInEmptyLine(std::string_view(m_value).substr(0, length)))
            return length;
    }
    return 0;
}

std::vector<SupportText> SupportTexts::take()
{
    // A message that grows beyond what looked complete waits for a pause: decoding it anew with every piece would make
    // the work quadratic.
    if (m_kind == Kind::Status || (m_kind && m_taken == 0)) {
        if (const std::size_t length = lengthThatLooksComplete(); length > m_taken)
            handOut(length);
    }
    return takeReady();
}

std::vector<SupportText> SupportTexts::takeAfterPause()
{
    if (m_kind == Kind::Status) {
        handOut(m_value.size()); // when its end was the beginning of the next text after all, it comes again without
    } else if (m_kind) {
        // One or two letters are hardly ever the beginning of a word; more of them hardly ever anything else.
        const std::size_t word = begunWord(m_value);
        const std::size_t length = m_value.size() - (word > 2 ? word : 0);
        if (length != 0 && length % groupChars == 0)
            handOut(length);
    }
    return takeReady();
}

std::vector<SupportText> SupportTexts::takeRest()
{
    finish();
    return takeReady();
}

std::vector<SupportText> SupportTexts::takeReady()
{
    return std::exchange(m_ready, {});
}

std::string conversationEntry(std::string_view speaker, std::string_view message)
{
    std::string entry(speaker);
    return entry.append(" says:\r\n").append(message).append(emptyLine);
}

std::string announceText(std::string_view user, std::string_view status)
{
    return "Announce_" + base64::encode(user) + "_(" + std::string(status) + ")";
}

std::string messageText(std::string_view user, std::string_view entry)
{
    return "Message_" + base64::encode(user) + '_' + base64::encode(entry);
}
