#include "diagnostics/help/HelpContents.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t maxContentsBytes = std::size_t{1024} * 1024;
constexpr std::size_t maxContentsEntries = 2000;
constexpr int maxContentsDepth = 32;

/// The value of attribute `name` in the inside of a tag, without its quotes; empty when it is missing.
std::string_view attribute(std::string_view tag, std::string_view name)
{
    const std::string lower = lowerAscii(tag);
    for (std::size_t at = lower.find(name); at != std::string::npos; at = lower.find(name, at + 1)) {
        std::size_t value = lower.find_first_not_of(" \t\r\n", at + name.size());
        const bool isWord = at > 0 && std::string_view(" \t\r\n").find(lower[at - 1]) != std::string_view::npos;
        if (!isWord || value == std::string::npos || lower[value] != '=')
            continue;
        value = lower.find_first_not_of(" \t\r\n", value + 1);
        if (value == std::string::npos)
            return {};
        const char quote = lower[value];
        if (quote == '"' || quote == '\'')
            return tag.substr(value + 1, lower.find(quote, value + 1) - value - 1);
        return tag.substr(value, lower.find_first_of(" \t\r\n", value) - value);
    }
    return {};
}

/// The characters that a title or file name cannot do without in markup.
std::string withoutEntities(std::string_view text)
{
    std::string plain(text);
    for (const auto& [entity, character] :
         {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}})
        plain = replaced(plain, entity, character);
    return plain;
}

} // namespace

/// The contents are a list of lists in loose HTML: each entry is an object with the parameters "Name" and "Local".
std::vector<HelpContentsEntry> parseHelpContents(std::string_view text)
{
    std::vector<HelpContentsEntry> entries;
    HelpContentsEntry entry;
    int depth = -1;
    text = text.substr(0, maxContentsBytes);
    std::size_t close = 0;
    // On from the end of each tag, so that a row of "<" is looked at once.
    for (std::size_t open = text.find('<'); open != std::string_view::npos; open = text.find('<', close)) {
        close = text.find('>', open);
        if (close == std::string_view::npos)
            break;
        const std::string_view tag = text.substr(open + 1, close - open - 1);
        const std::string kind = lowerAscii(tag.substr(0, tag.find_first_of(" \t\r\n")));
        if (kind == "ul") {
            depth = std::min(depth + 1, maxContentsDepth);
        } else if (kind == "/ul") {
            depth = std::max(depth - 1, -1);
        } else if (kind == "object") {
            entry = {};
        } else if (kind == "param") {
            const std::string_view name = attribute(tag, "name");
            // A heading may repeat its name; the first one is the title.
            if (equalsIgnoringCase(name, "Name") && entry.title.empty())
                entry.title = withoutEntities(attribute(tag, "value"));
            else if (equalsIgnoringCase(name, "Local"))
                entry.page = withoutEntities(attribute(tag, "value"));
        } else if (kind == "/object") {
            entry.depth = std::max(depth, 0);
            if (!entry.title.empty())
                entries.push_back(std::exchange(entry, {}));
            if (entries.size() == maxContentsEntries)
                break;
        }
    }
    return entries;
}
