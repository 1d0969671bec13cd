#pragma once

#include "link/Connection.h"
#include "link/ReconnectPlan.h"
#include "link/clsWinSock.h"

#include <QObject>
#include <QTimer>

/// Looks after the host link: knows why it is down, and, when it is told to, connects again what was lost without the
/// user's doing, as the connection was meant. A login that is refused, a host that breaks the protocol and whatever
/// the user does to the connection himself end that.
class LinkKeeper : public QObject
{
    Q_OBJECT

public:
    /// @param link  outlives the keeper
    explicit LinkKeeper(clsWinSock& link);

    /// When lost connections are tried again. A setting, from the next login on.
    ReconnectPlan plan;

    /// Whether lost connections are tried again at all. Off ends what is under way.
    void setOn(bool isOn);
    /// Whether a connection that was lost is being tried again, or is going to be.
    bool isUnderWay() const { return plan.isUnderWay(); }
    /// Until the next try; 0 while none is waited for.
    std::chrono::milliseconds remaining() const;
    /// Why the link is down, as the end of a sentence; empty where nothing is to be said.
    const QString& whyDown() const { return m_why; }

    /// Does not wait for the next try any longer.
    void tryNow();
    /// No further try.
    void stop();
    /// The user takes the connection into his own hands: no further try, and nothing is to be said of it.
    void yield();

Q_SIGNALS:
    /// What is under way, or why the link is down, has changed.
    void changed();
    /// Somebody was logged in and is not any more. Told once a loss, when it is known why.
    /// @param isTriedAgain  the connection is going to be tried again
    void lost(const QString& why, bool isTriedAgain);
    /// A connection that was lost is back, and its account logged in.
    /// @param tries  that it took
    void back(int tries);

private:
    void followPhase(LinkPhase phase);
    void followLogin();
    void wait();
    void connectAgain();
    void explain(const QString& why);
    void tellLoss();

    clsWinSock& m_link;
    bool m_isOn = false;
    bool m_wasLoggedIn = false;
    Connection m_connection; ///< that was logged in last
    QString m_why;
    QTimer m_wait;
};
