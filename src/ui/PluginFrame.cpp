#include "ui/PluginFrame.h"

#include "ui/ForeignPage.h"

#include <QCoreApplication>

PluginFrame::PluginFrame()
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

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

bool PluginFrame::nativeEventFilter(const QByteArray& /*kind*/, void* message, qintptr* /*result*/)
{
    const PageNews news = newsOfPage(*this, message);
    if (news == PageNews::TabOnward || news == PageNews::TabBack)
        m_tabInPage = news == PageNews::TabOnward;
    else if (news == PageNews::OtherInput)
        m_tabInPage.reset();
    return false;
}

bool PluginFrame::nativeEvent(const QByteArray& kind, void* message, qintptr* result)
{
    if (newsOfPage(*this, message) == PageNews::GivesKeyboard && m_tabInPage) {
        // Qt gives the keyboard to the control that had it last; this comes behind that.
        QMetaObject::invokeMethod(
            this,
            [this, next = *m_tabInPage] {
                if (const std::optional<ForeignPage> page = foreignPageIn(*this))
                    focusBehind(this, next, page->place);
            },
            Qt::QueuedConnection);
    }
    return QMainWindow::nativeEvent(kind, message, result);
}
