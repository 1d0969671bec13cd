#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <random>

namespace practice {

class SupportSide;
class Tracker;

/// A host that goes away and comes back, again and again: its links end, some in good order and some not, and its ports
/// are closed for a while.
class Outage : public QObject
{
    Q_OBJECT

public:
    using Span = std::chrono::milliseconds;

    /// Tracker and support side outlive this and listen.
    /// @param every    about how long the host is there, between half of it and half as much again
    /// @param lasting  the same for how long it is away
    Outage(Tracker& tracker, SupportSide& support, Span every, Span lasting, quint32 seed, QObject* parent = nullptr);

Q_SIGNALS:
    /// @param isThere  whether it is, from now on
    void turned(bool isThere);

private:
    void turn();
    void goAway();
    bool comeBack();
    Span around(Span span);

    Tracker& m_tracker;
    SupportSide& m_support;
    Span m_every;
    Span m_lasting;
    std::minstd_rand m_chance;
    bool m_isThere = true;
    QTimer m_next;
};

} // namespace practice
