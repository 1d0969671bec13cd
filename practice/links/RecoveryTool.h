#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include <optional>

class QTcpSocket;

namespace practice {

class Tracker;

/// The small program beside the tracker that starts, restarts and stops it, on the loopback address. Takes one command
/// a connection, from accounts of the tracker's world, and really does what it is told: a stopped tracker refuses
/// connections and its links are closed.
class RecoveryTool : public QObject
{
    Q_OBJECT

public:
    /// How it misbehaves with every command from now on. A command is carried out all the same unless said otherwise.
    enum class Manner {
        Proper,
        Silent,    ///< never answers, and does nothing
        Pieces,    ///< the answer comes in pieces of three bytes, an event-loop turn apart
        Endless,   ///< the answer lacks its "[ND]", and the connection stays open
        CutOff,    ///< the answer lacks its "[ND]", and the connection is closed behind it
        CloseOnly, ///< closes the connection at once, and does nothing
        Garbage,   ///< answers with all 256 bytes and no markers, then closes
    };

    /// @param tracker  listening; outlives the tool
    explicit RecoveryTool(Tracker& tracker, QObject* parent = nullptr);

    /// @param port  0 for any free one
    /// @return false when the port cannot be had
    bool listen(quint16 port = 0);
    /// The port listened on; kept after stopListening().
    quint16 port() const { return m_port; }
    void stopListening() { m_server.close(); }

    Manner manner = Manner::Proper;
    /// The manner of that name ("silent", "pieces", ...), for a command line.
    static std::optional<Manner> parse(const QByteArray& name);
    static QByteArray names();

    /// All that came in, one element a connection that sent something, oldest first.
    const QList<QByteArray>& commands() const { return m_commands; }

Q_SIGNALS:
    /// A command is complete and not carried out yet.
    void commandReceived(const QByteArray& verb);

private:
    void acceptLinks();
    void readOn(QTcpSocket& socket);
    void answer(QTcpSocket& socket, const QByteArray& command);
    QByteArray carryOut(const QByteArray& command);
    void sendPieces(QTcpSocket& socket, const QByteArray& text);

    Tracker& m_tracker;
    QTcpServer m_server;
    quint16 m_port = 0;
    bool m_isRunning = true; ///< whether the tracker is
    QList<QByteArray> m_commands;
};

} // namespace practice
