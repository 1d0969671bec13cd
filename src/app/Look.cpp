#include "app/Look.h"

#include <QApplication>
#include <QFont>
#include <QGroupBox>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace {

/// The edge of `area` without its corners.
void paintOutline(QPainter& painter, const QRect& area, const QColor& colour)
{
    const QRect across = area.adjusted(1, 0, -1, 0);
    const QRect along = area.adjusted(0, 1, 0, -1);
    painter.fillRect(QRect(across.topLeft(), QSize(across.width(), 1)), colour);
    painter.fillRect(QRect(across.bottomLeft(), QSize(across.width(), 1)), colour);
    painter.fillRect(QRect(along.topLeft(), QSize(1, along.height())), colour);
    painter.fillRect(QRect(along.topRight(), QSize(1, along.height())), colour);
}

/// Paints group boxes as the style beneath it does, which stretches a picture over them: reading that loads every
/// image decoder of the system, and blending it starts threads, at each start of the program.
class Style : public QProxyStyle
{
public:
    Style() : QProxyStyle(u"Fusion"_s) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_FrameGroupBox)
            paintGroupBox(*painter, *option, widget);
        else
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

private:
    void paintGroupBox(QPainter& painter, const QStyleOption& option, const QWidget* widget) const
    {
        constexpr int gap = 3; // pixels between the caption and the line
        const auto* box = qobject_cast<const QGroupBox*>(widget);
        const bool hasCaption = box && (box->isCheckable() || !box->title().isEmpty());
        const int caption =
            hasCaption ? qMax(pixelMetric(PM_IndicatorHeight, &option, widget), option.fontMetrics.height()) : 0;
        const QRect line = option.rect.adjusted(1, caption + gap + 1, 0, 0);
        const QRect shade = line.adjusted(1, 1, -1, -1);
        paintOutline(painter, line, QColor(0x75, 0x75, 0x75, 0x32));
        paintOutline(painter, shade, QColor(0, 0, 0, 0x07));
        painter.fillRect(shade.adjusted(1, 1, -1, -1), QColor(0, 0, 0, 0x03));
        for (const QPoint& corner : {shade.topLeft(), shade.topRight(), shade.bottomLeft(), shade.bottomRight()})
            painter.fillRect(QRect(corner, QSize(1, 1)), QColor(0x5A, 0x5A, 0x5A, 0x1F)); // rounds them
    }
};

} // namespace

void applyLook()
{
    QApplication::setStyle(new Style); // the application's from here on
    QPalette palette(QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Window, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xF1, 0xF5, 0xFA));
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x66, 0xA8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x8F, 0xA3, 0xBC));
    QApplication::setPalette(palette);
    // One family: a second one has all that could stand in for both looked for at the start, while the system's own
    // substitutes for this one are looked for only when it lacks something.
#if defined(Q_OS_WIN)
    QFont font(u"Segoe UI"_s);
#else
    QFont font(u"Liberation Sans"_s);
#endif
    font.setPointSize(9);
    QApplication::setFont(font);
}
