#include "ui/PluginFrame.h"

#include "ui/ForeignPage.h"

bool PluginFrame::focusBehind(QWidget* from, bool next, const QRect& covered)
{
    const auto step = [next](const QWidget* widget) {
        return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* widget = step(from); widget != this; widget = step(widget)) {
        const bool isReached = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->isVisible() &&
                               widget->isEnabled() && widget->window() == this && !widget->focusProxy();
        if (isReached && !covered.contains(widget->mapTo(this, widget->rect().center()))) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return false;
}

bool PluginFrame::focusNextPrevChild(bool next)
{
    const std::optional<ForeignPage> page = foreignPageIn(*this);
    if (!page)
        return QMainWindow::focusNextPrevChild(next);
    if (!focusBehind(focusWidget() ? focusWidget() : this, next, page->place))
        giveKeyboard(*page);
    return true;
}

bool PluginFrame::nativeEvent(const QByteArray& kind, void* message, qintptr* result)
{
    if (const std::optional<bool> next = tabOutOfPage(*this, message)) {
        // Qt gives the keyboard to the control that had it last; this comes behind that.
        QMetaObject::invokeMethod(
            this,
            [this, next] {
                if (const std::optional<ForeignPage> page = foreignPageIn(*this))
                    focusBehind(this, *next, page->place);
            },
            Qt::QueuedConnection);
    }
    return QMainWindow::nativeEvent(kind, message, result);
}
