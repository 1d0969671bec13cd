#include "platform/net/Winsock.h"

#include "platform/net/KeepAlive.h"

#include <QMetaObject>
#include <QNetworkProxy>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// A peer that sends faster than the program handles is held back by the socket's own flow control.
constexpr qint64 readBufferBytes = 1 << 20;

struct SocketFault
{
    QAbstractSocket::SocketError error;
    int number;
    const char16_t* description;
};

constexpr std::array socketFaults{
    SocketFault{QAbstractSocket::ConnectionRefusedError, 10061, u"The host refused the connection."},
    SocketFault{QAbstractSocket::HostNotFoundError, 11001, u"The host was not found."},
    SocketFault{QAbstractSocket::SocketTimeoutError, 10060, u"The host did not answer the attempt to connect in time."},
    SocketFault{QAbstractSocket::NetworkError, 10053, u"The connection was cut by the network."},
    SocketFault{QAbstractSocket::SocketAccessError, 10013, u"This machine does not permit the connection."},
    SocketFault{QAbstractSocket::SocketResourceError, 10055, u"This machine has no sockets left."},
    SocketFault{QAbstractSocket::UnsupportedSocketOperationError, 10047,
                u"This kind of address is not supported here."},
};

} // namespace

Winsock::Winsock(const QString& name, QObject* parent) : QObject(parent)
{
    setObjectName(name);
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_socket.setReadBufferSize(readBufferBytes);
    connect(&m_socket, &QTcpSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        if (state == QAbstractSocket::HostLookupState)
            setState(SocketState::ResolvingHost);
    });
    // The socket is connecting before it tells that the host was found.
    connect(&m_socket, &QTcpSocket::hostFound, this, [this] {
        setState(SocketState::HostResolved);
        setState(SocketState::Connecting);
    });
    connect(&m_socket, &QTcpSocket::connected, this, [this] {
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        watchConnection(static_cast<std::intptr_t>(m_socket.socketDescriptor()));
        setState(SocketState::Connected);
        Q_EMIT connected();
    });
    // readyRead does not come again while its own slot runs. Reading from a posted event instead keeps data flowing
    // into nested event loops that a handler opens.
    connect(&m_socket, &QTcpSocket::readyRead, this, [this] {
        if (!m_drainPosted) {
            m_drainPosted = true;
            QMetaObject::invokeMethod(this, &Winsock::drain, Qt::QueuedConnection);
        }
    });
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &Winsock::fail, Qt::QueuedConnection);
}

void Winsock::connectTo(const QString& host, quint16 port)
{
    close();
    m_socket.connectToHost(host, port);
}

void Winsock::close()
{
    m_socket.abort();
    setState(SocketState::Closed);
}

void Winsock::send(std::string_view bytes)
{
    if (m_state == SocketState::Connected)
        m_socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void Winsock::setState(SocketState state)
{
    if (m_state != state) {
        m_state = state;
        Q_EMIT stateChanged(state);
    }
}

void Winsock::drain()
{
    m_drainPosted = false;
    if (m_state != SocketState::Connected)
        return;
    const QByteArray chunk = m_socket.readAll();
    if (!chunk.isEmpty())
        Q_EMIT dataArrival(std::string_view(chunk.constData(), static_cast<std::size_t>(chunk.size())));
}

void Winsock::fail(QAbstractSocket::SocketError error)
{
    if (m_state == SocketState::Closed || m_state == SocketState::Error)
        return; // an error of a connection that was given up meanwhile
    const bool wasConnected = m_state == SocketState::Connected;
    if (wasConnected)
        drain();
    if (m_state == SocketState::Closed)
        return;                                            // what arrived last made the program close the link
    if (error == QAbstractSocket::RemoteHostClosedError) { // also when the peer reset the connection
        setState(SocketState::PeerClosing);
        Q_EMIT closedByPeer();
        return;
    }
    int number = 10050;
    QString description = m_socket.errorString();
    for (const SocketFault& fault : socketFaults) {
        if (fault.error == error) {
            number = fault.number;
            description = QString::fromUtf16(fault.description);
        }
    }
    if (wasConnected && error == QAbstractSocket::SocketTimeoutError)
        description = u"The host cannot be reached any more."_s;
    setState(SocketState::Error);
    Q_EMIT failed(number, description);
}

QString statusText(SocketState state)
{
    switch (state) {
    case SocketState::Closed:
        return u"Not Connected"_s;
    case SocketState::Open:
        return u"Open"_s;
    case SocketState::Listening:
        return u"Listening"_s;
    case SocketState::ConnectionPending:
        return u"Connection Pending"_s;
    case SocketState::ResolvingHost:
        return u"Resolving Host"_s;
    case SocketState::HostResolved:
        return u"Host Resolved"_s;
    case SocketState::Connecting:
        return u"Connecting"_s;
    case SocketState::Connected:
        return u"Connected"_s;
    case SocketState::PeerClosing:
        return u"Peer Closing Connection"_s;
    case SocketState::Error:
        return u"Error"_s;
    }
    return {};
}
