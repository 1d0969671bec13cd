#include "tour/Camera.h"

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int looksAlike = 3;     // looks in a row that must see the same
constexpr int toleratedStep = 64; // of 255, between what a window paints and what the screen shows
constexpr int toleratedShare = 50; // one pixel in so many may be off: text smoothing, a blinking text cursor

/// How far above the others a window stands.
int height(const QWidget* window)
{
    int above = 0;
    for (const QWidget* parent = window->parentWidget(); parent; parent = parent->parentWidget())
        above += parent->isWindow() ? 1 : 0;
    return (window->windowType() == Qt::Popup ? 100 : 0) + (window->isModal() ? 10 : 0) + above;
}

/// The program's windows on the screen, the lowest first; empty while one of them is still to be painted.
QList<QWidget*> shownWindows()
{
    QList<QWidget*> windows;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || window->isMinimized())
            continue;
        if (!window->windowHandle() || !window->windowHandle()->isExposed())
            return {};
        windows += window;
    }
    const QWidget* active = QApplication::activeWindow();
    std::stable_sort(windows.begin(), windows.end(), [active](const QWidget* left, const QWidget* right) {
        return std::pair(height(left), left == active) < std::pair(height(right), right == active);
    });
    return windows;
}

QRect areaOf(const QList<QWidget*>& windows)
{
    QRect area;
    for (const QWidget* window : windows)
        area |= window->frameGeometry();
    return area;
}

QRect inPixels(const QRect& rect, qreal ratio)
{
    return QRectF(rect.x() * ratio, rect.y() * ratio, rect.width() * ratio, rect.height() * ratio).toAlignedRect();
}

/// `area` of the screen, in its own pixels.
QImage fromScreen(const QScreen& screen, const QRect& area)
{
    QImage whole = const_cast<QScreen&>(screen).grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
    whole.setDevicePixelRatio(1);
    const QRect wanted = inPixels(area.translated(-screen.geometry().topLeft()), screen.devicePixelRatio());
    return whole.copy(wanted & whole.rect());
}

QImage composed(const QList<QWidget*>& windows, const QRect& area, qreal ratio)
{
    QImage canvas(inPixels(QRect(QPoint(), area.size()), ratio).size(), QImage::Format_RGB32);
    canvas.fill(Qt::darkGray);
    canvas.setDevicePixelRatio(ratio);
    QPainter painter(&canvas);
    for (QWidget* window : windows)
        painter.drawPixmap(window->geometry().topLeft() - area.topLeft(), window->grab());
    painter.end();
    canvas.setDevicePixelRatio(1);
    return canvas;
}

/// Whether `view` shows the window as it paints itself, that is, neither blank nor covered.
bool showsWindow(const QImage& view, QWidget& window, const QRect& area, qreal ratio)
{
    QImage painted = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    painted.setDevicePixelRatio(1);
    const QPoint at = inPixels(window.geometry().translated(-area.topLeft()), ratio).topLeft();
    qint64 off = 0;
    for (int y = 0; y < painted.height(); ++y) {
        for (int x = 0; x < painted.width(); ++x) {
            const QPoint there = at + QPoint(x, y);
            if (!view.valid(there))
                return false;
            const QRgb left = painted.pixel(x, y);
            const QRgb right = view.pixel(there);
            const int step = std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                                       std::abs(qBlue(left) - qBlue(right))});
            off += step > toleratedStep ? 1 : 0;
        }
    }
    return off * toleratedShare < qint64{painted.width()} * painted.height();
}

} // namespace

void Camera::prepare(const QString& file)
{
    m_folder.remove(file);
    m_seen = {};
    m_timesSeen = 0;
}

bool Camera::take(const QString& file)
{
    const QList<QWidget*> windows = shownWindows();
    if (windows.isEmpty())
        return false;
    const bool canReadScreen = QGuiApplication::platformName() != u"offscreen"_s;
    const QScreen& screen = *windows.front()->screen();
    const QRect area = areaOf(windows) & screen.geometry();
    const qreal ratio = screen.devicePixelRatio();
    const QImage view = canReadScreen ? fromScreen(screen, area) : composed(windows, area, ratio);
    if (view.isNull())
        return false;
    m_timesSeen = view == m_seen ? m_timesSeen + 1 : 1;
    m_seen = view;
    if (m_timesSeen < looksAlike || !showsWindow(view, *windows.back(), area, ratio))
        return false;
    return view.save(m_folder.filePath(file), "PNG");
}

} // namespace tour
