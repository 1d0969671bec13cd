#pragma once

#include "practice/links/Fault.h"

#include <QObject>
#include <QQueue>
#include <QTcpSocket>
#include <QTimer>

namespace practice {

/// What goes out on a connection for one reply.
struct Delivery
{
    enum class Ending { StayOpen, Close, Reset };

    QByteArray bytes = {};
    qsizetype chunk = 0; ///< bytes a write; 0 for all at once
    std::chrono::milliseconds gap{0};
    Ending ending = Ending::StayOpen;
};

/// How `body` is delivered under `fault`. Lateness is not part of it.
Delivery planDelivery(const QByteArray& body, const Fault& fault);

/// Writes deliveries to one socket in order. It does not own the socket.
class ReplyWriter : public QObject
{
    Q_OBJECT

public:
    explicit ReplyWriter(QTcpSocket& socket, QObject* parent = nullptr);

    /// Queues the framed `body`; a late one is queued when its time has come.
    void reply(const QByteArray& body, const Fault& fault);
    /// Queues bytes as they are. They never come between the pieces of what was queued before.
    void deliver(const Delivery& delivery);
    /// Closes once everything queued so far is out.
    void closeAfterwards();
    /// Closes the connection at once in such a way that the peer sees a reset.
    void reset();

private:
    void writeOn();
    void end(Delivery::Ending ending);

    QTcpSocket& m_socket;
    QQueue<Delivery> m_queue;
    QTimer m_next;
};

} // namespace practice
