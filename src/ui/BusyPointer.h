#pragma once

#include <QGuiApplication>
#include <QPointer>
#include <QWidget>

/// The busy pointer for as long as this lives: everywhere, or over one widget alone where the user may go on elsewhere
/// meanwhile.
class BusyPointer
{
public:
    BusyPointer() { QGuiApplication::setOverrideCursor(Qt::BusyCursor); }
    /// @param over  may be gone first; has no other busy pointer of its own
    explicit BusyPointer(QWidget& over) : m_isEverywhere(false), m_over(&over) { over.setCursor(Qt::BusyCursor); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    ~BusyPointer()
    {
        if (m_isEverywhere)
            QGuiApplication::restoreOverrideCursor();
        else if (m_over)
            m_over->unsetCursor();
    }

private:
    bool m_isEverywhere = true;
    QPointer<QWidget> m_over;
};
