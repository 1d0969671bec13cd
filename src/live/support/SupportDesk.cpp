#include "live/support/SupportDesk.h"

#include "base/RuntimeError.h"
#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "link/clsWinSock.h"
#include "platform/net/Winsock.h"
#include "platform/system/CodePage.h"
#include "ui/WindowRegistry.h"

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

SupportDesk::SupportDesk(Client& client, Winsock& wSupport, const Limits& limits, QObject* parent)
    : QObject(parent),
      m_client(client),
      m_socket(wSupport),
      m_talks(client.bounds)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(limits.pause);
    m_answer.setSingleShot(true);
    m_answer.setInterval(limits.answer);
    connect(&m_socket, &Winsock::stateChanged, this, &SupportDesk::followState);
    connect(&m_socket, &Winsock::connected, this, &SupportDesk::announce);
    connect(&m_socket, &Winsock::dataArrival, this,
            [this](std::string_view chunk) { m_client.reporter.trap("wSupportDataArrival", [&] { receive(chunk); }); });
    connect(&m_pause, &QTimer::timeout, this,
            m_client.reporter.trapped("wSupportDataArrival", [this] { takeIn(m_texts.takeAfterPause()); }));
    connect(&m_answer, &QTimer::timeout, this, &SupportDesk::endWait);
    connect(&m_client.link, &clsWinSock::replyHandled, this, [this] {
        m_isAnswered = m_isAnswered || m_isWaiting;
        endWait();
    });
    connect(&m_client.link, &clsWinSock::phaseChanged, this, &SupportDesk::followPhase);
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] {
        m_isLostWithLink = isConnected();
        m_socket.close();
    });
    // A link that the host has closed or that failed is closed here too: only a closed one can be opened again. Behind
    // the socket's own doings, and before the box, which is modal.
    connect(
        &m_socket, &Winsock::closedByPeer, this,
        [this] {
            if (m_socket.state() == SocketState::PeerClosing)
                m_socket.close();
        },
        Qt::QueuedConnection);
    connect(
        &m_socket, &Winsock::failed, this,
        [this](int number, const QString& description) {
            if (m_socket.state() == SocketState::Error) {
                m_ending = u"Not connected: %1"_s.arg(description);
                m_socket.close();
            }
            m_client.boxes.show(u"Winsock Error"_s, u"%1: %2"_s.arg(number).arg(description));
        },
        Qt::QueuedConnection);
}

bool SupportDesk::isConnected() const
{
    return m_socket.state() == SocketState::Connected;
}

bool SupportDesk::isClosed() const
{
    return m_socket.state() == SocketState::Closed;
}

std::string SupportDesk::user() const
{
    return talk()->account ? talk()->account->user : std::string();
}

void SupportDesk::followPhase(LinkPhase phase)
{
    if (phase != LinkPhase::LoggedIn)
        return;
    m_isUnseen = false; // what comes from now on is news again
    // What was lost with a host link that is back by itself comes back with it.
    if (std::exchange(m_isLostWithLink, false) && m_client.link.openedBy() == PendingRequest::Asked::ByClock)
        QMetaObject::invokeMethod(this, &SupportDesk::connectToHost, Qt::QueuedConnection);
    if (!m_talks.select(m_client.link.connection()))
        return;
    m_ending.clear();
    Q_EMIT talkChanged();
    Q_EMIT linkChanged();
}

void SupportDesk::open()
{
    if (isClosed())
        connectToHost();
    else if (!isConnected())
        return;
    showConsole();
}

void SupportDesk::connectToHost()
{
    const std::int32_t port = m_client.link.supportPort();
    m_ending.clear();
    if (!m_client.link.isLoggedIn()) // before that, the port is an earlier host's
        m_ending = u"Not connected: log in to the host first."_s;
    else if (port < 1 || port > std::numeric_limits<quint16>::max())
        m_ending = u"Not connected: the host offers no support link."_s;
    if (m_ending.isEmpty())
        m_socket.connectTo(m_client.link.connection().host, static_cast<quint16>(port));
    Q_EMIT linkChanged();
}

void SupportDesk::showConsole()
{
    QWidget* console = m_client.windows.window(u"qrvrcSupport"_s);
    if (!console)
        return;
    console->setWindowState(console->windowState() & ~Qt::WindowMinimized);
    console->show();
    console->raise();
    console->activateWindow();
}

/// A console in its normal state comes to the front by itself when the host speaks.
bool SupportDesk::isConsoleInView() const
{
    const QWidget* console = m_client.windows.existing(u"qrvrcSupport"_s);
    return console && console->isVisible() && !console->isMinimized() &&
           (console->isActiveWindow() || !console->isMaximized());
}

void SupportDesk::tellUnseen()
{
    if (!isConsoleInView() && !std::exchange(m_isUnseen, true))
        Q_EMIT unseenMessage();
}

void SupportDesk::markSeen()
{
    if (std::exchange(m_isUnseen, false))
        Q_EMIT seen();
}

QString SupportDesk::linkText() const
{
    switch (m_socket.state()) {
    case SocketState::Connected:
        if (m_isWaiting)
            return u"Connected. Waiting for the host to answer..."_s;
        return m_isAnswered ? u"Connected."_s : u"Connected. The host has not answered yet."_s;
    case SocketState::Closed:
        return m_ending.isEmpty() ? u"Not connected."_s : m_ending;
    case SocketState::PeerClosing:
    case SocketState::Error:
        return m_ending;
    default:
        return u"Connecting to the host..."_s;
    }
}

void SupportDesk::announce()
{
    if (!isConnected())
        return;
    m_client.link.SendDataS(announceText(user(), m_client.codePage.toBytes(status)));
}

bool SupportDesk::send(std::string_view message)
{
    if (!isConnected() || message.find_first_not_of(" \t\r\n") == std::string_view::npos)
        return false;
    const std::string entry = conversationEntry(user(), message);
    m_client.link.SendDataS(messageText(user(), entry));
    Q_EMIT entriesAdded(talk()->conversation.add(entry));
    return true;
}

void SupportDesk::receive(std::string_view chunk)
{
    try {
        m_texts.add(chunk);
    } catch (const RuntimeError&) {
        // What came before is taken in as the link closes.
        breakOff(u"The host sent a message larger than 256 KiB. The support link was closed."_s);
        return;
    }
    if (!std::exchange(m_isAnswered, true))
        Q_EMIT linkChanged();
    endWait();
    const std::vector<SupportText> texts = m_texts.take();
    if (m_texts.isUnderWay())
        m_pause.start();
    else
        m_pause.stop();
    takeIn(texts);
}

/// @throws RuntimeError TypeMismatch, once a connection, when there is a damaged message among the texts, all of which
/// have then been taken in
void SupportDesk::takeIn(const std::vector<SupportText>& texts)
{
    if (texts.empty())
        return;
    Conversation& conversation = talk()->conversation;
    Conversation::Number first = conversation.end();
    const auto tellAdded = [&] {
        if (conversation.end() > first)
            Q_EMIT entriesAdded(first);
        first = conversation.end();
    };
    bool isDamaged = false;
    const QString statusBefore = m_hostStatus;
    for (const SupportText& text : texts) {
        if (text.kind == SupportText::Kind::Status) {
            m_hostStatus = m_client.codePage.toText(text.value);
        } else if (text.kind == SupportText::Kind::Damaged) {
            isDamaged = true;
        } else if (!text.continues || !m_lastHostEntry || *m_lastHostEntry < conversation.first()) {
            m_lastHostEntry = conversation.add(text.value);
        } else {
            tellAdded(); // a replaced entry is looked for below those that are newer
            if (const auto span = conversation.replace(*m_lastHostEntry, text.value))
                Q_EMIT entryReplaced(*m_lastHostEntry, *span);
        }
    }
    tellAdded();
    if (m_hostStatus != statusBefore)
        Q_EMIT hostStatusChanged();
    Q_EMIT hostSpoke();
    if (std::any_of(texts.begin(), texts.end(),
                    [](const SupportText& text) { return text.kind == SupportText::Kind::Message; }))
        tellUnseen();
    if (isDamaged && !std::exchange(m_isDamageTold, true))
        throw RuntimeError(ErrorNumber::TypeMismatch, "a message of the host cannot be read");
}

void SupportDesk::breakOff(const QString& reason)
{
    m_ending = reason;
    m_socket.close();
    m_client.reporter.ReportMsg(MessageKind::Failed, reason);
}

void SupportDesk::followState(SocketState state)
{
    if (state == SocketState::Connected) {
        m_wasConnected = true;
        m_isDamageTold = false;
        m_isAnswered = false;
        m_isWaiting = true;
        m_lastHostEntry.reset();
        m_texts.reset();
        m_answer.start();
    } else if (std::exchange(m_wasConnected, false)) {
        m_pause.stop();
        endWait();
        m_client.reporter.trap("wSupportDataArrival", [this] { takeIn(m_texts.takeRest()); });
        m_hostStatus.clear();
        Q_EMIT hostStatusChanged();
    }
    if (state == SocketState::PeerClosing)
        m_ending = u"The host closed the support link."_s;
    else if (state == SocketState::Error)
        m_ending = u"The support link could not be connected, or was cut."_s;
    Q_EMIT linkChanged();
}

/// The host has answered the announcement, by whatever it said on either link, or will not.
void SupportDesk::endWait()
{
    if (!std::exchange(m_isWaiting, false))
        return;
    m_answer.stop();
    m_client.link.endSupportWait();
    Q_EMIT linkChanged();
}
