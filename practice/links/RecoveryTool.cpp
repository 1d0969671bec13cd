#include "practice/links/RecoveryTool.h"

#include "practice/links/Tracker.h"

#include <QTcpSocket>
#include <QTimer>

#include <array>

namespace practice {

namespace {

constexpr qsizetype maxCommandBytes = 4096;
constexpr qsizetype maxCommandsKept = 1000;
constexpr qsizetype pieceBytes = 3;

struct MannerName
{
    const char* name;
    RecoveryTool::Manner manner;
};

constexpr std::array mannerNames{
    MannerName{"proper", RecoveryTool::Manner::Proper},   MannerName{"silent", RecoveryTool::Manner::Silent},
    MannerName{"pieces", RecoveryTool::Manner::Pieces},   MannerName{"endless", RecoveryTool::Manner::Endless},
    MannerName{"cutoff", RecoveryTool::Manner::CutOff},   MannerName{"close", RecoveryTool::Manner::CloseOnly},
    MannerName{"garbage", RecoveryTool::Manner::Garbage},
};

QByteArray everyByte()
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    return bytes;
}

} // namespace

RecoveryTool::RecoveryTool(Tracker& tracker, QObject* parent) : QObject(parent), m_tracker(tracker)
{
    connect(&m_server, &QTcpServer::newConnection, this, &RecoveryTool::acceptLinks);
}

bool RecoveryTool::listen(quint16 port)
{
    if (!m_server.listen(QHostAddress::LocalHost, port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

std::optional<RecoveryTool::Manner> RecoveryTool::parse(const QByteArray& name)
{
    for (const MannerName& known : mannerNames) {
        if (name == known.name)
            return known.manner;
    }
    return std::nullopt;
}

QByteArray RecoveryTool::names()
{
    QByteArrayList all;
    for (const MannerName& known : mannerNames)
        all += known.name;
    return all.join(", ");
}

void RecoveryTool::acceptLinks()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readOn(*socket); });
        if (manner == Manner::CloseOnly)
            socket->disconnectFromHost();
    }
}

void RecoveryTool::readOn(QTcpSocket& socket)
{
    const QByteArray seen = socket.peek(maxCommandBytes);
    const qsizetype end = seen.indexOf("[ND]");
    if (end < 0) {
        if (seen.size() == maxCommandBytes)
            socket.abort(); // no client of ours sends as much
        return;
    }
    socket.readAll();
    const QByteArray command = seen.left(end + 4);
    m_commands += command;
    if (m_commands.size() > maxCommandsKept)
        m_commands.removeFirst();
    answer(socket, command);
}

void RecoveryTool::answer(QTcpSocket& socket, const QByteArray& command)
{
    if (manner == Manner::Silent || manner == Manner::CloseOnly)
        return;
    const QByteArray text = carryOut(command);
    switch (manner) {
    case Manner::Pieces:
        sendPieces(socket, "[ST]" + text + "[ND]");
        return;
    case Manner::Endless:
        socket.write("[ST]" + text);
        return;
    case Manner::CutOff:
        socket.write("[ST]" + text);
        break;
    case Manner::Garbage:
        socket.write(everyByte());
        break;
    default:
        socket.write("[ST]" + text + "[ND]");
    }
    socket.disconnectFromHost();
}

QByteArray RecoveryTool::carryOut(const QByteArray& command)
{
    const QList<QByteArray> fields = command.mid(4, command.size() - 8).split('|');
    const Account* account =
        fields.size() == 3 ? m_tracker.world().account(QByteArray::fromBase64(fields[0])) : nullptr;
    if (!command.startsWith("[ST]") || fields.size() != 3)
        return "The command was not understood.";
    if (!account || account->password != QByteArray::fromBase64(fields[1]))
        return "Access denied: wrong user name or password.";
    const QByteArray& verb = fields[2];
    Q_EMIT commandReceived(verb);
    if (verb != "Start" && verb != "Restart" && verb != "Stop")
        return "The command was not understood.";
    if (verb == "Start" && m_isRunning)
        return "The tracker is running already.";
    if (verb == "Stop" && !m_isRunning)
        return "The tracker is not running.";
    if (verb != "Start") {
        m_tracker.stopListening();
        m_tracker.closeLinks();
        m_isRunning = false;
    }
    if (verb == "Stop")
        return "The tracker has been shut down.";
    if (!m_tracker.listen(m_tracker.port()))
        return "The tracker could not be started: its port is taken.";
    m_isRunning = true;
    return verb == "Start" ? "The tracker has been started." : "The tracker has been restarted.";
}

void RecoveryTool::sendPieces(QTcpSocket& socket, const QByteArray& text)
{
    socket.write(text.left(pieceBytes));
    socket.flush();
    if (text.size() <= pieceBytes)
        socket.disconnectFromHost();
    else
        QTimer::singleShot(0, &socket, [this, &socket, rest = text.mid(pieceBytes)] { sendPieces(socket, rest); });
}

} // namespace practice
