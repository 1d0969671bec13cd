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

PageNews newsOfPage(const QWidget& frame, void* message)
{
    const MSG& native = *static_cast<const MSG*>(message);
    const HWND parent = handleOf(frame.internalWinId());
    const auto isPage = [parent](HWND window) { return IsChild(parent, window) && isForeign(window); };
    switch (native.message) {
    case WM_KEYDOWN:
        if (native.wParam == VK_SHIFT)
            return PageNews::None;
        if (native.wParam != VK_TAB || !isPage(native.hwnd))
            return PageNews::OtherInput;
        return GetKeyState(VK_SHIFT) < 0 ? PageNews::TabBack : PageNews::TabOnward;
    case WM_LBUTTONDOWN:
    case WM_NCLBUTTONDOWN:
    case WM_SYSKEYDOWN:
        return PageNews::OtherInput;
    case WM_SETFOCUS:
        return native.hwnd == parent && isPage(reinterpret_cast<HWND>(native.wParam)) ? PageNews::GivesKeyboard
                                                                                      : PageNews::None;
    default:
        return PageNews::None;
    }
}
