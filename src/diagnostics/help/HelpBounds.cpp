#include "diagnostics/help/HelpBounds.h"

#include "base/LongWords.h"
#include "base/Text.h"

#include <algorithm>
#include <array>

namespace {

/// Elements whose content is no markup.
constexpr std::array<std::string_view, 4> rawElements{"style", "script", "title", "textarea"};

std::size_t behind(std::string_view text, std::string_view what, std::size_t from)
{
    const std::size_t found = text.find(what, from);
    return found == std::string_view::npos ? text.size() : found + what.size();
}

/// Behind the tag that begins at `start`. Where readers differ over quotes it rather ends later.
std::size_t behindTag(std::string_view text, std::size_t start)
{
    for (std::size_t at = start + 1; at < text.size(); ++at) {
        if (text[at] == '>')
            return at + 1;
        if (text[at] == '"' || text[at] == '\'')
            at = std::min(text.find(text[at], at + 1), text.size() - 1);
    }
    return text.size();
}

/// Behind what begins with the "<" at `start` and is no markup but for that: a comment, an element of raw text, a tag.
/// @param page  in lower case
std::size_t behindMarkup(std::string_view page, std::size_t start)
{
    const std::string_view rest = page.substr(start + 1);
    if (rest.starts_with("!--"))
        return behind(page, "-->", start);
    for (const std::string_view name : rawElements) {
        if (rest.starts_with(name))
            return behindTag(page, behind(page, std::string("</").append(name), start) - 1);
    }
    return behindTag(page, start);
}

/// Cells of the tables of a page, whether anything stands in them or not: the layout makes every row as wide as the
/// widest one.
constexpr std::size_t maxCells = 10'000;

/// The number behind an attribute's name, 0 when there is none.
std::size_t spanAt(std::string_view text)
{
    const std::size_t digits = text.find_first_not_of(" \t\r\n=\"'");
    std::size_t number = 0;
    for (std::size_t at = digits; at < text.size() && text[at] >= '0' && text[at] <= '9' && number < maxCells; ++at)
        number = number * 10 + static_cast<std::size_t>(text[at] - '0');
    return number;
}

std::size_t countOf(std::string_view text, std::string_view what)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what, at + what.size()))
        ++count;
    return count;
}

std::size_t spansOf(std::string_view text, std::string_view attribute)
{
    std::size_t sum = 0;
    for (std::size_t at = text.find(attribute); at != std::string_view::npos; at = text.find(attribute, at + 1))
        sum = std::min(sum + spanAt(text.substr(at + attribute.size())), maxCells);
    return sum;
}

/// The most cells that one row of the page has, without those that span several.
/// @param page  in lower case
std::size_t widestRow(std::string_view page, bool isNested)
{
    if (isNested) // a row goes on behind the tables in it
        return countOf(page, "<td") + countOf(page, "<th");
    std::size_t widest = 0;
    for (std::size_t start = 0; start < page.size();) {
        const std::size_t end = std::min(page.find("<tr", start + 1), page.size());
        const std::string_view row = page.substr(start, end - start);
        widest = std::max(widest, countOf(row, "<td") + countOf(row, "<th"));
        start = end;
    }
    return widest;
}

/// No fewer than the cells of any table of the page.
/// @param page  in lower case
std::size_t mostCells(std::string_view page, bool isNested)
{
    const std::size_t rowSpans = spansOf(page, "rowspan");
    const std::size_t rows = 1 + countOf(page, "<tr") + rowSpans;
    // A cell of several rows pushes those of the rows below it to the right.
    return rows * (widestRow(page, isNested) + spansOf(page, "colspan") + rowSpans);
}

constexpr std::array<std::pair<std::string_view, char>, 6> entities{{
    {"&lt;", '<'},
    {"&gt;", '>'},
    {"&quot;", '"'},
    {"&#39;", '\''},
    {"&nbsp;", ' '},
    {"&amp;", '&'},
}};

} // namespace

bool canBeLaidOut(std::string_view page, const Bounds& bounds)
{
    if (page.size() > bounds.helpPageBytes)
        return false;
    const std::string lower = lowerAscii(page);
    const std::string_view text = lower;
    int depth = 0;
    int deepest = 0;
    std::size_t quietUntil = 0; // before that nothing closes
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<table") && ++depth > bounds.helpTableNesting)
            return false;
        deepest = std::max(deepest, depth);
        if (at < quietUntil)
            continue;
        if (rest.starts_with("</table>"))
            depth = std::max(0, depth - 1);
        quietUntil = behindMarkup(text, at);
    }
    return mostCells(text, deepest > 1) <= maxCells;
}

std::string pageAsText(std::string_view page, std::size_t maxBytes)
{
    page = page.substr(0, maxBytes);
    const std::string lower = lowerAscii(page);
    std::string text;
    for (std::size_t at = 0; at < page.size();) {
        if (page[at] == '<') {
            const std::string_view rest = std::string_view(lower).substr(at);
            const bool isBreak = rest.starts_with("<p") || rest.starts_with("<br") || rest.starts_with("<t") ||
                                 rest.starts_with("<li") || rest.starts_with("<h");
            text.append(isBreak && !text.ends_with('\n') ? "\n" : "");
            at = behindMarkup(lower, at);
            continue;
        }
        const auto entity = std::find_if(entities.begin(), entities.end(),
                                         [&](const auto& one) { return page.substr(at).starts_with(one.first); });
        text += entity == entities.end() ? page[at] : entity->second;
        at += entity == entities.end() ? 1 : entity->first.size();
    }
    return longWords::broken(text);
}
