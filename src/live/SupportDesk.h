#pragma once

#include "live/Conversation.h"
#include "live/SupportTexts.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

class Winsock;
enum class SocketState;
struct Client;

/// The support link and what was said on it. Outlives the console window, so that closing that loses neither the
/// conversation nor what was typed and not sent.
class SupportDesk : public QObject
{
    Q_OBJECT

public:
    /// Client and socket outlive the desk.
    /// @param host  gives the host's address as the login window has it
    SupportDesk(Client& client, Winsock& wSupport, std::function<QString()> host, QObject* parent = nullptr);

    /// What was typed into the console and not sent when it was closed. Written by the console.
    QString draft;
    /// The user's own status. Written by the console.
    QString status = QStringLiteral("Active");
    /// After how much silence a text may be over that does not tell its end.
    std::chrono::milliseconds pause = std::chrono::milliseconds(250);
    /// How long the host may take to answer the announcement. A setting.
    std::chrono::milliseconds answerLimit = std::chrono::seconds(10);

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

    Conversation& conversation() { return m_conversation; }
    /// Name under which the user speaks, in the host's code page; still known after the logout.
    const std::string& user() const;
    /// Empty while it is not known.
    const QString& hostStatus() const { return m_hostStatus; }
    /// How the link stands, as a sentence.
    QString linkText() const;

Q_SIGNALS:
    /// @param first  number of the oldest of them
    void entriesAdded(Conversation::Number first);
    /// @param span  what it took in the shown text
    void entryReplaced(Conversation::Number number, TextSpan span);
    void hostStatusChanged();
    void linkChanged();
    /// Texts of the host have been taken in.
    void hostSpoke();

private:
    void receive(std::string_view chunk);
    void takeIn(const std::vector<SupportText>& texts);
    void breakOff(const QString& reason);
    void followState(SocketState state);
    void endWait();
    void connectToHost();
    void showConsole();

    Client& m_client;
    Winsock& m_socket;
    std::function<QString()> m_host;
    SupportTexts m_texts;
    Conversation m_conversation;
    std::optional<Conversation::Number> m_lastHostEntry; ///< on this connection
    std::string m_lastUser;
    QString m_hostStatus;
    QString m_ending; ///< why the link is closed; empty when nothing is to be said of it
    bool m_wasConnected = false;
    bool m_isDamageTold = false; ///< once a connection is enough
    bool m_isWaiting = false;    ///< for the answer to the announcement
    bool m_isAnswered = false;   ///< on this connection
    QTimer m_pause;
    QTimer m_answer;
};
