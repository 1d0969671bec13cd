#pragma once

#include <QRect>

class QPainter;
class QPixmap;

/// Lays `background`, stretched over `area`, under what is already painted there: white becomes the picture, black
/// stays black. For use at the end of a paint event, which repaints everything that it is clipped to. Does nothing when
/// `background` is null.
void paintBackground(QPainter& painter, const QPixmap& background, const QRect& area);
