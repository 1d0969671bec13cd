#pragma once

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

/// Ends the process as soon as `window` has been painted, and prints the most memory that it ever held, in KiB.
class EndAtFirstPaint : public QObject
{
public:
    explicit EndAtFirstPaint(QWidget& window) : m_window(window) { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Posted, so that it comes behind the children, which are painted in the same pass.
        if (watched == &m_window && event->type() == QEvent::Paint)
            QMetaObject::invokeMethod(qApp, &EndAtFirstPaint::end, Qt::QueuedConnection);
        return false;
    }

private:
    static void end()
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly)) {
            for (const QByteArray& line : status.readAll().split('\n')) {
                if (line.startsWith("VmHWM:"))
                    std::printf("%d\n", line.mid(6).chopped(2).trimmed().toInt());
            }
        }
        std::fflush(stdout);
        std::_Exit(EXIT_SUCCESS); // closing down is not part of a start
    }

    QWidget& m_window;
};
