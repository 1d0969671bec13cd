#pragma once

#include "practice/links/Tracker.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

namespace practice {

/// A client that speaks the wire by hand, and takes replies apart by its own rules.
class Caller
{
public:
    explicit Caller(const Tracker& tracker) : arrivals(&socket, &QTcpSocket::readyRead)
    {
        socket.connectToHost(QHostAddress::LocalHost, tracker.port());
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { received += socket.readAll(); });
    }

    void write(const QByteArray& body) { socket.write("[ST]" + body + "[ND]"); }

    /// The body of the reply to `body`; null when none comes or it is framed wrongly.
    QByteArray ask(const QByteArray& body)
    {
        received.clear();
        write(body);
        const bool whole = QTest::qWaitFor([this] { return received.endsWith("[ND]"); });
        const bool counted = received.left(7).toInt() == received.size() - 7;
        if (!whole || !counted || received.mid(7, 4) != "[ST]")
            return {};
        return received.mid(11).chopped(4);
    }

    QByteArray login(const QByteArray& user, const QByteArray& password)
    {
        return ask("login_" + user + '_' + password + "_3.0.1.0_VB6_");
    }

    bool closed() const { return socket.state() == QAbstractSocket::UnconnectedState; }

    QTcpSocket socket;
    QSignalSpy arrivals;
    QByteArray received;
};

} // namespace practice
