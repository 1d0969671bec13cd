#include "ui/EventWait.h"

#include <QCoreApplication>

EventWait::EventWait(std::chrono::milliseconds limit)
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(limit);
    QObject::connect(&m_silence, &QTimer::timeout, &m_loop, [this] { end(WaitEnd::TimedOut); });
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &m_loop,
                     [this] { end(WaitEnd::LinkDropped); });
}

WaitEnd EventWait::run()
{
    if (!m_end) {
        m_silence.start();
        m_loop.exec();
    }
    return m_end.value_or(WaitEnd::LinkDropped); // no ending was reached: the program quits
}

void EventWait::end(WaitEnd how)
{
    m_end = m_end.value_or(how);
    m_loop.quit();
}

void pauseFor(std::chrono::milliseconds pause)
{
    // The pause ends in the only way that it can, or with the program; either way there is nothing to tell.
    static_cast<void>(EventWait(pause).run());
}
