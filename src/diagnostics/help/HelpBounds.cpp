#include "diagnostics/help/HelpBounds.h"

#include "base/LongWords.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <map>

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

/// The number behind an attribute's name, 0 when there is none; all beyond `most` are alike.
std::size_t spanAt(std::string_view text, std::size_t most)
{
    const std::size_t digits = text.find_first_not_of(" \t\r\n=\"'");
    std::size_t number = 0;
    for (std::size_t at = digits; at < text.size() && text[at] >= '0' && text[at] <= '9' && number < most; ++at)
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

std::size_t spansOf(std::string_view text, std::string_view attribute, std::size_t most)
{
    std::size_t sum = 0;
    for (std::size_t at = text.find(attribute); at != std::string_view::npos; at = text.find(attribute, at + 1))
        sum = std::min(sum + spanAt(text.substr(at + attribute.size()), most), most);
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

/// Whether any table of the page may have more cells than `most`, filled or not: the layout makes every row as wide as
/// the widest one.
/// @param page  in lower case
bool hasMoreCells(std::string_view page, bool isNested, std::size_t most)
{
    const std::size_t rowSpans = spansOf(page, "rowspan", most);
    const std::size_t rows = 1 + countOf(page, "<tr") + rowSpans;
    // A cell of several rows pushes those of the rows below it to the right.
    return rows * (widestRow(page, isNested) + spansOf(page, "colspan", most) + rowSpans) > most;
}

constexpr std::array<std::pair<std::string_view, char>, 6> entities{{
    {"&lt;", '<'},
    {"&gt;", '>'},
    {"&quot;", '"'},
    {"&#39;", '\''},
    {"&nbsp;", ' '},
    {"&amp;", '&'},
}};

/// The name of the element whose tag begins at the beginning of `tag`, with the "/" of one that closes.
std::string_view nameOf(std::string_view tag)
{
    const std::size_t end =
        tag.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789", tag.starts_with("</") ? 2 : 1);
    return tag.substr(1, end == std::string_view::npos ? end : end - 1);
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// How deep the elements of a page stand in each other, in those that nothing but their own end closes. One that is
/// closed by another's end still counts, so no page looks flatter than it is.
class Nesting
{
public:
    void open(std::string_view name)
    {
        if (name.empty() || isOneOf(name, {"br", "dd", "dt", "hr", "img", "li", "link", "meta", "p", "td", "th", "tr"}))
            return;
        ++m_open[name];
        m_deepest = std::max(m_deepest, ++m_depth);
    }
    void close(std::string_view name)
    {
        if (const auto found = m_open.find(name); found != m_open.end() && found->second > 0) {
            --found->second;
            --m_depth;
        }
    }
    std::size_t deepest() const { return m_deepest; }

private:
    std::map<std::string_view, std::size_t> m_open;
    std::size_t m_depth = 0;
    std::size_t m_deepest = 0;
};

/// Whether the text of a page has a word that takes long to be wrapped; tags within a line do not end one.
/// @param page  in lower case
bool hasLongWord(std::string_view page)
{
    std::size_t word = 0;
    for (std::size_t at = 0; at < page.size() && word <= longWords::longest;) {
        if (page[at] == '<') {
            if (isOneOf(nameOf(page.substr(at)),
                        {"br", "dd", "div", "dt", "h1", "h2", "h3", "hr", "li", "p", "td", "tr"}))
                word = 0;
            at = behindMarkup(page, at);
            continue;
        }
        word = page[at] == ' ' || page[at] == '\n' || page[at] == '\r' || page[at] == '\t' ? 0 : word + 1;
        at = page[at] == '&' ? std::min(page.find_first_of("; <\n", at), page.size() - 1) + 1 : at + 1;
    }
    return word > longWords::longest;
}

/// How many bytes of plain text take as long to be laid out as a tag does.
constexpr std::size_t bytesOfTag = 16;

/// Whether what stands in tables takes too long: each table around it doubles the time.
/// @param page  in lower case
bool isTooMuchInTables(std::string_view page, int deepest, const Bounds& bounds)
{
    return (page.size() + bytesOfTag * countOf(page, "<")) >> 1 > bounds.helpPageBytes >> deepest;
}

/// Whether a page has more of anything than the layout can take in a moment, but for nesting and tables.
/// @param page  in lower case
bool isTooMuch(std::string_view page, const Bounds& bounds)
{
    // Without wrapping the whole page may be one word.
    const bool isUnwrapped = page.find("nobr") != page.npos || page.find("nowrap") != page.npos;
    const bool hasLines = page.find("<pre") != page.npos || page.find("white-space") != page.npos;
    return countOf(page, "<") + (hasLines ? countOf(page, "\n") : 0) > bounds.helpTags ||
           countOf(page, "<img") > bounds.helpPictures ||
           (page.find("<style") != page.npos && styleRules(page) > bounds.helpStyleRules) ||
           (isUnwrapped && page.size() > bounds.helpPageBytes / 32) || hasLongWord(page);
}

} // namespace

std::size_t styleRules(std::string_view styles)
{
    return countOf(styles, "{");
}

bool canBeLaidOut(std::string_view page, const Bounds& bounds)
{
    if (page.size() > bounds.helpPageBytes)
        return false;
    const std::string lower = lowerAscii(page);
    const std::string_view text = lower;
    if (isTooMuch(text, bounds))
        return false;
    Nesting nesting;
    int depth = 0;
    int deepest = 0;
    std::size_t quietUntil = 0; // before that nothing closes
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<table") && ++depth > bounds.helpTableNesting)
            return false;
        deepest = std::max(deepest, depth);
        const std::string_view name = nameOf(rest);
        if (!name.starts_with('/'))
            nesting.open(name);
        if (at < quietUntil)
            continue;
        if (name.starts_with('/'))
            nesting.close(name.substr(1));
        if (rest.starts_with("</table>"))
            depth = std::max(0, depth - 1);
        quietUntil = behindMarkup(text, at);
    }
    return nesting.deepest() <= bounds.helpNesting && !isTooMuchInTables(text, deepest, bounds) &&
           !hasMoreCells(text, deepest > 1, bounds.helpTableCells);
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
