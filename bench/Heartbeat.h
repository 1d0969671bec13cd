#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <utility>

/// How long the event loop has been held up.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] { m_greatest = std::max(m_greatest, m_since.restart()); });
        m_since.start();
        m_timer.start(5);
    }

    /// The greatest gap since it was last asked for, in milliseconds.
    qint64 greatest()
    {
        m_greatest = std::max(m_greatest, m_since.restart());
        return std::exchange(m_greatest, 0);
    }

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_greatest = 0;
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
