#pragma once

#include "link/InterfaceLock.h"

#include <QObject>

#include <functional>

class QWidget;

/// Keeps what the user does from the frame while a reply is handled.
class FrameLock : public QObject, public LockableInterface
{
public:
    /// @param frame     outlives this
    /// @param unlocked  called when the last lock has gone: makes the tab strips usable again
    FrameLock(QWidget& frame, std::function<void()> unlocked);

    void lockInterface() override;
    void unlockInterface() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& m_frame;
    std::function<void()> m_unlocked;
    int m_depth = 0;
};
