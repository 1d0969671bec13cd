#include "link/LoginExchange.h"

#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Request.h"
#include "link/clsWinSock.h"

using namespace Qt::StringLiterals;

LoginExchange::LoginExchange(clsWinSock& link, Session& session, Reporter& reporter,
                             std::function<Credentials()> credentials, std::string version)
    : m_link(link),
      m_session(session),
      m_reporter(reporter),
      m_credentials(std::move(credentials)),
      m_version(std::move(version))
{
    // Behind the socket's own signal: the exchange waits, and must not do so on the socket's stack.
    connect(&m_link, &clsWinSock::connected, this, &LoginExchange::run, Qt::QueuedConnection);
    connect(&m_link, &clsWinSock::loginFailed, this, [this](const std::string& text) {
        m_failed = true;
        m_reporter.reportHostText(MessageKind::Failed, text);
    });
    connect(&m_link, &clsWinSock::loginSucceeded, this, [this] { m_succeeded = true; });
}

void LoginExchange::run()
{
    m_failed = false;
    m_succeeded = false;
    const Credentials credentials = m_credentials();
    const WaitEnd end = ask(m_link, loginRequest(credentials.user, credentials.password, m_version));
    if (end == WaitEnd::TimedOut || m_failed)
        return; // already said
    if (end == WaitEnd::LinkDropped) {
        if (!m_session.quitting && m_link.state() == SocketState::PeerClosing)
            m_reporter.ReportMsg(MessageKind::Failed,
                                 u"The host closed the connection before it answered the login."_s);
        return;
    }
    if (!m_succeeded) {
        m_link.close();
        m_reporter.ReportMsg(MessageKind::Failed,
                             u"The host did not answer the login as a tracker does. Please check host and port."_s);
        return;
    }
    if (ask(m_link, getStatusRequest(m_credentials().user)) == WaitEnd::Replied && m_link.isConnected())
        Q_EMIT completed();
}
