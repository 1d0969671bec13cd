#include "ui/ForeignPage.h"

#include <windows.h>

namespace {

HWND handleOf(WId id)
{
    return reinterpret_cast<HWND>(id);
}

bool isForeign(HWND window)
{
    return !QWidget::find(reinterpret_cast<WId>(window));
}

} // namespace

std::optional<ForeignPage> foreignPageIn(const QWidget& frame)
{
    const HWND parent = handleOf(frame.internalWinId());
    HWND child = parent ? GetWindow(parent, GW_CHILD) : nullptr;
    while (child && !(IsWindowVisible(child) && isForeign(child)))
        child = GetWindow(child, GW_HWNDNEXT);
    if (!child)
        return {};
    RECT place{};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    const qreal scale = frame.devicePixelRatioF();
    const QRectF inPixels(QPointF(place.left, place.top), QPointF(place.right, place.bottom));
    return ForeignPage{.id = reinterpret_cast<WId>(child),
                       .place = QRectF(inPixels.topLeft() / scale, inPixels.size() / scale).toRect()};
}

void giveKeyboard(const ForeignPage& page)
{
    SetFocus(handleOf(page.id));
}

std::optional<bool> tabOutOfPage(const QWidget& frame, void* message)
{
    const MSG& native = *static_cast<const MSG*>(message);
    const auto left = reinterpret_cast<HWND>(native.wParam);
    const HWND parent = handleOf(frame.internalWinId());
    const bool isDown = GetKeyState(VK_TAB) < 0;
    if (native.message != WM_SETFOCUS || native.hwnd != parent || !IsChild(parent, left) || !isForeign(left) || !isDown)
        return {};
    return GetKeyState(VK_SHIFT) >= 0;
}
