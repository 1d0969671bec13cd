#include "tour/Camera.h"

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <QtMath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr std::chrono::milliseconds rest{250}; // a view must not change for so long: longer than any poll of the client
constexpr int toleratedStep = 64;              // of 255, between what a window paints and what the screen shows
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
        area |= window->windowHandle()->frameGeometry(); // a widget may know its frame from before it was decorated
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

bool canReadScreen()
{
    return QGuiApplication::platformName() != u"offscreen"_s;
}

/// What there is to see of the program.
struct View
{
    QImage image; ///< in pixels of the screen; null while a window is still to be painted
    QRect area = {};
    qreal ratio = 1; ///< pixels of the screen in one of `area`
    QWidget* foremost = nullptr;
};

View look()
{
    const QList<QWidget*> windows = shownWindows();
    if (windows.isEmpty())
        return {};
    const QScreen& screen = *windows.front()->screen();
    const QRect area = canReadScreen() ? areaOf(windows) & screen.geometry() : areaOf(windows);
    const qreal ratio = screen.devicePixelRatio();
    return {canReadScreen() ? fromScreen(screen, area) : composed(windows, area, ratio), area, ratio, windows.back()};
}

bool isBlank(const QImage& view)
{
    QImage plain(view.size(), view.format());
    plain.fill(view.pixel(0, 0));
    return view == plain;
}

/// Whether `view` holds `painted` with its left upper corner at that place.
bool holds(const QImage& view, const QImage& painted, const QPoint& at)
{
    if (!view.rect().contains(QRect(at, painted.size())))
        return false;
    qint64 mayBeOff = qint64{painted.width()} * painted.height() / toleratedShare;
    for (int y = 0; y < painted.height(); ++y) {
        for (int x = 0; x < painted.width(); ++x) {
            const QRgb left = painted.pixel(x, y);
            const QRgb right = view.pixel(at + QPoint(x, y));
            const int step = std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                                       std::abs(qBlue(left) - qBlue(right))});
            if (step > toleratedStep && --mayBeOff < 0)
                return false;
        }
    }
    return true;
}

/// Whether the view shows its foremost window as that paints itself, that is, neither blank nor covered.
bool showsWindow(const View& view)
{
    QImage painted = view.foremost->grab().toImage().convertToFormat(QImage::Format_RGB32);
    painted.setDevicePixelRatio(1);
    const QPoint at = inPixels(view.foremost->geometry().translated(-view.area.topLeft()), view.ratio).topLeft();
    // Two rounded lengths lie between the corners: the window manager counts in pixels.
    const int slack = qCeil(2 * (view.ratio - 1));
    for (int dy = -slack; dy <= slack; ++dy) {
        for (int dx = -slack; dx <= slack; ++dx) {
            if (holds(view.image, painted, at + QPoint(dx, dy)))
                return true;
        }
    }
    return false;
}

} // namespace

void Camera::prepare(const QString& file)
{
    m_folder.remove(file);
    m_seen = {};
}

bool Camera::take(const QString& file)
{
    const View view = look();
    if (view.image.isNull())
        return false;
    if (view.image != m_seen) {
        m_seen = view.image;
        m_sinceChange.start();
    }
    if (!m_sinceChange.hasExpired(rest.count()) || isBlank(view.image))
        return false;
    if (canReadScreen() && !showsWindow(view))
        return false;
    return view.image.save(m_folder.filePath(file), "PNG");
}

void Camera::takeAtOnce(const QString& file)
{
    look().image.save(m_folder.filePath(file), "PNG");
}

} // namespace tour
