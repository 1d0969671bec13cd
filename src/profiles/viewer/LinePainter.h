#pragma once

#include "profiles/viewer/TextCursor.h"

#include <QFont>
#include <QPalette>

#include <array>
#include <string_view>

class CodePage;
class QPainter;

/// Paints lines of a text, each character in a column of the same width. Bytes without a character of their own are a
/// pale dot.
class LinePainter
{
public:
    /// @param codePage  turns the bytes into characters; outlives this
    explicit LinePainter(const CodePage& codePage) : m_codePage(codePage) {}

    void setFont(const QFont& font);
    /// Pixels of a column.
    qreal cell() const { return m_cell; }
    /// Pixels from one line to the next, which are whole.
    int lineHeight() const { return m_lineHeight; }

    /// Paints what of a line is in sight.
    /// @param place     where the line begins, in pixels; may be left of what is in sight, which begins at 0
    /// @param right     pixel at which what is in sight ends
    /// @param selected  in offsets of the line; its size, when selected, is the line's end
    void paint(QPainter& painter, std::string_view line, const QPointF& place, int right, const TextRange& selected,
               const QPalette& palette) const;

private:
    bool fits(char byte) const { return m_fitsCell[static_cast<unsigned char>(byte)]; }
    void paintRun(QPainter& painter, std::string_view run, const QRectF& cell, bool selected,
                  const QPalette& palette) const;

    const CodePage& m_codePage;
    qreal m_cell = 1;
    int m_lineHeight = 1;
    qreal m_ascent = 1;
    std::array<bool, 256> m_fitsCell{}; ///< whether the byte's character is as wide as a column
};
