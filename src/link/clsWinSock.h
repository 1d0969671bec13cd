#pragma once

#include "base/Bounds.h"
#include "base/RateLimit.h"
#include "link/Connection.h"
#include "link/ReplyAssembler.h"
#include "link/ReplyDispatcher.h"
#include "platform/net/Winsock.h"

#include <QObject>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class HostLookup;
struct Request;

/// How far the connection to the tracker has come.
enum class LinkPhase {
    Down,
    Resolving,  ///< the host's name is being looked up
    Connecting, ///< the socket is on its way
    LoggingIn,  ///< connected; the tracker has not accepted a login yet
    LoggedIn,
};

/// Why a connection was not even tried.
enum class ConnectFault { UnknownHost, BadPort };

/// What kept a host from being used that was connected.
enum class HostFault {
    Silent,   ///< it did not answer, or went away within the login
    Protocol, ///< what it sent is not what the protocol says
};

/// The request that is under way. There is one at a time: replies carry no number, so they belong to it.
struct PendingRequest
{
    /// Who asked: a request of the clock's opens no receive-progress window.
    enum class Asked { ByUser, ByClock };

    std::string name;
    ReplyDispatcher::Ticket handler = ReplyDispatcher::nobody; ///< who was registered when it was sent
    Asked asked = Asked::ByUser;
};

/// The host link, and the owner of all that is true of it: the connection as it was meant, how far it has come, and the
/// request under way. Sends framed requests over `wsMain`, gathers the replies and hands them on. Knows no window; what
/// happens here is told upward by signals.
class clsWinSock : public QObject
{
    Q_OBJECT

public:
    /// All three outlive the link.
    clsWinSock(Winsock& wsMain, Winsock& wSupport, ReplyDispatcher& replies, const Bounds& bounds = {});
    ~clsWinSock() override;

    LinkPhase phase() const { return m_phase; }
    /// What the last Connect meant; empty before the first.
    const Connection& connection() const { return m_connection; }
    const std::optional<PendingRequest>& pending() const { return m_pending; }
    /// Name of the account that is logged in, in the host's code page; empty when nobody is.
    const std::string& user() const;
    /// TCP port of the support link, as the tracker told it at the last login.
    std::int32_t supportPort() const { return m_supportPort; }
    bool isConnected() const { return m_phase == LinkPhase::LoggingIn || isLoggedIn(); }
    bool isLoggedIn() const { return m_phase == LinkPhase::LoggedIn; }
    SocketState state() const { return m_main.state(); }
    /// Status text of the host link, as the login window shows it.
    QString StatusText() const;
    /// False from the moment a request or a text is sent until its answer has been handled or cannot come any more.
    bool ReplyReceived() const { return !m_pending && !m_isSupportAwaited; }

    /// How long the tracker may be silent before a wait gives it up. A setting.
    std::chrono::milliseconds replyLimit = std::chrono::seconds(60);
    /// The same for a request of the raw queue, which not every tracker answers. A setting.
    std::chrono::milliseconds rawLimit = std::chrono::seconds(10);
    /// How long the look-up of a host name may take. A setting.
    std::chrono::milliseconds lookupLimit = std::chrono::seconds(30);

    /// Starts connecting; what was connected is closed. `connectFailed` tells that it came to nothing before a socket
    /// was opened, `socketFailed` that it did later.
    /// @param by  the clock, when it connects again what the user connected before
    void open(const Connection& connection, PendingRequest::Asked by = PendingRequest::Asked::ByUser);
    /// Who wanted the connection that there is, or was last.
    PendingRequest::Asked openedBy() const { return m_openedBy; }
    /// Ends the connection, or the attempt, and forgets what was under way.
    void close();

    /// Sends one framed request on the host link; does nothing at all unless connected.
    void SendData(const std::string& name, const std::string& head, const std::string& tail);
    /// The same, saying who asked.
    void send(const Request& request, PendingRequest::Asked by);
    /// Sends `text` as it stands on the support link; does nothing unless that is connected.
    void SendDataS(std::string_view text, std::string_view unused = {});
    void closeSupportLink() { m_support.close(); }
    /// Nobody waits for an answer to a text on the support link any more.
    void endSupportWait() { m_isSupportAwaited = false; }

    /// The tracker has been silent for too long. A late reply would be taken for the answer to a later request, so the
    /// link is closed and `hostUnusable` emitted; a request of the raw queue is forgotten, and nothing else.
    void giveUp();
    /// Closes the link, if it is connected, and says why by `hostUnusable`.
    void breakOff(const QString& text, HostFault fault = HostFault::Protocol);

Q_SIGNALS:
    void connected();
    /// No connection was tried. The link is down.
    void connectFailed(ConnectFault fault);
    void phaseChanged(LinkPhase phase);
    /// The tracker closed the connection.
    void closedByHost();
    /// The link left the connected state, for whatever reason.
    void linkLost();
    void socketFailed(int number, const QString& description);
    /// The tracker broke the protocol, or went silent; the link has been closed. `text` says it to the user.
    void hostUnusable(const QString& text, HostFault fault);

    /// A request has gone out.
    void asked(const std::string& request, PendingRequest::Asked by);
    /// A part of a reply has arrived and more is to come.
    void chunkArrived();
    /// A complete reply is about to be handled.
    void replyComplete();
    /// A complete reply has been handled, whether it was an answer or not.
    void replyHandled();
    /// The answer to the pending request is about to be handled.
    void answering();
    /// It has been handled.
    void answered(const std::string& request);
    /// The pending request is not waited for any more, though the link stays.
    void requestForgotten();
    /// What the receive-progress window is to do.
    void progress(qint32 total, qint32 received, bool update);
    /// @param text  the tracker's own words, in its code page
    void loginFailed(const std::string& text);
    /// @param privileges  Base64, as in the reply
    void loginSucceeded(const std::string& privileges);

private:
    void resolve();
    void connectSocket();
    void refuse(ConnectFault fault);
    void setPhase(LinkPhase phase);
    void receive(std::string_view chunk);
    void tellProgress();
    void handleReply(ReplyKind kind, const ReplyOwner& text);
    void handleMessages(const ReplyOwner& text);
    bool leavesAfterFault();
    void acceptLogin(const std::string& reply);
    void followSocket(SocketState state);
    std::optional<PendingRequest> takePending();

    Winsock& m_main;
    Winsock& m_support;
    ReplyDispatcher& m_replies;
    Bounds m_bounds;
    RateLimit m_faults{std::chrono::minutes(1)}; ///< of this connection
    LinkPhase m_phase = LinkPhase::Down;
    Connection m_connection;
    PendingRequest::Asked m_openedBy = PendingRequest::Asked::ByUser;
    std::unique_ptr<HostLookup> m_lookup; ///< while resolving
    std::int32_t m_supportPort = 0;
    std::optional<PendingRequest> m_pending;
    bool m_isSupportAwaited = false;
    ReplyAssembler m_assembler;
    bool m_progressOpen = false; ///< the reply under way has announced itself through `progress`
};
