#include "store/ErrorLogBlock.h"

#include "base/Base64.h"
#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view fieldSeparator = "|*|*|";
constexpr std::size_t dumpBytesPerLine = 16;

static_assert(errorStartLine.size() == 91 && errorEndLine.size() == 91);

/// Lines of two-digit hexadecimal numbers, each number followed by a blank.
std::string dumpLines(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % dumpBytesPerLine == 0)
            text += lineEnd;
        const unsigned value = static_cast<unsigned char>(bytes[i]);
        text += digits[value >> 4];
        text += digits[value & 0xFu];
        text += ' ';
    }
    return text;
}

} // namespace

std::string onOneLine(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i).starts_with(lineEnd))
            ++i;
        line += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
    }
    return line;
}

std::string formatErrorLogBlock(const ErrorLogBlock& block)
{
    std::string text;
    const auto addLine = [&text](std::string_view label, std::string_view value) {
        text.append(lineEnd).append(label).append(onOneLine(value));
    };
    addLine(errorStartLine, {});
    addLine("Date: ", block.date);
    addLine("Time: ", block.time);
    addLine("File: ", block.file);
    addLine("Function: ", block.function);
    addLine("Error Line: ", block.line);
    addLine("Error No.: ", block.number);
    addLine("Error Desc.: ", block.description);
    if (block.identity) {
        addLine("Error Dump:", {});
        text += dumpLines(base64::encode(*block.identity));
    }
    addLine("System Dump:", {});
    text += dumpLines(block.system);
    addLine(errorEndLine, {});
    return text;
}

ErrorReportFields reportFields(const ErrorLogBlock& block, std::string_view thisIdentity, std::string_view sentAt)
{
    const std::string_view isOwn = !block.identity ? "" : *block.identity == thisIdentity ? "1" : "0";
    return {
        block.date,
        block.time,
        block.file,
        block.function,
        block.line,
        block.number,
        block.description,
        block.identity.value_or(std::string()),
        std::string(isOwn),
        "0",
        block.system,
        "0",
        "0",
        std::string(sentAt),
        std::string(),
    };
}

std::string joinReport(const ErrorReportFields& fields)
{
    std::string report;
    for (const std::string& field : fields) {
        if (&field != fields.data())
            report += fieldSeparator;
        report += replaced(replaced(field, "|*", "| *"), "&", "%26");
    }
    return report;
}
