#include "profiles/viewer/TextCursor.h"

#include "profiles/viewer/LinedText.h"

#include <algorithm>

namespace {

/// Words, too, are looked for in one line's length at most.
constexpr std::size_t maxWordBytes = LinedText::maxLineBytes;

constexpr bool keepsColumn(TextCursor::Move move)
{
    using Move = TextCursor::Move;
    return move == Move::Up || move == Move::Down || move == Move::PageUp || move == Move::PageDown;
}

} // namespace

TextRange TextCursor::selection() const
{
    return {std::min(m_anchor, m_position), std::max(m_anchor, m_position)};
}

void TextCursor::select(std::size_t anchor, std::size_t position)
{
    m_anchor = std::min(anchor, m_text->size());
    m_position = std::min(position, m_text->size());
    takeColumn();
}

void TextCursor::selectWord(std::size_t offset)
{
    select(wordBegin(offset), wordEnd(offset));
}

void TextCursor::go(Move move, bool selects, std::ptrdiff_t pageLines)
{
    m_position = target(move, pageLines);
    if (!selects)
        m_anchor = m_position;
    if (!keepsColumn(move))
        takeColumn();
}

void TextCursor::takeColumn()
{
    const std::size_t line = m_text->lineOf(m_position);
    m_column = columnOf(m_text->line(line), m_position - m_text->lineStart(line));
}

std::size_t TextCursor::target(Move move, std::ptrdiff_t pageLines) const
{
    const std::size_t line = m_text->lineOf(m_position);
    switch (move) {
    case Move::Back:
        return before(m_position);
    case Move::On:
        return after(m_position);
    case Move::WordBack:
        return previousWord(m_position);
    case Move::WordOn:
        return nextWord(m_position);
    case Move::Up:
        return lineBelow(-1);
    case Move::Down:
        return lineBelow(1);
    case Move::PageUp:
        return lineBelow(-pageLines);
    case Move::PageDown:
        return lineBelow(pageLines);
    case Move::LineBegin:
        return m_text->lineStart(line);
    case Move::LineEnd:
        return m_text->lineStart(line) + m_text->line(line).size();
    case Move::TextBegin:
        return 0;
    case Move::TextEnd:
        return m_text->size();
    }
    return m_position;
}

std::size_t TextCursor::lineBelow(std::ptrdiff_t lines) const
{
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_text->lineCount()) - 1;
    const std::ptrdiff_t wanted = static_cast<std::ptrdiff_t>(m_text->lineOf(m_position)) + lines;
    const auto line = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(wanted, 0, last));
    return m_text->lineStart(line) + byteAtColumn(m_text->line(line), m_column);
}

/// CR LF is passed as one.
std::size_t TextCursor::before(std::size_t offset) const
{
    const std::string& bytes = m_text->bytes();
    if (offset == 0)
        return 0;
    return offset >= 2 && bytes[offset - 1] == '\n' && bytes[offset - 2] == '\r' ? offset - 2 : offset - 1;
}

std::size_t TextCursor::after(std::size_t offset) const
{
    const std::string& bytes = m_text->bytes();
    if (offset >= bytes.size())
        return bytes.size();
    return offset + 1 < bytes.size() && bytes[offset] == '\r' && bytes[offset + 1] == '\n' ? offset + 2 : offset + 1;
}

bool TextCursor::isInWord(std::size_t offset) const
{
    return (*m_words)[static_cast<unsigned char>(m_text->bytes()[offset])];
}

std::size_t TextCursor::wordBegin(std::size_t offset) const
{
    const std::size_t limit = offset - std::min(offset, maxWordBytes);
    while (offset > limit && isInWord(offset - 1))
        --offset;
    return offset;
}

std::size_t TextCursor::wordEnd(std::size_t offset) const
{
    const std::size_t limit = std::min(m_text->size(), offset + maxWordBytes);
    while (offset < limit && isInWord(offset))
        ++offset;
    return offset;
}

/// Over what stands between words, then over the word.
std::size_t TextCursor::previousWord(std::size_t offset) const
{
    const std::size_t limit = offset - std::min(offset, maxWordBytes);
    while (offset > limit && !isInWord(offset - 1))
        --offset;
    return wordBegin(offset);
}

std::size_t TextCursor::nextWord(std::size_t offset) const
{
    const std::size_t limit = std::min(m_text->size(), offset + maxWordBytes);
    while (offset < limit && !isInWord(offset))
        ++offset;
    return wordEnd(offset);
}
