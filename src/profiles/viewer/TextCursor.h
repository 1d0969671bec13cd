#pragma once

#include <array>
#include <cstddef>

class LinedText;

/// A part of a text, in offsets.
struct TextRange
{
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - begin; }
    bool isEmpty() const { return begin == end; }
    bool contains(std::size_t offset) const { return offset >= begin && offset < end; }
};

/// The place in a text that is moved by keys and mouse, and what is selected: all from an anchor to it. No move takes
/// longer for a larger text.
class TextCursor
{
public:
    enum class Move { Back, On, WordBack, WordOn, Up, Down, PageUp, PageDown, LineBegin, LineEnd, TextBegin, TextEnd };
    /// For each byte whether it belongs to words.
    using WordBytes = std::array<bool, 256>;

    /// Stands at the beginning. @param text, words  outlive this
    TextCursor(const LinedText& text, const WordBytes& words) : m_text(&text), m_words(&words) {}

    std::size_t position() const { return m_position; }
    std::size_t anchor() const { return m_anchor; }
    TextRange selection() const;

    /// Selects from `anchor` to `position`, in any order; beyond the end counts as the end.
    void select(std::size_t anchor, std::size_t position);
    /// Selects the word that stands around `offset`; nothing between words.
    void selectWord(std::size_t offset);
    /// @param selects    whether the anchor stays behind
    /// @param pageLines  lines that a page goes up or down
    void go(Move move, bool selects, std::ptrdiff_t pageLines);

private:
    std::size_t target(Move move, std::ptrdiff_t pageLines) const;
    std::size_t lineBelow(std::ptrdiff_t lines) const;
    std::size_t before(std::size_t offset) const;
    std::size_t after(std::size_t offset) const;
    bool isInWord(std::size_t offset) const;
    std::size_t wordBegin(std::size_t offset) const;
    std::size_t wordEnd(std::size_t offset) const;
    std::size_t previousWord(std::size_t offset) const;
    std::size_t nextWord(std::size_t offset) const;
    void takeColumn();

    const LinedText* m_text;
    const WordBytes* m_words;
    std::size_t m_anchor = 0;
    std::size_t m_position = 0;
    std::size_t m_column = 0; ///< the one that moves up and down keep to
};
