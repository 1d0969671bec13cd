#include "ui/GridDelegate.h"

#include "ui/GridModel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

namespace {

constexpr int margin = 2;                    // pixels left and right of a text
constexpr qreal lockedOpacity = 0.4;         // of pictures in a grid that cannot be used
constexpr qreal plateRadius = 4;             // pixels
constexpr int pictureMargin = 1;             // pixels around a picture
constexpr qsizetype maxToolTipLength = 2000; // characters; more would not fit on a screen

const GridModel& gridOf(const QModelIndex& index)
{
    return *static_cast<const GridModel*>(index.model());
}

QFont cellFont(const QStyleOptionViewItem& option, bool bold)
{
    QFont font = option.font;
    if (bold)
        font.setBold(true);
    return font;
}

/// What the view's lines leave of a cell.
QRect insideOf(const QStyleOptionViewItem& option)
{
    return option.rect.adjusted(0, 0, -gridLineWidth, -gridLineWidth);
}

/// The ground of a picture in a selected row: pictures are drawn for a light one and get lost on the highlight.
void paintPlate(QPainter& painter, const QRect& cell, const QColor& colour)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(cell).adjusted(1, 1, -1, -1), plateRadius, plateRadius);
}

void paintPicture(QPainter& painter, const QPixmap& pixmap, const QRect& cell)
{
    const QRectF room = QRectF(cell).adjusted(pictureMargin, pictureMargin, -pictureMargin, -pictureMargin);
    QSizeF size = pixmap.deviceIndependentSize();
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    QRectF target(QPointF(), size);
    target.moveCenter(room.center());
    target.moveTopLeft(target.topLeft().toPoint()); // on whole pixels, so that an unscaled picture stays sharp
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
}

} // namespace

QString singleLine(QString text)
{
    for (QChar& character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            character = u' ';
    }
    return text;
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const GridModel& grid = gridOf(index);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QPalette::ColorGroup group = !option.state.testFlag(QStyle::State_Enabled) ? QPalette::Disabled
                                       : option.state.testFlag(QStyle::State_Active) ? QPalette::Active
                                                                                     : QPalette::Inactive;
    if (selected)
        painter->fillRect(option.rect, option.palette.color(group, QPalette::Highlight));
    const QRect cell = insideOf(option);
    if (const GridPicture* const picture = grid.pictureAt(index.row(), index.column())) {
        if (selected)
            paintPlate(*painter, cell, option.palette.color(group, QPalette::Base));
        painter->setOpacity(group == QPalette::Disabled ? lockedOpacity : 1.0);
        paintPicture(*painter, picture->pixmap, cell);
        painter->setOpacity(1.0);
        return;
    }
    const QString text = grid.text(index.row(), index.column());
    if (text.isEmpty())
        return;
    const bool bold = grid.row(index.row()).title;
    const LaidOutText& laid = laidOut(text, option, bold);
    const QRect room = cell.adjusted(margin, 0, -margin, 0);
    const QRect place = QStyle::alignedRect(option.direction, grid.alignment(index.column()), laid.size.toSize(), room);
    if (const QFont font = cellFont(option, bold); painter->font() != font)
        painter->setFont(font);
    painter->setPen(option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawStaticText(place.topLeft(), laid.text);
}

bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.isValid() ? toolTipText(option, index) : QString();
    if (text.isEmpty())
        QToolTip::hideText();
    else // tool tips guess whether a text is markup, so it is made markup that shows it as it is
        QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal), view, option.rect);
    return true;
}

QString GridDelegate::toolTipText(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const GridModel& grid = gridOf(index);
    QString text = grid.row(index.row()).toolTip;
    if (text.isEmpty()) {
        if (const GridPicture* const picture = grid.pictureAt(index.row(), index.column()))
            text = picture->text;
        else if (const QString cell = grid.text(index.row(), index.column());
                 laidOut(cell, option, grid.row(index.row()).title).cutOff)
            text = cell;
    }
    if (text.size() > maxToolTipLength)
        text = text.left(maxToolTipLength) + u'…';
    return text;
}

const GridDelegate::LaidOutText& GridDelegate::laidOut(const QString& text, const QStyleOptionViewItem& option,
                                                       bool bold) const
{
    const int width = qMax(0, insideOf(option).width() - 2 * margin);
    // No character that shows is narrower than a pixel, so what lies behind these cannot be seen. Neither the layout
    // nor the cache ever holds a text of unbounded length.
    const qsizetype limit = width + 1;
    const bool tooLong = text.size() > limit;
    const TextKey key{tooLong ? text.left(limit) + u'…' : text, width, bold};
    if (const LaidOutText* const known = m_texts.object(key))
        return *known;

    const QFont font = cellFont(option, bold);
    const QString line = singleLine(key.text);
    const QString shown = QFontMetrics(font).elidedText(line, Qt::ElideRight, width);
    auto* const laid = new LaidOutText{QStaticText(shown), {}, tooLong || shown != line};
    laid->text.setTextFormat(Qt::PlainText);
    laid->text.setPerformanceHint(QStaticText::AggressiveCaching);
    laid->text.prepare({}, font);
    laid->size = laid->text.size();
    m_texts.insert(key, laid);
    return *laid;
}
