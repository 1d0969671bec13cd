#pragma once

#include "link/ReplyAssembler.h"
#include "link/Session.h"
#include "platform/Winsock.h"

#include <QObject>

#include <chrono>
#include <string>
#include <string_view>

class ReplyDispatcher;

/// The host link: sends framed requests over `wsMain`, gathers the replies and hands them on. Knows no window; what
/// happens here is told upward by signals.
class clsWinSock : public QObject
{
    Q_OBJECT

public:
    /// All four outlive the link.
    clsWinSock(Winsock& wsMain, Winsock& wSupport, Session& session, ReplyDispatcher& replies);

    /// Status text of the host link, set by the login window's status poll.
    QString StatusText;
    /// False from the moment a request is sent until a complete reply has been handled, and until the link is lost.
    bool ReplyReceived = true;
    /// How long the tracker may be silent before a wait gives it up. A setting.
    std::chrono::milliseconds replyLimit = std::chrono::seconds(60);

    /// Sends one framed request on the host link; does nothing at all unless connected.
    void SendData(const std::string& name, const std::string& head, const std::string& tail);
    /// Sends `text` as it stands on the support link; does nothing unless that is connected.
    void SendDataS(std::string_view text, std::string_view unused = {});

    bool isConnected() const { return m_main.state() == SocketState::Connected; }
    /// Whether the tracker has accepted a login on this connection. Unlike `Session::loggedIn` it ends with that.
    bool isLoggedIn() const { return m_isLoggedIn; }
    /// Whether a request on the host link is still to be answered.
    bool isAwaitingReply() const { return m_isAwaitingReply; }
    SocketState state() const { return m_main.state(); }
    void connectTo(const QString& host, quint16 port);
    /// The host that was connected to last, as name, ":" and port.
    const QString& peer() const { return m_peer; }
    /// Closes host link and forgets what was under way.
    void close() { m_main.close(); }
    void closeSupportLink() { m_support.close(); }
    /// The tracker has been silent for too long. Replies carry no number, so a late one would be taken for the answer
    /// to a later request: the link is closed and `hostSilent` emitted.
    void giveUp();

Q_SIGNALS:
    void connected();
    /// The tracker closed the connection.
    void closedByHost();
    /// The link left the connected state, for whatever reason.
    void linkLost();
    void socketFailed(int number, const QString& description);
    /// The tracker broke the protocol, or went silent; the link has been closed. `text` says it to the user.
    void hostUnusable(const QString& text);

    void chunkArrived();
    /// A complete reply is about to be handled.
    void replyComplete();
    /// The reply has been handled; `ReplyReceived` is true.
    void replyHandled();
    /// What the receive-progress window is to do.
    void progress(qint32 total, qint32 received, bool update);
    /// @param text  the tracker's own words, in its code page
    void loginFailed(const std::string& text);
    /// @param privileges  Base64, as in the reply
    void loginSucceeded(const std::string& privileges);

private:
    void receive(std::string_view chunk);
    void handleReply(Reply reply);
    void acceptLogin(const std::string& reply);
    void linkStateChanged(SocketState state);
    void breakOff(const QString& text);

    Winsock& m_main;
    Winsock& m_support;
    Session& m_session;
    ReplyDispatcher& m_replies;
    ReplyAssembler m_assembler;
    QString m_peer;
    bool m_wasConnected = false;
    bool m_isAwaitingReply = false;
    bool m_isLoggedIn = false;
    bool m_progressOpen = false; ///< the reply under way has announced itself through `progress`
};
