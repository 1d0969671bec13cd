#pragma once

#include "practice/links/Framing.h"
#include "practice/links/ReplyWriter.h"

#include <QObject>

namespace practice {

/// One client's connection: cuts what it sends into request bodies and carries the replies. Owns its socket.
class TrackerSession : public QObject
{
    Q_OBJECT

public:
    /// @param socket  connected; ownership passes to the session
    explicit TrackerSession(QTcpSocket* socket, QObject* parent = nullptr);

    QByteArray account; ///< who is logged in here; empty for nobody

    QByteArray peerAddress() const;
    ReplyWriter& writer() { return m_writer; }

Q_SIGNALS:
    void bodyReceived(const QByteArray& body);
    /// The connection is gone; emitted once.
    void closed();

private:
    void readOn();

    QTcpSocket* m_socket;
    ReplyWriter m_writer;
    RequestReader m_reader;
};

} // namespace practice
