#include "base/Text.h"

#include "base/RuntimeError.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The digits of `text` behind its sign, or an empty view when it is no number.
std::string_view digitsOf(std::string_view text)
{
    if (!text.empty() && (text.front() == '-' || text.front() == '+'))
        text.remove_prefix(1);
    return std::all_of(text.begin(), text.end(), isDigit) ? text : std::string_view();
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator, std::size_t most)
{
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos && pieces.size() + 1 < most;
         end = text.find(separator, start)) {
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

std::vector<std::string_view> splitBounded(std::string_view text, char separator, std::size_t most,
                                           std::string_view what, std::source_location where)
{
    std::vector<std::string_view> pieces = split(text, separator, most + 1);
    if (pieces.size() > most)
        throw RuntimeError(ErrorNumber::Overflow, "more than " + std::to_string(most) + ' ' + std::string(what), where);
    return pieces;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string text;
    for (const std::string& part : parts) {
        if (&part != &parts.front())
            text += separator;
        text += part;
    }
    return text;
}

std::string without(std::string_view text, std::string_view what)
{
    return replaced(text, what, {});
}

std::string replaced(std::string_view text, std::string_view what, std::string_view by)
{
    std::string result;
    std::size_t start = 0;
    for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what, start)) {
        result.append(text, start, at - start).append(by);
        start = at + what.size();
    }
    return result.append(text, start);
}

std::string lowerAscii(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

bool isNumeric(std::string_view text)
{
    const std::string_view digits = trimmed(text);
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), isDigit);
}

std::optional<std::int32_t> parseInt32(std::string_view text)
{
    std::string_view number = trimmed(text);
    if (digitsOf(number).empty())
        return {};
    if (number.front() == '+')
        number.remove_prefix(1);
    std::int32_t value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc())
        return {};
    return value;
}

std::int32_t toInt32(std::string_view text, std::source_location where)
{
    if (const auto value = parseInt32(text))
        return *value;
    const bool isNumber = !digitsOf(trimmed(text)).empty();
    throw RuntimeError(isNumber ? ErrorNumber::Overflow : ErrorNumber::TypeMismatch, {}, where);
}

FieldList::FieldList(std::string text, char separator, std::size_t most)
    : m_text(std::move(text)),
      m_fields(split(m_text, separator, most))
{}

std::string_view FieldList::at(std::size_t index, std::source_location where) const
{
    if (index >= m_fields.size())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, {}, where);
    return m_fields[index];
}

std::string_view FieldList::from(std::size_t first) const
{
    if (first >= m_fields.size())
        return {};
    const auto offset = static_cast<std::size_t>(m_fields[first].data() - m_text.data());
    return std::string_view(m_text).substr(offset);
}
