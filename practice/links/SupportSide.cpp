#include "practice/links/SupportSide.h"

#include "practice/links/ReplyWriter.h"

#include <array>

namespace practice {

namespace {

constexpr qsizetype maxTextsKept = 10000;
constexpr qsizetype maxLinks = 64;
constexpr qsizetype maxTextBytes = 1 << 20;

struct Answer
{
    const char* word; ///< in the question, in small letters
    const char* text;
};

constexpr std::array answers{
    Answer{"map", "The rotation is on the host already.\nThe change comes with the next map, nobody is thrown out."},
    Answer{"restart", "I can restart the tracker from here. The games go on meanwhile.\nGive me two minutes."},
    Answer{"ban", "Send me name and address of the player, I look it up in the logs."},
    Answer{"lag", "The line is quiet on my side: 3 % load, no losses.\nWhich server do you mean?"},
    Answer{"log", "All logs of the week are on the host, under Remote File Viewer."},
    Answer{"update", "The host is up to date. The next update is planned for the weekend."},
    Answer{"thank", "You are welcome!"},
    Answer{"bye", "See you."},
};

constexpr std::array otherwise{
    "Let me look into it.",
    "I see. Which profile is it about?",
    "Done. Please press refresh in the profile list, and tell me what you see.",
};

constexpr std::array remarks{
    "Heads up: the host gets a new network card tonight at 23:00.\nThere will be five minutes without a link.",
    "Two of the servers are full. Shall I start the reserve?",
    "Coffee is ready. I am here if you need me.",
};

constexpr std::array statuses{"Active", "Busy", "Away", "Be Right Back", "Out for Lunch!"};

/// Whether a client's text has its status in brackets, or an entry that ends in an empty line.
bool isWhole(const QByteArray& text)
{
    const QList<QByteArray> fields = text.split('_');
    if (fields.size() != 3)
        return false;
    if (fields[0] == "Announce")
        return fields[2].endsWith(')');
    return fields[2].size() % 4 == 0 && QByteArray::fromBase64(fields[2]).endsWith("\r\n\r\n");
}

} // namespace

/// One client's connection.
struct SupportSide::Link : QObject
{
    Link(QTcpSocket* connected, QObject* parent) : QObject(parent), socket(connected), writer(*connected, this)
    {
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // pieces leave as they are written
    }

    QTcpSocket* socket;
    ReplyWriter writer;
    QByteArray unread; ///< the text under way
    QByteArray user;   ///< empty until he has announced himself
};

SupportSide::SupportSide(quint32 seed, QObject* parent) : QObject(parent), m_chance(seed)
{
    connect(&m_server, &QTcpServer::newConnection, this, &SupportSide::acceptLinks);
    connect(&m_initiative, &QTimer::timeout, this, &SupportSide::takeInitiative);
}

SupportSide::~SupportSide()
{
    // A socket that closes while its owner goes down would still report it here.
    for (Link* link : std::as_const(m_links))
        link->socket->disconnect(this);
}

bool SupportSide::listen(quint16 port)
{
    if (!m_server.listen(QHostAddress::LocalHost, port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

void SupportSide::setLively(bool lively, std::chrono::milliseconds every)
{
    if (lively)
        m_initiative.start(every);
    else
        m_initiative.stop();
}

void SupportSide::setStatus(const QByteArray& status)
{
    m_status = status;
    sendRaw("Announce_" + status);
}

void SupportSide::say(const QByteArray& text)
{
    sendRaw(messageOf(text));
}

void SupportSide::sendRaw(const QByteArray& bytes)
{
    const QList<Link*> links = m_links; // a failing write changes the list
    for (Link* link : links)
        link->writer.deliver({.bytes = bytes});
}

void SupportSide::closeLinks()
{
    const QList<Link*> links = m_links; // closing changes the list
    for (Link* link : links)
        link->writer.closeAfterwards();
}

QByteArray SupportSide::entryOf(const QByteArray& text)
{
    return "Host says:\r\n" + QByteArray(text).replace("\n", "\r\n") + "\r\n\r\n";
}

void SupportSide::acceptLinks()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        if (m_links.size() >= maxLinks) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        auto* link = new Link(socket, this);
        m_links += link;
        connect(socket, &QTcpSocket::readyRead, this, [this, link] { take(link); });
        connect(socket, &QTcpSocket::disconnected, this, [this, link] {
            if (m_links.removeOne(link))
                link->deleteLater();
        });
    }
}

/// A client's texts end where the next one begins, or where their last field looks finished.
void SupportSide::take(Link* link)
{
    link->unread += link->socket->readAll();
    if (link->unread.size() > maxTextBytes) {
        link->writer.reset();
        return;
    }
    while (!link->unread.isEmpty()) {
        qsizetype next = -1;
        for (const char* word : {"Announce_", "Message_"}) {
            const qsizetype at = link->unread.indexOf(word, 1);
            if (at > 0 && (next < 0 || at < next))
                next = at;
        }
        const QByteArray text = link->unread.left(next < 0 ? link->unread.size() : next);
        if (next < 0 && !isWhole(text))
            return;
        link->unread.remove(0, text.size());
        hear(link, text);
    }
}

void SupportSide::hear(Link* link, const QByteArray& text)
{
    m_texts += text;
    if (m_texts.size() > maxTextsKept)
        m_texts.removeFirst();
    Q_EMIT textReceived(text);
    const QList<QByteArray> fields = text.split('_');
    const QByteArray user = QByteArray::fromBase64(fields.value(1));
    if (!isThere || user.isEmpty())
        return;
    if (fields[0] == "Announce") {
        QList<QByteArray> said{"Announce_" + m_status};
        if (link->user.isEmpty())
            said += messageOf("Hello " + user + ", this is the host's operator. What can I do for you?");
        link->user = user;
        answer(link, "Announce", said);
    } else if (fields[0] == "Message") {
        const QByteArray question = QByteArray::fromBase64(fields.value(2)).toLower();
        QByteArray said = otherwise[m_chance() % otherwise.size()];
        for (const Answer& known : answers) {
            if (question.contains(known.word)) {
                said = known.text;
                break;
            }
        }
        answer(link, "Message", {messageOf(said)});
    }
}

/// All texts of an answer leave in one piece, which is how they arrive on a quick network.
void SupportSide::answer(Link* link, const QByteArray& kind, const QList<QByteArray>& texts)
{
    const Fault fault = m_faults.value(kind);
    Delivery delivery{.bytes = texts.join()};
    switch (fault.kind()) {
    case Fault::Kind::Never:
        return;
    case Fault::Kind::Chunks:
        delivery.chunk = fault.number();
        delivery.gap = fault.delay();
        break;
    case Fault::Kind::Twice:
        delivery.bytes += delivery.bytes;
        break;
    case Fault::Kind::CutOff:
        delivery.bytes.truncate(fault.number());
        delivery.ending = Delivery::Ending::Close;
        break;
    case Fault::Kind::Silent:
        delivery.bytes.truncate(fault.number());
        break;
    case Fault::Kind::Reset:
        delivery.bytes.clear();
        delivery.ending = Delivery::Ending::Reset;
        break;
    case Fault::Kind::Garbage:
        delivery.bytes.prepend("\x01\xFF_Mess_=_Message_!no Base64!");
        break;
    default:
        break;
    }
    QTimer::singleShot(thinks + (fault.kind() == Fault::Kind::Late ? fault.delay() : std::chrono::milliseconds(0)),
                       link, [link, delivery] { link->writer.deliver(delivery); });
}

void SupportSide::takeInitiative()
{
    if (m_chance() % 2 == 0)
        setStatus(statuses[m_chance() % statuses.size()]);
    else
        say(remarks[m_chance() % remarks.size()]);
}

} // namespace practice
