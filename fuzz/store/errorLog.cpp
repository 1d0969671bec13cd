#include "store/ErrorLogText.h"

#include "Check.h"
#include "base/Text.h"

#include <algorithm>

namespace {

/// A block whose values are the lines of the input, as far as there are any.
ErrorLogBlock blockOf(std::string_view input)
{
    const std::vector<std::string_view> parts = split(input, '\0');
    const auto part = [&](std::size_t index) { return std::string(index < parts.size() ? parts[index] : ""); };
    ErrorLogBlock block{.date = onOneLine(part(0)),
                        .time = onOneLine(part(1)),
                        .file = onOneLine(part(2)),
                        .function = onOneLine(part(3)),
                        .line = onOneLine(part(4)),
                        .number = onOneLine(part(5)),
                        .description = onOneLine(part(6)),
                        .identity = {},
                        .system = part(8)};
    if (parts.size() > 7)
        block.identity = part(7);
    return block;
}

/// Whatever a block holds, a report has its fifteen fields, ends no parameter of a form, and stays of the block's order
/// of size: at most three bytes for one.
void checkReport(std::string_view report, std::string_view piece)
{
    constexpr std::string_view separator = "|*|*|";
    std::size_t fields = 1;
    for (std::size_t at = 0; (at = report.find(separator, at)) != std::string_view::npos; at += separator.size())
        ++fields;
    check(fields == ErrorReportFields().size());
    check(report.find('&') == std::string_view::npos);
    check(report.size() <= 3 * piece.size() + fields * (separator.size() + 1));
}

void checkPieces(std::string_view log)
{
    std::string together;
    for (const std::string_view piece : splitErrorLog(log)) {
        check(!piece.empty());
        together += piece;
        const ErrorLogBlock block = readErrorLogBlock(piece);
        check(isReportable(piece) || block == ErrorLogBlock());
        check(block.system.size() <= piece.size() && block.description.size() <= piece.size());
        checkReport(joinReport(reportFields(block, "", "")), piece);
    }
    check(together == log);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkPieces(input);

    // What is logged is read back, whatever stands before it.
    const ErrorLogBlock block = blockOf(input);
    const std::string text = formatErrorLogBlock(block);
    const std::vector<std::string_view> alone = splitErrorLog(text);
    check(alone.size() == 1 && readErrorLogBlock(alone.front()) == block);
    const std::string behind = std::string(input) + text;
    const std::vector<std::string_view> pieces = splitErrorLog(behind);
    check(!pieces.empty() && pieces.back().ends_with(text));
    return 0;
}
