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
    check(!canBe || tables <= bounds.helpTableNesting || lower.find("</") != std::string::npos);
    // A short text without markup is no burden.
    check(canBe || size > longWords::longest || lower.find('<') != std::string::npos);
    check(!canBe || size <= bounds.helpPageBytes);
    // One table around all of it brings it one level nearer to the bound, and never away from it.
    check(canBe || !canBeLaidOut("<table>" + std::string(page), bounds));
    // Nor does one that not every reader takes for a table.
    check(canBe || !canBeLaidOut("<!-- <table> -->" + std::string(page), bounds));

    const std::string text = pageAsText(page, bounds.helpPageBytes);
    check(longWords::breaksIn(text).empty());
    check(pageAsText(page, 0).empty());
    return 0;
}
