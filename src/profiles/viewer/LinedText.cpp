#include "profiles/viewer/LinedText.h"

#include <algorithm>

namespace {

constexpr std::size_t blockBytes = 4096;

constexpr bool isLineEnd(char byte)
{
    return byte == '\n' || byte == '\r';
}

constexpr std::size_t behind(std::size_t column, char byte)
{
    return byte == '\t' ? (column / LinedText::tabColumns + 1) * LinedText::tabColumns : column + 1;
}

} // namespace

LinedText::LinedText(std::string bytes) : m_bytes(std::move(bytes))
{
    m_places.reserve(m_bytes.size() / blockBytes + 1);
    m_places.emplace_back();
    Place place;
    std::size_t columns = 0;
    for (std::size_t offset = 1; offset <= m_bytes.size(); ++offset) {
        const char before = m_bytes[offset - 1];
        if (!isLineEnd(before)) {
            columns = behind(columns, before);
            m_maxColumns = std::max(m_maxColumns, columns);
        }
        if (beginsLine(offset, place.start)) {
            place = {place.line + 1, static_cast<std::uint32_t>(offset)};
            columns = 0;
        }
        if (offset % blockBytes == 0)
            m_places.push_back(place);
    }
    m_lineCount = std::size_t{place.line} + 1;
}

bool LinedText::beginsLine(std::size_t offset, std::size_t lastStart) const
{
    const char before = m_bytes[offset - 1];
    const bool atEnd = offset == m_bytes.size();
    if (isLineEnd(before))
        return before == '\n' || atEnd || m_bytes[offset] != '\n';
    return offset - lastStart >= maxLineBytes && !atEnd && !isLineEnd(m_bytes[offset]);
}

LinedText::Place LinedText::stepTo(Place place, std::size_t from, std::size_t to) const
{
    for (std::size_t offset = from + 1; offset <= to; ++offset) {
        if (beginsLine(offset, place.start))
            place = {place.line + 1, static_cast<std::uint32_t>(offset)};
    }
    return place;
}

std::size_t LinedText::lineOf(std::size_t offset) const
{
    const std::size_t block = offset / blockBytes;
    return stepTo(m_places[block], block * blockBytes, offset).line;
}

std::size_t LinedText::lineStart(std::size_t line) const
{
    const auto known = std::lower_bound(m_places.begin(), m_places.end(), line,
                                        [](const Place& place, std::size_t wanted) { return place.line < wanted; });
    if (known != m_places.end() && known->line == line)
        return known->start;
    const auto block = static_cast<std::size_t>(known - m_places.begin()) - 1; // the first place is line 0
    Place place = m_places[block];
    for (std::size_t offset = block * blockBytes + 1; place.line < line && offset <= m_bytes.size(); ++offset)
        place = stepTo(place, offset - 1, offset);
    return place.start;
}

std::string_view LinedText::line(std::size_t line) const
{
    const std::size_t begin = lineStart(line);
    std::size_t end = line + 1 < m_lineCount ? lineStart(line + 1) : m_bytes.size();
    if (end > begin && m_bytes[end - 1] == '\n')
        --end;
    if (end > begin && m_bytes[end - 1] == '\r')
        --end;
    return std::string_view(m_bytes).substr(begin, end - begin);
}

std::size_t columnOf(std::string_view line, std::size_t at)
{
    std::size_t column = 0;
    for (const char byte : line.substr(0, at))
        column = behind(column, byte);
    return column;
}

std::size_t byteAtColumn(std::string_view line, std::size_t column)
{
    std::size_t left = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const std::size_t right = behind(left, line[at]);
        if (column < right)
            return column - left < right - column ? at : at + 1;
        left = right;
    }
    return line.size();
}
