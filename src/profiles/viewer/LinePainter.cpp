#include "profiles/viewer/LinePainter.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace {

constexpr int sample = 64;         // characters that are measured at once
constexpr qreal widthSlack = 0.05; // of a column

/// Codes without a character, and characters that cannot be seen.
bool isBlind(char16_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0xAD;
}

} // namespace

void LinePainter::setFont(const QFont& font)
{
    const QFontMetricsF metrics(font);
    const auto widthOf = [&metrics](QChar character) { return metrics.horizontalAdvance(QString(sample, character)); };
    m_cell = widthOf(u'0') / sample;
    m_lineHeight = static_cast<int>(std::ceil(metrics.lineSpacing()));
    m_ascent = metrics.ascent();
    for (std::size_t byte = 0; byte < m_fitsCell.size(); ++byte) {
        const char single = static_cast<char>(byte);
        const QChar character = m_codePage.toText({&single, 1})[0];
        m_fitsCell[byte] =
            !isBlind(character.unicode()) && std::abs(widthOf(character) - sample * m_cell) < sample * widthSlack;
    }
}

void LinePainter::paint(QPainter& painter, std::string_view line, const QPointF& place, int right,
                        const TextRange& selected, const QPalette& palette) const
{
    const auto leftOf = [&](std::size_t column) { return place.x() + static_cast<qreal>(column) * m_cell; };
    const auto columnAt = [&](qreal x) { return static_cast<std::size_t>(std::max(0.0, (x - place.x()) / m_cell)); };
    const std::size_t lastColumn = columnAt(right) + 1;
    std::size_t at = byteAtColumn(line, columnAt(0));
    at = m_codePage.map().startOf(line, at - std::min<std::size_t>(at, 1));
    std::size_t column = columnOf(line, at);
    while (at < line.size() && column <= lastColumn) {
        // A run of characters that look alike is painted at once; those of other widths have a column each all the
        // same, those of two bytes two of them.
        const bool isSelected = selected.contains(at);
        std::size_t end = at + m_codePage.map().sizeAt(line, at);
        while (fits(line[at]) && end < line.size() && column + (end - at) <= lastColumn && fits(line[end]) &&
               selected.contains(end) == isSelected)
            ++end;
        const std::size_t next =
            line[at] == '\t' ? (column / LinedText::tabColumns + 1) * LinedText::tabColumns : column + (end - at);
        const QRectF cell(leftOf(column), place.y(), static_cast<qreal>(next - column) * m_cell, m_lineHeight);
        paintRun(painter, line.substr(at, end - at), cell, isSelected, palette);
        column = next;
        at = end;
    }
    // A line end has no width; half a column shows that it is selected too.
    if (at == line.size() && selected.contains(at))
        painter.fillRect(QRectF(leftOf(column), place.y(), m_cell / 2, m_lineHeight),
                         palette.color(QPalette::Highlight));
}

void LinePainter::paintRun(QPainter& painter, std::string_view run, const QRectF& cell, bool selected,
                           const QPalette& palette) const
{
    const QString characters = m_codePage.toText(run);
    if (selected)
        painter.fillRect(cell, palette.color(QPalette::Highlight));
    const bool isDot = isBlind(characters[0].unicode());
    if (isDot && run[0] == '\t')
        return;
    const QPalette::ColorRole ink = isDot ? QPalette::PlaceholderText : QPalette::Text;
    painter.setPen(palette.color(selected ? QPalette::HighlightedText : ink));
    if (isDot)
        painter.drawText(cell, Qt::AlignCenter, QStringLiteral("·"));
    else if (fits(run[0]))
        painter.drawText(QPointF(cell.left(), cell.top() + m_ascent), characters);
    else
        painter.drawText(cell, Qt::AlignCenter | Qt::TextDontClip, characters);
}
