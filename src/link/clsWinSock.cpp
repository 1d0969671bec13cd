#include "link/clsWinSock.h"

#include "base/RuntimeError.h"
#include "link/Request.h"
#include "link/StatusReply.h"
#include "platform/net/HostLookup.h"

#include <QTimer>

#include <atomic>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// A reply of more than this many bytes shows the receive-progress window.
constexpr qint32 progressBytes = 512;

} // namespace

clsWinSock::clsWinSock(Winsock& wsMain, Winsock& wSupport, ReplyDispatcher& replies, const Bounds& bounds)
    : m_main(wsMain),
      m_support(wSupport),
      m_replies(replies),
      m_bounds(bounds)
{
    connect(&m_main, &Winsock::connected, this, &clsWinSock::connected);
    connect(&m_main, &Winsock::dataArrival, this, &clsWinSock::receive);
    connect(&m_main, &Winsock::stateChanged, this, &clsWinSock::followSocket);
    connect(&m_main, &Winsock::failed, this, &clsWinSock::socketFailed);
    connect(&m_main, &Winsock::closedByPeer, this, &clsWinSock::closedByHost);
}

clsWinSock::~clsWinSock() = default;

const std::string& clsWinSock::user() const
{
    static const std::string nobody;
    return isLoggedIn() ? m_connection.user : nobody;
}

QString clsWinSock::StatusText() const
{
    return statusText(m_phase == LinkPhase::Resolving ? SocketState::ResolvingHost : m_main.state());
}

void clsWinSock::open(const Connection& connection, PendingRequest::Asked by)
{
    close();
    m_connection = connection;
    m_openedBy = by;
    if (m_connection.isAddress)
        connectSocket();
    else
        resolve();
}

/// Only whether the host is known: the socket connects to its name.
void clsWinSock::resolve()
{
    m_lookup = std::make_unique<HostLookup>();
    connect(m_lookup.get(), &HostLookup::finished, this, [this] {
        if (std::exchange(m_lookup, nullptr)->address().isEmpty())
            refuse(ConnectFault::UnknownHost);
        else
            connectSocket();
    });
    QTimer::singleShot(lookupLimit, m_lookup.get(), [this] {
        m_lookup.release()->deleteLater(); // it is the one that calls
        refuse(ConnectFault::UnknownHost);
    });
    setPhase(LinkPhase::Resolving);
    m_lookup->start(m_connection.host);
}

void clsWinSock::connectSocket()
{
    if (m_connection.port == 0) {
        refuse(ConnectFault::BadPort);
        return;
    }
    setPhase(LinkPhase::Connecting);
    m_main.connectTo(m_connection.host, m_connection.port);
}

void clsWinSock::refuse(ConnectFault fault)
{
    setPhase(LinkPhase::Down);
    Q_EMIT connectFailed(fault);
}

void clsWinSock::close()
{
    m_lookup.reset();
    m_main.close();
    setPhase(LinkPhase::Down); // where no socket was opened yet
}

void clsWinSock::SendData(const std::string& name, const std::string& head, const std::string& tail)
{
    send({name, head, tail}, PendingRequest::Asked::ByUser);
}

void clsWinSock::send(const Request& request, PendingRequest::Asked by)
{
    if (!isConnected())
        return;
    m_pending = {request.name, m_replies.handlerOf(request.name), by};
    m_main.send(framed(request));
    Q_EMIT asked(request.name, by);
}

void clsWinSock::SendDataS(std::string_view text, std::string_view)
{
    if (m_support.state() == SocketState::Connected) {
        m_isSupportAwaited = true;
        m_support.send(text);
    }
}

void clsWinSock::giveUp()
{
    if (m_pending && m_pending->name == rawRequestName) {
        m_pending.reset();
        Q_EMIT requestForgotten();
        return;
    }
    breakOff(u"The tracker has not answered for %1 seconds. The connection was closed."_s.arg(
                 std::chrono::duration_cast<std::chrono::seconds>(replyLimit).count()),
             HostFault::Silent);
}

void clsWinSock::breakOff(const QString& text, HostFault fault)
{
    if (!isConnected())
        return;
    close();
    Q_EMIT hostUnusable(text, fault);
}

void clsWinSock::setPhase(LinkPhase phase)
{
    if (std::exchange(m_phase, phase) != phase)
        Q_EMIT phaseChanged(phase);
}

void clsWinSock::followSocket(SocketState state)
{
    const bool wasConnected = isConnected();
    if (state == SocketState::Connected) {
        m_assembler.reset();
        m_faults.reset();
        m_progressOpen = false;
        setPhase(LinkPhase::LoggingIn);
    } else if (state == SocketState::Closed || state == SocketState::PeerClosing || state == SocketState::Error) {
        m_assembler.reset();
        m_pending.reset();
        m_isSupportAwaited = false;
        setPhase(LinkPhase::Down);
        if (wasConnected)
            Q_EMIT linkLost();
    }
}

void clsWinSock::receive(std::string_view chunk)
{
    const BoxHold held = m_replies.holdBoxes(); // the socket does not wait for whoever reads them
    try {
        m_assembler.add(chunk);
    } catch (const RuntimeError&) {
        breakOff(u"The tracker sent a reply larger than 256 MiB. The connection was closed."_s);
        return;
    }
    tellProgress();
    while (std::optional<Reply> reply = m_assembler.take()) {
        m_progressOpen = false;
        Q_EMIT replyComplete();
        const auto text = std::make_shared<std::string>(std::move(reply->text));
        handleReply(reply->kind, text);
        if (text.use_count() == 1 && isConnected()) {            // nobody keeps a view of it
            std::atomic_thread_fence(std::memory_order_acquire); // nor has a thread that let it go a read left
            m_assembler.reuse(std::move(*text));
        }
        m_isSupportAwaited = false;
        Q_EMIT replyHandled();
    }
    // What was complete and no answer, as a plugin's news, is no sign that the answer is on its way.
    if (m_assembler.received() > 0)
        Q_EMIT chunkArrived();
}

void clsWinSock::tellProgress()
{
    if (m_pending && m_pending->asked == PendingRequest::Asked::ByClock)
        return;
    const qint32 expected = m_assembler.expectedLength();
    const auto received = static_cast<qint32>(m_assembler.received());
    if (expected > progressBytes && !m_progressOpen) {
        m_progressOpen = true;
        Q_EMIT progress(expected, received, false);
    }
    if (expected >= progressBytes)
        Q_EMIT progress(0, received, true);
}

void clsWinSock::handleReply(ReplyKind kind, const ReplyOwner& text)
{
    switch (kind) {
    case ReplyKind::LoginFailed:
        close();
        Q_EMIT loginFailed(loginFailureText(*text));
        return;
    case ReplyKind::LoginSucceeded:
        acceptLogin(*text);
        return;
    case ReplyKind::Messages:
        if (isLoggedIn()) // what is said before belongs to nobody
            handleMessages(text);
        return;
    }
}

void clsWinSock::handleMessages(const ReplyOwner& text)
{
    std::vector<std::string_view> bodies = messagesOf(*text);
    if (bodies.empty())
        bodies.emplace_back(); // a reply without a message is an empty answer
    for (const std::string_view body : bodies) {
        // A plugin's message comes at any moment. Only what another program asked for may be answered by one.
        const bool isAnswer = m_pending && (!isPluginMessage(body) || m_pending->name == rawRequestName);
        const std::optional<PendingRequest> request = isAnswer ? takePending() : std::nullopt;
        const bool isSound = m_replies.HandleData(body, text, request ? request->handler : ReplyDispatcher::nobody);
        if (request)
            Q_EMIT answered(request->name);
        if (!isSound && leavesAfterFault())
            return;
    }
}

std::optional<PendingRequest> clsWinSock::takePending()
{
    std::optional<PendingRequest> request = std::exchange(m_pending, {});
    if (request)
        Q_EMIT answering();
    return request;
}

/// A message was not what the protocol says. @return whether that was one too many
bool clsWinSock::leavesAfterFault()
{
    const auto now = RateLimit::Clock::now();
    m_faults.add(now);
    if (m_faults.count(now) < static_cast<std::size_t>(m_bounds.protocolFaultsPerMinute))
        return false;
    breakOff(u"The tracker has sent %1 messages within a minute that cannot be understood. "
             "The connection was closed."_s.arg(m_bounds.protocolFaultsPerMinute));
    return true;
}

void clsWinSock::acceptLogin(const std::string& reply)
{
    try {
        const LoginSuccess success = decodeLoginSuccess(reply);
        const std::optional<PendingRequest> request = takePending();
        m_supportPort = success.supportPort;
        setPhase(LinkPhase::LoggedIn);
        Q_EMIT loginSucceeded(success.privileges);
        if (request)
            Q_EMIT answered(request->name);
    } catch (const RuntimeError&) {
        breakOff(u"The tracker's answer to the login cannot be understood. The connection was closed."_s);
    }
}
