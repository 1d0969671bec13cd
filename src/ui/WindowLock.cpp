#include "ui/WindowLock.h"

#include <QApplication>

WindowLock::WindowLock(std::initializer_list<QWidget*> windows) : m_focused(QApplication::focusWidget())
{
    for (QWidget* window : windows) {
        m_windows.emplace_back(window);
        window->setEnabled(false);
    }
}

WindowLock::~WindowLock()
{
    for (const QPointer<QWidget>& window : m_windows) {
        if (window)
            window->setEnabled(true);
    }
    if (m_focused && m_focused->isVisible() && m_focused->isEnabled())
        m_focused->setFocus();
}
