#include "diagnostics/help/HelpContents.h"

#include "Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t maxEntries = 2000;
    constexpr int maxDepth = 32;
    const std::string_view text = viewOf(data, size);
    const std::vector<HelpContentsEntry> entries = parseHelpContents(text);
    check(entries.size() <= maxEntries);
    std::size_t bytes = 0;
    for (const HelpContentsEntry& entry : entries) {
        check(!entry.title.empty());
        check(entry.depth >= 0 && entry.depth <= maxDepth);
        bytes += entry.title.size() + entry.page.size();
    }
    check(bytes <= size); // each value stands in the text once
    return 0;
}
