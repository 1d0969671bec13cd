#pragma once

#include <QApplication>
#include <QDialog>
#include <QFont>
#include <QStatusBar>
#include <QWindow>

#include <cstdint>

#if defined(Q_OS_WIN)
#include <windows.h>
#endif

/// The client's frame, for a plugin that uses Qt. Where plugin and client share one Qt the frame is a widget like any
/// other; a plugin with a Qt of its own sees a window of somebody else, and needs an application object first.
class ForeignFrame
{
public:
    /// @param window  what LoadInterface was given
    explicit ForeignFrame(std::int32_t window)
        : m_id(static_cast<WId>(window)) // handles keep their sign when they grow
    {
        needApplication();
        m_widget = QWidget::find(m_id);
    }

    /// Makes this library's Qt usable. Its application object stays to the end of the process.
    static void needApplication()
    {
        static int count = 1;
        static char name[] = "plugin";
        static char* arguments[] = {name, nullptr};
        if (!QCoreApplication::instance()) {
            new QApplication(count, arguments);
            QApplication::setStyle(QStringLiteral("Fusion")); // this and the font are the client's
            constexpr int points = 9;
            QApplication::setFont(QFont(QStringList{QStringLiteral("Segoe UI"), QStringLiteral("Tahoma")}, points));
        }
    }

    /// Makes `page` a part of the frame, below its navigation and above its status bar.
    void place(QWidget& page) const
    {
        constexpr int navigationHeight = 28;
        constexpr int statusBarHeight = 22;
        if (m_widget) {
            if (page.parentWidget() != m_widget)
                page.setParent(m_widget);
            const auto* status = m_widget->findChild<QStatusBar*>();
            const int bottom = status ? status->y() : m_widget->height();
            page.setGeometry(1, navigationHeight, m_widget->width() - 3, bottom - navigationHeight - 2);
            return;
        }
        QWindow* frame = QWindow::fromWinId(m_id);
        if (!frame)
            return;
        if (!page.testAttribute(Qt::WA_WState_Created)) {
            page.setWindowFlag(Qt::FramelessWindowHint);
            page.winId(); // makes its window
            page.windowHandle()->installEventFilter(new FocusOnClick(&page));
        }
        page.windowHandle()->setParent(frame);
        page.setGeometry(1, navigationHeight, frame->width() - 3,
                         frame->height() - navigationHeight - statusBarHeight - 2);
    }

    /// A dialog that stays above the frame.
    QDialog* newDialog() const
    {
        auto* dialog = new QDialog(m_widget);
        if (!m_widget && m_id != 0) {
            dialog->winId();
            dialog->windowHandle()->setTransientParent(QWindow::fromWinId(m_id));
        }
        return dialog;
    }

private:
    /// A window inside of somebody else's takes the keyboard only when it asks for it.
    class FocusOnClick : public QObject
    {
    public:
        using QObject::QObject;

        bool eventFilter(QObject* watched, QEvent* event) override
        {
            if (event->type() == QEvent::MouseButtonPress)
                static_cast<QWindow*>(watched)->requestActivate();
            return false;
        }
    };

    WId m_id;
    QWidget* m_widget = nullptr;
};

/// A page for a frame. Where the frame is a window of somebody else, the Tab key leads out of the page behind its last
/// control, and back before its first: the frame goes on from there once it has the keyboard.
class ForeignPage : public QWidget
{
protected:
    bool focusNextPrevChild(bool next) override
    {
#if defined(Q_OS_WIN)
        const QWindow* window = isWindow() ? windowHandle() : nullptr;
        if (window && window->parent() && !hasControlBehind(focusWidget(), next)) {
            SetFocus(GetParent(reinterpret_cast<HWND>(winId())));
            return true;
        }
#endif
        return QWidget::focusNextPrevChild(next);
    }

private:
    bool hasControlBehind(QWidget* from, bool next) const
    {
        const auto step = [next](const QWidget* widget) {
            return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
        };
        for (QWidget* widget = from ? step(from) : nullptr; widget && widget != this; widget = step(widget)) {
            if ((widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->isVisible() && widget->isEnabled())
                return true;
        }
        return false;
    }
};
