#include "link/clsWinSock.h"

#include "base/RuntimeError.h"
#include "link/ReplyDispatcher.h"
#include "link/Request.h"

using namespace Qt::StringLiterals;

namespace {

// A reply of more than this many bytes shows the receive-progress window.
constexpr qint32 progressBytes = 512;

} // namespace

clsWinSock::clsWinSock(Winsock& wsMain, Winsock& wSupport, Session& session, ReplyDispatcher& replies)
    : m_main(wsMain),
      m_support(wSupport),
      m_session(session),
      m_replies(replies)
{
    connect(&m_main, &Winsock::connected, this, &clsWinSock::connected);
    connect(&m_main, &Winsock::dataArrival, this, &clsWinSock::receive);
    connect(&m_main, &Winsock::stateChanged, this, &clsWinSock::linkStateChanged);
    connect(&m_main, &Winsock::failed, this, &clsWinSock::socketFailed);
    connect(&m_main, &Winsock::closedByPeer, this, [this] {
        m_session.superAdmin = false;
        Q_EMIT closedByHost();
    });
}

void clsWinSock::connectTo(const QString& host, quint16 port)
{
    m_peer = u"%1:%2"_s.arg(host).arg(port);
    m_main.connectTo(host, port);
}

void clsWinSock::SendData(const std::string& name, const std::string& head, const std::string& tail)
{
    if (!isConnected())
        return;
    ReplyReceived = false;
    m_isAwaitingReply = true;
    m_replies.pendingRequest = name;
    m_main.send(framed({name, head, tail}));
}

void clsWinSock::SendDataS(std::string_view text, std::string_view)
{
    if (m_support.state() == SocketState::Connected) {
        ReplyReceived = false;
        m_support.send(text);
    }
}

void clsWinSock::giveUp()
{
    breakOff(u"The tracker has not answered for %1 seconds. The connection was closed."_s.arg(
        std::chrono::duration_cast<std::chrono::seconds>(replyLimit).count()));
}

void clsWinSock::breakOff(const QString& text)
{
    if (!isConnected())
        return;
    m_main.close();
    Q_EMIT hostUnusable(text);
}

void clsWinSock::linkStateChanged(SocketState state)
{
    if (state == SocketState::Connected) {
        m_wasConnected = true;
        m_assembler.reset();
        m_progressOpen = false;
    } else if (m_wasConnected) {
        m_wasConnected = false;
        m_assembler.reset();
        m_replies.pendingRequest.clear();
        m_isAwaitingReply = false;
        m_isLoggedIn = false;
        ReplyReceived = true;
        Q_EMIT linkLost();
    }
}

void clsWinSock::receive(std::string_view chunk)
{
    try {
        m_assembler.add(chunk);
    } catch (const RuntimeError&) {
        breakOff(u"The tracker sent a reply larger than 256 MiB. The connection was closed."_s);
        return;
    }
    Q_EMIT chunkArrived();
    const qint32 expected = m_assembler.expectedLength();
    const auto received = static_cast<qint32>(m_assembler.received());
    if (expected > progressBytes && !m_progressOpen) {
        m_progressOpen = true;
        Q_EMIT progress(expected, received, false);
    }
    if (expected >= progressBytes)
        Q_EMIT progress(0, received, true);
    while (std::optional<Reply> reply = m_assembler.take()) {
        m_progressOpen = false;
        m_isAwaitingReply = false;
        Q_EMIT replyComplete();
        handleReply(std::move(*reply));
        ReplyReceived = true;
        Q_EMIT replyHandled();
    }
}

void clsWinSock::handleReply(Reply reply)
{
    const ReplyOwner text = std::make_shared<const std::string>(std::move(reply.text));
    switch (reply.kind) {
    case ReplyKind::LoginFailed:
        m_session.loggedIn = false;
        m_main.close();
        Q_EMIT loginFailed(loginFailureText(*text));
        return;
    case ReplyKind::LoginSucceeded:
        acceptLogin(*text);
        return;
    case ReplyKind::Messages:
        if (m_session.loggedIn) {
            for (const std::string_view body : messagesOf(*text))
                m_replies.HandleData(body, text);
        }
        return;
    }
}

void clsWinSock::acceptLogin(const std::string& reply)
{
    try {
        const LoginSuccess success = decodeLoginSuccess(reply);
        m_session.loggedIn = true;
        m_isLoggedIn = true;
        m_session.supportPort = success.supportPort;
        Q_EMIT loginSucceeded(success.privileges);
    } catch (const RuntimeError&) {
        breakOff(u"The tracker's answer to the login cannot be understood. The connection was closed."_s);
    }
}
