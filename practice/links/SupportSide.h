#pragma once

#include "practice/links/Fault.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include <random>

namespace practice {

class ReplyWriter;

/// The host's side of the support link on the loopback address, with an operator who tells his status, greets whoever
/// announces himself, answers questions, and misbehaves on request. What he says by chance depends on the seed alone.
class SupportSide : public QObject
{
    Q_OBJECT

public:
    explicit SupportSide(quint32 seed = 1, QObject* parent = nullptr);
    ~SupportSide() override;

    /// @param port  0 for any free one
    /// @return false when the port cannot be had
    bool listen(quint16 port = 0);
    quint16 port() const { return m_port; }
    /// New connections are refused from now on; open links stay.
    void stopListening() { m_server.close(); }

    /// How long the operator takes for an answer.
    std::chrono::milliseconds thinks{0};
    /// Whether he answers at all.
    bool isThere = true;

    /// Whether he now and then says something by himself and changes his status.
    void setLively(bool lively, std::chrono::milliseconds every = std::chrono::seconds(45));
    /// Tells all links of a status.
    void setStatus(const QByteArray& status);
    /// Says something to all links, as one entry of the conversation.
    void say(const QByteArray& text);
    /// Sends bytes as they are, in one piece.
    void sendRaw(const QByteArray& bytes);

    /// Every answer to a text of this kind, "Announce" or "Message", is given with this fault: in chunks, twice (in one
    /// arrival), cut off, reset, never, late, or with garbage before it. Other faults change nothing.
    void answerAlways(const QByteArray& kind, const Fault& fault) { m_faults[kind] = fault; }

    /// What has arrived on all links, oldest first, cut where a text begins; at most the newest 10,000.
    const QList<QByteArray>& texts() const { return m_texts; }
    void closeLinks();
    int links() const { return static_cast<int>(m_links.size()); }

    static QByteArray entryOf(const QByteArray& text);
    static QByteArray messageOf(const QByteArray& text) { return "Message_" + entryOf(text).toBase64(); }

Q_SIGNALS:
    void textReceived(const QByteArray& text);

private:
    struct Link;

    void acceptLinks();
    void take(Link* link);
    void hear(Link* link, const QByteArray& text);
    void answer(Link* link, const QByteArray& kind, const QList<QByteArray>& texts);
    void takeInitiative();

    QTcpServer m_server;
    quint16 m_port = 0;
    QList<Link*> m_links; // owned through QObject parenthood
    QList<QByteArray> m_texts;
    QHash<QByteArray, Fault> m_faults;
    QByteArray m_status = "Active";
    QTimer m_initiative;
    std::minstd_rand m_chance;
};

} // namespace practice
