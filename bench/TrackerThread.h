#pragma once

#include "practice/links/Tracker.h"

#include <QThread>

#include <memory>
#include <utility>

/// A practice tracker in a thread of its own, so that what it does costs the measured thread nothing.
class TrackerThread
{
public:
    explicit TrackerThread(practice::World world)
    {
        m_thread.start();
        m_host.moveToThread(&m_thread);
        QMetaObject::invokeMethod(
            &m_host,
            [this, &world] {
                m_tracker = std::make_unique<practice::Tracker>(std::move(world));
                if (!m_tracker->listen())
                    qFatal("no port can be had");
            },
            Qt::BlockingQueuedConnection);
    }
    TrackerThread(const TrackerThread&) = delete;
    TrackerThread& operator=(const TrackerThread&) = delete;
    ~TrackerThread()
    {
        QMetaObject::invokeMethod(
            &m_host, [this] { m_tracker.reset(); }, Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    quint16 port() const { return m_tracker->port(); }

private:
    QThread m_thread;
    QObject m_host;
    std::unique_ptr<practice::Tracker> m_tracker;
};
