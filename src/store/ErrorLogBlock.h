#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Where errors are logged, and where the log before this one is kept.
inline constexpr std::string_view errorLogName = "\\ErrorLog.txt";
inline constexpr std::string_view olderErrorLogName = "\\ErrorLog.old.txt";

/// One entry of the error log: the values behind its labels, and its dumps as plain text.
struct ErrorLogBlock
{
    std::string date; ///< "yyyy-mm-dd"
    std::string time; ///< "hh:mm:ss"
    std::string file;
    std::string function;
    std::string line;
    std::string number;
    std::string description;
    std::optional<std::string>
        identity;       ///< of the installation that logged it; missing when the block has no such dump
    std::string system; ///< a text about the machine

    bool operator==(const ErrorLogBlock&) const = default;
};

/// A block begins with a line break and this line, and ends with the other one.
inline constexpr std::string_view errorStartLine =
    "--------------------------------------- Error Start ---------------------------------------";
inline constexpr std::string_view errorEndLine =
    "---------------------------------------- Error End ----------------------------------------";

/// The block as it is appended to the log: CR LF before every line, none behind the last. Line breaks in a value
/// become blanks, so that each value keeps to its line; every dump line ends in a blank, because the lines are put
/// together before they are taken apart at the blanks.
std::string formatErrorLogBlock(const ErrorLogBlock& block);

/// `text` as one line: every line break in it is a blank.
std::string onOneLine(std::string_view text);

inline constexpr std::size_t reportFieldCount = 15;
using ErrorReportFields = std::array<std::string, reportFieldCount>;

/// The fields that report a block.
/// @param thisIdentity  of this installation; field 8 tells whether the block is its own
/// @param sentAt        "yyyy-mm-dd hh:mm:ss"
ErrorReportFields reportFields(const ErrorLogBlock& block, std::string_view thisIdentity, std::string_view sentAt);

/// The fields in their order, "|*|*|" between them. No field's text can be taken for a separator or end the posted
/// value: "|*" in it goes as "| *", and "&" as "%26".
std::string joinReport(const ErrorReportFields& fields);
