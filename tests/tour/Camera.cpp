#include "tour/Camera.h"

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr std::chrono::milliseconds rest{250}; // a view must not change for so long: longer than any poll of the client

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

/// What there is to see of the program, in pixels of the screen; null while a window is still to be painted.
QImage look()
{
    const QList<QWidget*> windows = shownWindows();
    if (windows.isEmpty())
        return {};
    const QScreen& screen = *windows.front()->screen();
    return canReadScreen() ? fromScreen(screen, areaOf(windows) & screen.geometry())
                           : composed(windows, areaOf(windows), screen.devicePixelRatio());
}

bool isBlank(const QImage& view)
{
    QImage plain(view.size(), view.format());
    plain.fill(view.pixel(0, 0));
    return view == plain;
}

} // namespace

void Camera::prepare(const QString& file)
{
    m_folder.remove(file);
    m_seen = {};
}

bool Camera::take(const QString& file)
{
    const QImage view = look();
    if (view.isNull())
        return false;
    if (view != m_seen) {
        m_seen = view;
        m_sinceChange.start();
    }
    if (!m_sinceChange.hasExpired(rest.count()) || isBlank(view))
        return false;
    return view.save(m_folder.filePath(file), "PNG");
}

void Camera::takeAtOnce(const QString& file)
{
    look().save(m_folder.filePath(file), "PNG");
}

} // namespace tour
