#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>

/// Counts how often a widget is painted.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* widget) : m_widget(widget) { widget->installEventFilter(this); }

    int paints() const { return m_paints; }
    void reset() { m_paints = 0; }

    /// Lets events run until the widget has been painted since the last reset.
    void waitForPaint()
    {
        while (m_paints == 0 && m_widget)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        m_paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    QPointer<QWidget> m_widget;
    int m_paints = 0;
};

/// Handles the events that are there and those that they lead to.
inline void settle()
{
    for (int round = 0; round < 20; ++round)
        QCoreApplication::processEvents();
}
