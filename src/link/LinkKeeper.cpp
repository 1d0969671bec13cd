#include "link/LinkKeeper.h"

#include <QRandomGenerator>

#include <utility>

using namespace Qt::StringLiterals;
using Asked = PendingRequest::Asked;

namespace {

/// A message as the end of a sentence: its first one, without a capital and a point.
QString reasonIn(const QString& message)
{
    QString reason = message.left(message.indexOf(u". "_s));
    if (reason.endsWith(u'.'))
        reason.chop(1);
    if (!reason.isEmpty())
        reason[0] = reason[0].toLower();
    return reason;
}

} // namespace

LinkKeeper::LinkKeeper(clsWinSock& link) : m_link(link)
{
    m_wait.setSingleShot(true);
    m_wait.setTimerType(Qt::PreciseTimer); // a countdown shows it
    connect(&m_wait, &QTimer::timeout, this, &LinkKeeper::connectAgain);
    connect(&m_link, &clsWinSock::phaseChanged, this, &LinkKeeper::followPhase);
    connect(&m_link, &clsWinSock::loginSucceeded, this, &LinkKeeper::followLogin);
    connect(&m_link, &clsWinSock::closedByHost, this, [this] { explain(u"the host closed the connection"_s); });
    connect(&m_link, &clsWinSock::socketFailed, this,
            [this](int, const QString& description) { explain(description); });
    connect(&m_link, &clsWinSock::connectFailed, this, [this](ConnectFault fault) {
        explain(fault == ConnectFault::UnknownHost ? u"the host is not known by this name"_s : u"a port is missing"_s);
    });
    connect(&m_link, &clsWinSock::hostUnusable, this, [this](const QString& text, HostFault fault) {
        if (fault == HostFault::Protocol)
            stop(); // it would break it again
        explain(text);
    });
    connect(&m_link, &clsWinSock::loginFailed, this, [this] {
        stop();
        explain(u"the host refused the login"_s);
    });
}

void LinkKeeper::setOn(bool isOn)
{
    m_isOn = isOn;
    if (!isOn)
        stop();
}

std::chrono::milliseconds LinkKeeper::remaining() const
{
    return std::chrono::milliseconds(m_wait.isActive() ? m_wait.remainingTime() : 0);
}

void LinkKeeper::tryNow()
{
    if (plan.state() == ReconnectPlan::State::Waiting)
        connectAgain();
}

void LinkKeeper::stop()
{
    if (!isUnderWay())
        return;
    const bool isTrying = plan.state() == ReconnectPlan::State::Trying;
    plan.giveUp();
    m_wait.stop();
    if (isTrying && m_link.phase() != LinkPhase::LoggedIn)
        m_link.close();
    Q_EMIT changed();
}

void LinkKeeper::yield()
{
    m_why.clear();
    plan.giveUp();
    m_wait.stop();
    Q_EMIT changed();
}

void LinkKeeper::followLogin()
{
    const int tries = isUnderWay() ? plan.attempt() : 0;
    m_connection = m_link.connection();
    m_wasLoggedIn = true;
    m_why.clear();
    plan.loggedIn();
    m_wait.stop();
    if (tries > 0)
        Q_EMIT back(tries);
    Q_EMIT changed();
}

void LinkKeeper::followPhase(LinkPhase phase)
{
    if (phase != LinkPhase::Down) {
        if (m_link.openedBy() == Asked::ByUser && !m_link.isLoggedIn())
            yield();
        return;
    }
    const bool isLoss = std::exchange(m_wasLoggedIn, false);
    if (m_isOn)
        wait();
    else
        plan.giveUp();
    if (isLoss) // why is told behind the loss itself
        QMetaObject::invokeMethod(this, &LinkKeeper::tellLoss, Qt::QueuedConnection);
}

void LinkKeeper::wait()
{
    plan.lost(QRandomGenerator::global()->generateDouble());
    if (plan.state() != ReconnectPlan::State::Waiting)
        return;
    m_wait.start(plan.wait());
    Q_EMIT changed();
}

void LinkKeeper::connectAgain()
{
    m_wait.stop();
    plan.due();
    Q_EMIT changed();
    if (plan.state() == ReconnectPlan::State::Trying)
        m_link.open(m_connection, Asked::ByClock);
}

void LinkKeeper::explain(const QString& why)
{
    m_why = reasonIn(why);
    Q_EMIT changed();
}

void LinkKeeper::tellLoss()
{
    Q_EMIT lost(m_why, isUnderWay());
}
