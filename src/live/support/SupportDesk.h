#pragma once

#include "live/support/SupportTalks.h"
#include "live/support/SupportTexts.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <optional>

class Winsock;
enum class LinkPhase;
enum class SocketState;
struct Client;

/// The support link and what was said on it. Outlives the console window, so that closing that loses neither the
/// conversation nor what was typed and not sent. The link goes to the host that is connected, and ends with that
/// connection; a conversation belongs to the account that is logged in.
class SupportDesk : public QObject
{
    Q_OBJECT

public:
    struct Limits
    {
        /// After how much silence a text may be over that does not tell its end.
        std::chrono::milliseconds pause = std::chrono::milliseconds(250);
        /// How long the host may take to answer the announcement.
        std::chrono::milliseconds answer = std::chrono::seconds(10);
    };

    /// Client and socket outlive the desk.
    SupportDesk(Client& client, Winsock& wSupport, const Limits& limits, QObject* parent = nullptr);

    /// The user's own status. Written by the console.
    QString status = QStringLiteral("Active");

    /// Shows the console; connects first when the support link is closed. While that connects, nothing happens.
    void open();
    bool isConnected() const;
    /// Whether `open` would connect.
    bool isClosed() const;

    /// Sends `message`, in the host's code page, and adds it to the conversation.
    /// @return false, with nothing sent, when the link is not connected or the message is blank
    bool send(std::string_view message);
    /// Tells the host the status; does nothing unless connected.
    void announce();

    /// What is said with the account that is logged in, or was last. Never null.
    const std::shared_ptr<SupportTalk>& talk() const { return m_talks.current(); }
    /// Name under which the user speaks, in the host's code page; still known after the logout.
    std::string user() const;
    /// Empty while it is not known.
    const QString& hostStatus() const { return m_hostStatus; }
    /// How the link stands, as a sentence.
    QString linkText() const;
    /// The user looks at the console.
    void markSeen();

Q_SIGNALS:
    /// Another account has logged in, so that `talk` is another one.
    void talkChanged();
    /// @param first  number of the oldest of them
    void entriesAdded(Conversation::Number first);
    /// @param span  what it took in the shown text
    void entryReplaced(Conversation::Number number, TextSpan span);
    void hostStatusChanged();
    void linkChanged();
    /// Texts of the host have been taken in.
    void hostSpoke();
    /// The operator has written and the user cannot see it. Told once, until he looks or somebody logs in.
    void unseenMessage();
    /// The user looks at what was told by `unseenMessage`.
    void seen();

private:
    void receive(std::string_view chunk);
    void takeIn(const std::vector<SupportText>& texts);
    void breakOff(const QString& reason);
    void followState(SocketState state);
    void endWait();
    void followPhase(LinkPhase phase);
    void connectToHost();
    void showConsole();
    bool isConsoleInView() const;
    void tellUnseen();

    Client& m_client;
    Winsock& m_socket;
    SupportTexts m_texts;
    SupportTalks m_talks;
    std::optional<Conversation::Number> m_lastHostEntry; ///< on this connection
    QString m_hostStatus;
    QString m_ending; ///< why the link is closed; empty when nothing is to be said of it
    bool m_wasConnected = false;
    bool m_isLostWithLink = false; ///< it was connected when the host link was lost
    bool m_isDamageTold = false;   ///< once a connection is enough
    bool m_isWaiting = false;      ///< for the answer to the announcement
    bool m_isAnswered = false;     ///< on this connection
    bool m_isUnseen = false;       ///< something has been told by `unseenMessage`
    QTimer m_pause;
    QTimer m_answer;
};
