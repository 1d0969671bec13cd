#pragma once

#include <QTcpSocket>

#include <string_view>

/// The states of a stream socket, under the numbers that the program speaks of.
enum class SocketState {
    Closed = 0,
    Open = 1,
    Listening = 2,
    ConnectionPending = 3,
    ResolvingHost = 4,
    HostResolved = 5,
    Connecting = 6,
    Connected = 7,
    PeerClosing = 8,
    Error = 9,
};

/// A stream socket with the states and error numbers of the program. Signals come from the event loop, never from
/// inside a call; arrived data may come while an earlier arrival is still being handled in a nested event loop.
class Winsock : public QObject
{
    Q_OBJECT

public:
    explicit Winsock(const QString& name, QObject* parent = nullptr);

    SocketState state() const { return m_state; }
    /// Starts connecting; a connection that is open is closed first.
    void connectTo(const QString& host, quint16 port);
    /// Closes at once and forgets what was not read. The state is then 0.
    void close();
    /// Queues `bytes` for sending; does nothing unless connected.
    void send(std::string_view bytes);

Q_SIGNALS:
    void connected();
    /// @param chunk  all that has arrived; valid during the call only
    void dataArrival(std::string_view chunk);
    /// The peer closed or reset the connection; everything that it sent has been handed over. The state is 8.
    void closedByPeer();
    /// @param number  such as 10061 (refused), 10060 (timed out), 11001 (host not found)
    void failed(int number, const QString& description);
    void stateChanged(SocketState state);

private:
    void setState(SocketState state);
    void drain();
    void fail(QAbstractSocket::SocketError error);

    QTcpSocket m_socket;
    SocketState m_state = SocketState::Closed;
    bool m_drainPosted = false;
};

/// The status text that the client shows for a state.
QString statusText(SocketState state);
