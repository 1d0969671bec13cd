#pragma once

#include "practice/links/PendingAnswers.h"
#include "practice/world/World.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QQueue>
#include <QTcpServer>
#include <QTimer>

namespace practice {

class TrackerSession;

/// The host's side of the host link on the loopback address: takes requests from any number of clients, answers them
/// from its world, and misbehaves on request.
class Tracker : public QObject
{
    Q_OBJECT

public:
    explicit Tracker(World world = World::lively(), QObject* parent = nullptr);
    ~Tracker() override;

    /// @param port  0 for any free one
    /// @return false when the port cannot be had
    bool listen(quint16 port = 0);
    /// The port listened on; kept after stopListening().
    quint16 port() const { return m_port; }
    /// New connections are refused from now on; open links stay.
    void stopListening();

    World& world() { return m_world; }

    /// The next request of this name ("Login" included) is answered with this fault; several calls queue up.
    void answerNext(const QByteArray& requestName, const Fault& fault);
    /// The next request of this name is answered with exactly this body, and the world does not learn of it. A login
    /// still admits its account when name and password fit. A queued fault applies to this body.
    void answerNextWith(const QByteArray& requestName, const QByteArray& body);
    /// Every request of this name is answered with this fault unless answerNext() has one for it.
    void answerAlways(const QByteArray& requestName, const Fault& fault);
    /// Every request that no other fault is meant for; Fault::none() ends it.
    void answerAll(const Fault& fault);

    /// Answers to requests of this name ("Login" included) are kept from now on. They are worked out when the request
    /// arrives, from the world as it is then and with the fault that is meant for it; the fault takes effect when the
    /// answer goes out. On the same link the answers to later requests wait behind a held one. What follows from an
    /// answer, a kick or a new name for a link, happens when it has gone out. A link that closes forgets its answers.
    void hold(const QByteArray& requestName) { m_pending.hold(requestName); }
    /// How many answers to requests of this name wait for their release.
    int held(const QByteArray& requestName) const { return m_pending.held(requestName); }
    /// Lets the oldest held answer to a request of this name go out: at once, or when those before it on its link do.
    /// @return false when there is none
    bool release(const QByteArray& requestName);
    /// Sends all held answers; from now on none is held.
    void releaseAll();

    /// Bodies as received on all links, malformed ones too, oldest first; at most the newest 10,000.
    const QList<QByteArray>& requests() const { return m_requests; }
    void forgetRequests() { m_requests.clear(); }

    /// Sends a framed message that nobody asked for, on all links.
    void send(const QByteArray& body);
    /// Sends bytes as they are, on all links.
    void sendRaw(const QByteArray& bytes);

    /// Closes all links in good order.
    void closeLinks();
    /// Resets all links.
    void resetLinks();
    int links() const { return static_cast<int>(m_sessions.size()); }

    /// Whether the world moves on by a second every `second`, and its plugins send their news.
    void setLively(bool lively, std::chrono::milliseconds second = std::chrono::seconds(1));

    /// Sends a message of "Match Watch" to its counterparts, on all links whose account may use the plugin, whether or
    /// not they wait for an answer.
    /// @return how many links got it; 0 also when there is no such plugin, or nothing to tell
    int sendPluginNews();

Q_SIGNALS:
    /// A request has come in and is not answered yet, so that a fault set here still applies to it.
    void requestReceived(const QByteArray& name);
    void linksChanged(int links);

private:
    void moveOn();
    void acceptLinks();
    void handle(TrackerSession* session, const QByteArray& body);
    Answer answerFor(TrackerSession& session, const Request& request);
    void sendDue();
    void followUp(const Answer& answer);
    void admit(TrackerSession& session, const QByteArray& account);
    void rename(const QByteArray& account, const QByteArray& newName);
    void closeLinksOf(const QByteArray& account);
    void drop(TrackerSession* session);
    Fault nextFault(const QByteArray& name);

    World m_world;
    QTcpServer m_server;
    quint16 m_port = 0;
    QTimer m_second;
    std::chrono::seconds m_sinceNews{0};
    QList<TrackerSession*> m_sessions; // owned through QObject parenthood
    QList<QByteArray> m_requests;
    QHash<QByteArray, QQueue<Fault>> m_nextFaults;
    QHash<QByteArray, QQueue<QByteArray>> m_nextBodies;
    QHash<QByteArray, Fault> m_alwaysFaults;
    Fault m_allFault;
    PendingAnswers m_pending;
};

} // namespace practice
