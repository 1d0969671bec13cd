#pragma once

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

/// Beats every 5 ms while the event loop lets it.
class Heartbeat : public QObject
{
public:
    /// Milliseconds that passed between two beats, and those of them in which this thread ran: what others on the
    /// machine take is no fault of the window's.
    struct Gap
    {
        double whole = 0;
        double busy = 0;
    };

    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, &Heartbeat::note);
        m_timer.start(std::chrono::milliseconds(5));
    }

    /// The greatest of both since it was last asked for.
    Gap greatest()
    {
        note();
        return std::exchange(m_greatest, {});
    }

private:
    static double milliseconds(clockid_t clock)
    {
        timespec now{};
        clock_gettime(clock, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
    }
    void note()
    {
        const Gap now{milliseconds(CLOCK_MONOTONIC), milliseconds(CLOCK_THREAD_CPUTIME_ID)};
        m_greatest = {std::max(m_greatest.whole, now.whole - m_last.whole),
                      std::max(m_greatest.busy, now.busy - m_last.busy)};
        m_last = now;
    }

    QTimer m_timer;
    Gap m_last{milliseconds(CLOCK_MONOTONIC), milliseconds(CLOCK_THREAD_CPUTIME_ID)};
    Gap m_greatest;
};

template <typename Condition>
void runUntil(Condition condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Memory of this process in MiB, tracker included. @param key  "VmRSS" or "VmHWM"
inline double mebibytesOf(const QByteArray& key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (file.open(QFile::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(key + ':'))
                return line.mid(key.size() + 1).chopped(2).trimmed().toDouble() / 1024;
        }
    }
    return 0;
}
