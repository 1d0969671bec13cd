#pragma once

#include <QPointer>
#include <QWidget>

#include <vector>

/// Disables windows while an action is under way and enables them again on every way out, with the keyboard where it
/// was.
class WindowLock
{
public:
    explicit WindowLock(std::initializer_list<QWidget*> windows);
    WindowLock(const WindowLock&) = delete;
    WindowLock& operator=(const WindowLock&) = delete;
    ~WindowLock();

private:
    std::vector<QPointer<QWidget>> m_windows;
    QPointer<QWidget> m_focused;
};
