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

void checkPieces(std::string_view log)
{
    std::string together;
    for (const std::string_view piece : splitErrorLog(log)) {
        check(!piece.empty());
        together += piece;
        const ErrorLogBlock block = readErrorLogBlock(piece);
        check(isReportable(piece) || block == ErrorLogBlock());
        check(block.system.size() <= piece.size() && block.description.size() <= piece.size());
        check(joinReport(reportFields(block, "", "")).size() <= piece.size() + 15 * 5 + 4);
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
