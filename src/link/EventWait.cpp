#include "link/EventWait.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace {

int runningWaits = 0; // waits belong to the GUI thread

} // namespace

EventWait::EventWait(std::chrono::milliseconds limit)
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(limit);
    QObject::connect(&m_silence, &QTimer::timeout, &m_loop, [this] { end(WaitEnd::TimedOut); });
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &m_loop,
                     [this] { end(WaitEnd::Broken); });
}

EventWait::EventWait() : EventWait(std::chrono::milliseconds::zero())
{
    m_isLimited = false;
}

WaitEnd EventWait::run()
{
    if (!m_end) {
        if (m_isLimited)
            m_silence.start();
        // A loop that starts inside a posted event may sleep on the events that stand behind that one, arrived data
        // among them, until another is posted: the dispatcher takes them to be in delivery already.
        // The end that the last window announced by closing is not among them: a loop that begins calls it off.
        QCoreApplication::removePostedEvents(QCoreApplication::instance(), QEvent::Quit);
        QCoreApplication::sendPostedEvents();
        if (!m_end) {
            ++runningWaits;
            const auto over = qScopeGuard([] { --runningWaits; });
            m_loop.exec();
        }
    }
    return m_end.value_or(WaitEnd::Broken); // no ending was reached: the program quits
}

int EventWait::running()
{
    return runningWaits;
}

void EventWait::end(WaitEnd how)
{
    m_end = m_end.value_or(how);
    m_loop.quit();
}

bool pauseFor(std::chrono::milliseconds pause)
{
    return EventWait(pause).run() == WaitEnd::TimedOut;
}
