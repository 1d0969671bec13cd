#include "app/FrameLock.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <array>

namespace {

/// Whether the user does something with it: what a locked frame does not take.
bool isInput(QEvent::Type type)
{
    constexpr std::array inputs{QEvent::MouseButtonPress,
                                QEvent::MouseButtonRelease,
                                QEvent::MouseButtonDblClick,
                                QEvent::Wheel,
                                QEvent::KeyPress,
                                QEvent::KeyRelease,
                                QEvent::Shortcut,
                                QEvent::ShortcutOverride,
                                QEvent::ContextMenu,
                                QEvent::TouchBegin,
                                QEvent::TouchUpdate,
                                QEvent::TouchEnd,
                                QEvent::Close};
    return std::find(inputs.begin(), inputs.end(), type) != inputs.end();
}

} // namespace

FrameLock::FrameLock(QWidget& frame, std::function<void()> unlocked) : m_frame(frame), m_unlocked(std::move(unlocked))
{}

void FrameLock::lockInterface()
{
    // A reply is handled before the next event, so locking is no matter of widgets: greying the frame would repaint it
    // twice and take the keyboard from where the user has it. What a handler opens meanwhile runs over a dead frame.
    if (m_depth++ == 0)
        QCoreApplication::instance()->installEventFilter(this);
}

void FrameLock::unlockInterface()
{
    if (--m_depth > 0)
        return;
    QCoreApplication::instance()->removeEventFilter(this);
    m_frame.setEnabled(true);
    m_unlocked();
}

bool FrameLock::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    return m_depth > 0 && isInput(event->type()) && widget && widget->window() == &m_frame;
}
