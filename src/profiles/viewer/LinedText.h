#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A text of bytes that does not change, and where its lines begin. Lines end in CR LF, LF or a lone CR; one of more
/// than `maxLineBytes` goes on in the line below, so that no line takes long to look at. The index takes 8 bytes for
/// every 4 KiB whatever the text, and both ways to ask it read 4 KiB at most. Can be made in one thread and used in
/// others.
class LinedText
{
public:
    static constexpr std::size_t maxLineBytes = 16384;
    static constexpr std::size_t tabColumns = 8;

    /// @param bytes  fewer than 4 GiB
    explicit LinedText(std::string bytes);

    const std::string& bytes() const { return m_bytes; }
    std::size_t size() const { return m_bytes.size(); }
    /// At least one; behind the last line end stands another line, which may be empty.
    std::size_t lineCount() const { return m_lineCount; }
    /// Columns of the widest line, with TABs as wide as they are shown.
    std::size_t maxColumns() const { return m_maxColumns; }

    /// The offset at which a line begins; `line` must exist.
    std::size_t lineStart(std::size_t line) const;
    /// The line that holds `offset`, which may be the end of the text. A line end belongs to its line.
    std::size_t lineOf(std::size_t offset) const;
    /// A line without its end; `line` must exist.
    std::string_view line(std::size_t line) const;

private:
    /// What is known at the beginning of each block of bytes: the line there and where that line begins.
    struct Place
    {
        std::uint32_t line = 0;
        std::uint32_t start = 0;
    };

    bool beginsLine(std::size_t offset, std::size_t lastStart) const;
    Place stepTo(Place place, std::size_t from, std::size_t to) const;

    std::string m_bytes;
    std::vector<Place> m_places;
    std::size_t m_lineCount = 1;
    std::size_t m_maxColumns = 0;
};

/// The column at which the byte `at` of a line is shown, from 0.
std::size_t columnOf(std::string_view line, std::size_t at);
/// The byte of a line whose place is nearest to `column`; the line's size behind its last one.
std::size_t byteAtColumn(std::string_view line, std::size_t column);
