#include "diagnostics/help/HelpBounds.h"

#include "Check.h"
#include "base/LongWords.h"
#include "base/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page = viewOf(data, size);
    const Bounds bounds;
    const bool canBe = canBeLaidOut(page, bounds);
    // Whatever closes them, more tables than opened ones cannot stand in each other.
    const std::string lower = lowerAscii(page);
    int tables = 0;
    for (std::size_t at = lower.find("<table"); at != std::string::npos; at = lower.find("<table", at + 1))
        ++tables;
    check(canBe || tables > bounds.helpTableNesting || lower.find("<t") != std::string::npos ||
          lower.find("span") != std::string::npos || size > bounds.helpPageBytes);
    check(!canBe || size <= bounds.helpPageBytes);
    // One table around all of it brings it one level nearer to the bound, and never away from it.
    check(canBe || !canBeLaidOut("<table>" + std::string(page), bounds));
    // A table in what closes nothing counts.
    check(tables > 0 || canBeLaidOut("<!-- <table> -->" + std::string(page), bounds) == canBe);

    const std::string text = pageAsText(page, bounds.helpPageBytes);
    check(longWords::breaksIn(text).empty());
    check(pageAsText(page, 0).empty());
    return 0;
}
