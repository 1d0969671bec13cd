#include "link/LoginExchange.h"

#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/Request.h"

using namespace Qt::StringLiterals;

LoginExchange::LoginExchange(clsWinSock& link, Reporter& reporter, std::function<bool()> isStatusKnown,
                             std::string version)
    : m_link(link),
      m_reporter(reporter),
      m_isStatusKnown(std::move(isStatusKnown)),
      m_version(std::move(version))
{
    // Behind the socket's own signal: the exchange waits, and must not do so on the socket's stack.
    connect(&m_link, &clsWinSock::connected, this, &LoginExchange::run, Qt::QueuedConnection);
    connect(
        &m_link, &clsWinSock::loginFailed, this,
        [this](const std::string& text) { m_reporter.reportHostText(MessageKind::Failed, text); },
        Qt::QueuedConnection);
}

void LoginExchange::run()
{
    if (m_link.phase() != LinkPhase::LoggingIn)
        return; // closed again before its turn came
    const Connection account = m_link.connection();
    const WaitEnd end = ask(m_link, loginRequest(account.user, account.password, m_version));
    if (end == WaitEnd::Broken && m_link.state() == SocketState::PeerClosing)
        Q_EMIT m_link.hostUnusable(u"The host closed the connection before it answered the login."_s,
                                   HostFault::Silent);
    if (end != WaitEnd::Done || askStatus() != WaitEnd::Done)
        return;
    askMissedStatus();
    if (m_link.isLoggedIn())
        Q_EMIT completed();
}

void LoginExchange::askMissedStatus()
{
    if (!m_isAskingStatus && m_link.isLoggedIn() && !m_isStatusKnown())
        (void)askStatus();
}

WaitEnd LoginExchange::askStatus()
{
    m_isAskingStatus = true;
    const WaitEnd end = ask(m_link, getStatusRequest(m_link.connection().user));
    m_isAskingStatus = false;
    return end;
}
