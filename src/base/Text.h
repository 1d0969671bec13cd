#pragma once

#include <cstdint>
#include <optional>
#include <source_location>
#include <string>
#include <string_view>
#include <vector>

/// Byte texts as they travel: no locale, no encoding, one byte a character.

/// `text` without blanks (space and TAB) at both ends.
std::string_view trimmed(std::string_view text);

/// The pieces between `separator`s; an empty text has one empty piece. The views point into `text`.
/// @param most  how many pieces, at least 1; the last of them is the rest of the text then
std::vector<std::string_view> split(std::string_view text, char separator, std::size_t most = std::string_view::npos);

/// The same for a list from the host, which may not have more pieces than that.
/// @throws RuntimeError Overflow, with `what` they are, when there are more
std::vector<std::string_view> splitBounded(std::string_view text, char separator, std::size_t most,
                                           std::string_view what,
                                           std::source_location where = std::source_location::current());

/// The pieces of `parts` with `separator` between them.
std::string join(const std::vector<std::string>& parts, std::string_view separator);

/// `text` with every occurrence of `what` (not empty) taken out, in one pass from the left.
std::string without(std::string_view text, std::string_view what);

/// `text` with every occurrence of `what` (not empty) replaced, in one pass from the left.
std::string replaced(std::string_view text, std::string_view what, std::string_view by);

/// ASCII letters in lower case; all other bytes as they are.
std::string lowerAscii(std::string_view text);

/// Whether both are the same but for the case of ASCII letters.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

/// Whether `text` is a number: decimal digits only, blanks around them allowed.
bool isNumeric(std::string_view text);

/// The decimal number in `text` (blanks around it and one leading sign allowed), or nothing when it is none or does
/// not fit.
std::optional<std::int32_t> parseInt32(std::string_view text);

/// The same for texts that must be a number.
/// @throws RuntimeError TypeMismatch when `text` is no number, Overflow when it does not fit
std::int32_t toInt32(std::string_view text, std::source_location where = std::source_location::current());

/// The fields of one text, numbered from 0. Owns the text, so that a decoded temporary can be handed in.
class FieldList
{
public:
    static constexpr std::size_t noLimit = std::string_view::npos;

    /// @param most  how many fields are told apart; what stands behind the last of them belongs to it
    FieldList(std::string text, char separator, std::size_t most = noLimit);
    FieldList(const FieldList&) = delete;
    FieldList& operator=(const FieldList&) = delete;
    ~FieldList() = default;

    std::size_t size() const { return m_fields.size(); }
    /// @throws RuntimeError SubscriptOutOfRange at the caller's line when there is no such field
    std::string_view at(std::size_t index, std::source_location where = std::source_location::current()) const;
    /// The fields from `first` to the last with their separators between them; empty when there are none.
    std::string_view from(std::size_t first) const;

private:
    std::string m_text;
    std::vector<std::string_view> m_fields;
};
