#include "practice/links/TrackerSession.h"

#include <QHostAddress>
#include <QPointer>

namespace practice {

TrackerSession::TrackerSession(QTcpSocket* socket, QObject* parent)
    : QObject(parent),
      m_socket(socket),
      m_writer(*socket, this)
{
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // pieces leave as they are written
    connect(m_socket, &QTcpSocket::readyRead, this, &TrackerSession::readOn);
    connect(m_socket, &QTcpSocket::disconnected, this, &TrackerSession::closed);
}

QByteArray TrackerSession::peerAddress() const
{
    return m_socket->peerAddress().toString().toLatin1();
}

void TrackerSession::readOn()
{
    const QPointer<TrackerSession> self(this);
    const QList<QByteArray> bodies = m_reader.take(m_socket->readAll());
    for (const QByteArray& body : bodies) {
        Q_EMIT bodyReceived(body);
        if (!self)
            return;
    }
    if (m_reader.overflown())
        m_writer.reset();
}

} // namespace practice
