#include "ui/BackgroundPicture.h"

#include <QPaintEngine>
#include <QPainter>
#include <QPixmap>

namespace {

/// Raster operations know no transparency: what shows through a picture is the white of a control.
QPixmap overWhite(const QPixmap& picture)
{
    if (!picture.hasAlphaChannel())
        return picture;
    QPixmap opaque(picture.size());
    opaque.setDevicePixelRatio(picture.devicePixelRatio());
    opaque.fill(Qt::white);
    QPainter(&opaque).drawPixmap(0, 0, picture);
    return opaque;
}

} // namespace

void paintBackground(QPainter& painter, const QPixmap& background, const QRect& area)
{
    if (background.isNull() || area.isEmpty())
        return;
    const QPixmap picture = overWhite(background);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (painter.paintEngine()->hasFeature(QPaintEngine::RasterOpModes)) {
        painter.setCompositionMode(QPainter::RasterOp_NotSourceOrDestination);
        painter.drawPixmap(area, picture);
        painter.setCompositionMode(QPainter::RasterOp_SourceAndDestination);
        painter.drawPixmap(area, picture);
    } else {
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        painter.drawPixmap(area, picture);
    }
    painter.restore();
}
