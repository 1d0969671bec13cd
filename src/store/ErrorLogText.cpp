#include "store/ErrorLogText.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace {

constexpr std::string_view lineEnd = "\r\n";

struct Label
{
    std::string_view text;
    std::string ErrorLogBlock::*field; ///< null for the head of a dump
};

constexpr std::string_view errorDump = "Error Dump:";
constexpr std::string_view systemDump = "System Dump:";

constexpr std::array labels{
    Label{"Date: ", &ErrorLogBlock::date},
    Label{"Time: ", &ErrorLogBlock::time},
    Label{"File: ", &ErrorLogBlock::file},
    Label{"Function: ", &ErrorLogBlock::function},
    Label{"Error Line: ", &ErrorLogBlock::line},
    Label{"Error No.: ", &ErrorLogBlock::number},
    Label{"Error Desc.: ", &ErrorLogBlock::description},
    Label{errorDump, nullptr},
    Label{systemDump, nullptr},
};

struct FoundLabel
{
    const Label* label = nullptr;
    std::size_t position = 0;
};

std::optional<FoundLabel> firstLabel(std::string_view line)
{
    // Most lines of a log are dumps, and every label has a colon.
    if (line.find(':') == std::string_view::npos)
        return {};
    FoundLabel first{.label = nullptr, .position = line.size()};
    for (const Label& label : labels) {
        if (const std::size_t position = line.find(label.text); position < first.position)
            first = {&label, position};
    }
    return first.label ? std::optional(first) : std::nullopt;
}

/// Hands out the lines of a text one by one, without their ends.
class Lines
{
public:
    explicit Lines(std::string_view text) : m_text(text) {}

    std::optional<std::string_view> next()
    {
        if (m_at > m_text.size())
            return {};
        m_start = m_at;
        const std::size_t end = std::min(m_text.find(lineEnd, m_at), m_text.size());
        m_at = end + lineEnd.size();
        return m_text.substr(m_start, end - m_start);
    }
    /// Where the line handed out last begins.
    std::size_t start() const { return m_start; }

private:
    std::string_view m_text;
    std::size_t m_start = 0;
    std::size_t m_at = 0;
};

/// Where the end line begins in a line, if it does. A value may hold the same text; it ends nothing there.
std::optional<std::size_t> endLineIn(std::string_view line)
{
    const std::size_t position = line.find(errorEndLine);
    if (position == std::string_view::npos || firstLabel(line))
        return {};
    return position;
}

std::string bytesOf(std::string_view dump)
{
    constexpr std::string_view blanks = " \t";
    std::string bytes;
    for (std::size_t begin = 0; (begin = dump.find_first_not_of(blanks, begin)) != std::string_view::npos;) {
        const std::string_view part = dump.substr(begin, dump.find_first_of(blanks, begin) - begin);
        begin += part.size();
        for (std::size_t at = 0; at < part.size(); at += 2) {
            const std::string_view digits = part.substr(at, 2);
            unsigned value = 0;
            const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
            if (read.ec == std::errc() && read.ptr == digits.data() + digits.size())
                bytes += static_cast<char>(value);
        }
    }
    return bytes;
}

std::string identityOf(const std::string& bytes)
{
    try {
        return base64::decode(bytes);
    } catch (const RuntimeError&) {
        return bytes;
    }
}

} // namespace

std::vector<std::string_view> splitErrorLog(std::string_view log)
{
    std::vector<std::string_view> pieces;
    std::size_t begun = 0;
    const auto cutAt = [&](std::size_t position) {
        if (position > begun)
            pieces.push_back(log.substr(begun, position - begun));
        begun = position;
    };
    Lines lines(log);
    while (const std::optional<std::string_view> line = lines.next()) {
        const std::string_view before = log.substr(begun, lines.start() - begun);
        if (line->starts_with(errorStartLine) && !isBlank(before))
            cutAt(lines.start() - lineEnd.size());
        if (const auto end = endLineIn(*line))
            cutAt(lines.start() + *end + errorEndLine.size());
    }
    cutAt(log.size());
    return pieces;
}

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool isReportable(std::string_view piece)
{
    Lines lines(piece);
    while (const std::optional<std::string_view> line = lines.next()) {
        if (firstLabel(*line))
            return true;
    }
    return false;
}

ErrorLogBlock readErrorLogBlock(std::string_view piece)
{
    ErrorLogBlock block;
    std::optional<std::string> errorDigits;
    std::optional<std::string> systemDigits;
    std::optional<std::string>* dump = nullptr; // the one whose lines follow
    Lines lines(piece);
    while (std::optional<std::string_view> line = lines.next()) {
        if (const auto found = firstLabel(*line)) {
            const auto& [label, position] = *found;
            dump = nullptr;
            if (label->field) {
                block.*(label->field) = std::string(line->substr(0, position));
                block.*(label->field) += line->substr(position + label->text.size());
            } else {
                dump = label->text == errorDump ? &errorDigits : &systemDigits;
                dump->emplace(line->substr(position + label->text.size()));
            }
            continue;
        }
        const auto end = endLineIn(*line);
        if (dump)
            dump->value() += line->substr(0, end.value_or(line->size()));
        if (end)
            dump = nullptr;
    }
    if (errorDigits)
        block.identity = identityOf(bytesOf(*errorDigits));
    block.system = bytesOf(systemDigits.value_or(std::string()));
    return block;
}
