#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One line of a help book's table of contents.
struct HelpContentsEntry
{
    std::string title; ///< plain text, in the book's own encoding
    std::string page;  ///< name of a page, perhaps with "#" and a place in it; empty for a mere heading
    int depth = 0;     ///< 0 for the outermost entries

    bool operator==(const HelpContentsEntry&) const = default;
};

/// Reads a table of contents: nested lists in loose HTML, which may be damaged. Only the first MiB and the first 2,000
/// entries count.
std::vector<HelpContentsEntry> parseHelpContents(std::string_view text);
