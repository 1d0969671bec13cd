#include "practice/links/Tracker.h"

#include "practice/links/TrackerSession.h"

#include <utility>

namespace practice {

namespace {

constexpr qsizetype maxRequestsKept = 10000;
constexpr qsizetype maxLinks = 256;
const QByteArray notLoggedIn = "Login Failed: log in first.";

} // namespace

Tracker::Tracker(World world, QObject* parent) : QObject(parent), m_world(std::move(world))
{
    connect(&m_second, &QTimer::timeout, this, &Tracker::moveOn);
    connect(&m_server, &QTcpServer::newConnection, this, &Tracker::acceptLinks);
}

Tracker::~Tracker()
{
    // A socket that closes while its owner goes down would still report it here.
    for (TrackerSession* session : std::as_const(m_sessions))
        session->disconnect(this);
}

bool Tracker::listen(quint16 port)
{
    if (!m_server.listen(QHostAddress::LocalHost, port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

void Tracker::stopListening()
{
    m_server.close();
}

void Tracker::answerNext(const QByteArray& requestName, const Fault& fault)
{
    m_nextFaults[requestName].enqueue(fault);
}

void Tracker::answerNextWith(const QByteArray& requestName, const QByteArray& body)
{
    m_nextBodies[requestName].enqueue(body);
}

void Tracker::answerAlways(const QByteArray& requestName, const Fault& fault)
{
    m_alwaysFaults[requestName] = fault;
}

void Tracker::answerAll(const Fault& fault)
{
    m_allFault = fault;
}

bool Tracker::release(const QByteArray& requestName)
{
    const bool released = m_pending.release(requestName);
    sendDue();
    return released;
}

void Tracker::releaseAll()
{
    m_pending.releaseAll();
    sendDue();
}

void Tracker::send(const QByteArray& body)
{
    sendRaw(framed(body));
}

void Tracker::sendRaw(const QByteArray& bytes)
{
    const QList<TrackerSession*> sessions = m_sessions; // a failing write changes the list
    for (TrackerSession* session : sessions)
        session->writer().deliver({.bytes = bytes});
}

void Tracker::closeLinks()
{
    const QList<TrackerSession*> sessions = m_sessions; // closing changes the list
    for (TrackerSession* session : sessions)
        session->writer().closeAfterwards();
}

void Tracker::resetLinks()
{
    const QList<TrackerSession*> sessions = m_sessions;
    for (TrackerSession* session : sessions)
        session->writer().reset();
}

void Tracker::setLively(bool lively, std::chrono::milliseconds second)
{
    if (lively)
        m_second.start(second);
    else
        m_second.stop();
}

int Tracker::sendPluginNews()
{
    QList<TrackerSession*> listeners;
    for (TrackerSession* session : std::as_const(m_sessions)) {
        const Account* account = m_world.account(session->account);
        if (account && account->mayUse(matchWatch))
            listeners += session;
    }
    const QByteArray line = m_world.plugin(matchWatch) && !listeners.isEmpty() ? m_world.eliminate() : QByteArray();
    if (line.isEmpty())
        return 0;
    for (TrackerSession* session : std::as_const(listeners))
        session->writer().deliver({.bytes = framed(watchMessage(line))});
    return static_cast<int>(listeners.size());
}

void Tracker::moveOn()
{
    m_world.advance(std::chrono::seconds(1));
    m_sinceNews += std::chrono::seconds(1);
    if (m_world.newsEvery == std::chrono::seconds(0) || m_sinceNews < m_world.newsEvery)
        return;
    m_sinceNews = {};
    sendPluginNews();
}

void Tracker::acceptLinks()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        if (m_sessions.size() >= maxLinks) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        auto* session = new TrackerSession(socket, this);
        m_sessions += session;
        connect(session, &TrackerSession::bodyReceived, this,
                [this, session](const QByteArray& body) { handle(session, body); });
        connect(session, &TrackerSession::closed, this, [this, session] { drop(session); });
        Q_EMIT linksChanged(links());
    }
}

void Tracker::handle(TrackerSession* session, const QByteArray& body)
{
    m_requests += body;
    if (m_requests.size() > maxRequestsKept)
        m_requests.removeFirst();
    const Request request = Request::parse(body);
    Q_EMIT requestReceived(request.name);
    if (!m_sessions.contains(session))
        return; // closed by whoever was told

    const Fault fault = nextFault(request.name);
    m_pending.add(
        {.session = session, .request = request.name, .answer = answerFor(*session, request), .fault = fault});
    sendDue();
}

void Tracker::sendDue()
{
    while (const std::optional<PendingAnswer> due = m_pending.takeDue()) {
        due->session->writer().reply(due->answer.body, due->fault);
        followUp(due->answer);
    }
}

void Tracker::followUp(const Answer& answer)
{
    if (!answer.renamed.isEmpty())
        rename(answer.renamed, answer.newName);
    if (!answer.kicked.isEmpty())
        closeLinksOf(answer.kicked);
}

Answer Tracker::answerFor(TrackerSession& session, const Request& request)
{
    const auto bodies = m_nextBodies.find(request.name);
    const bool scripted = bodies != m_nextBodies.end() && !bodies->isEmpty();
    Answer answer;
    if (request.name == "Login") {
        const LoginAnswer login = answerLogin(m_world, request.rest);
        admit(session, login.account);
        answer.body = login.body;
    } else if (!scripted) {
        const Account* account = m_world.account(session.account);
        if (!account)
            return {notLoggedIn};
        const Account who = *account; // the request may change or delete it
        answer = answerRequest(m_world, who, request);
    }
    if (scripted)
        answer.body = bodies->dequeue();
    return answer;
}

void Tracker::admit(TrackerSession& session, const QByteArray& account)
{
    if (!session.account.isEmpty())
        m_world.disconnected(session.account);
    session.account = account;
    if (account.isEmpty())
        m_world.log("Login refused for " + session.peerAddress());
    else
        m_world.connected(account, session.peerAddress());
}

void Tracker::rename(const QByteArray& account, const QByteArray& newName)
{
    for (TrackerSession* session : std::as_const(m_sessions)) {
        if (session->account == account)
            session->account = newName;
    }
}

void Tracker::closeLinksOf(const QByteArray& account)
{
    const QList<TrackerSession*> sessions = m_sessions;
    for (TrackerSession* session : sessions) {
        if (session->account == account)
            session->writer().closeAfterwards();
    }
}

void Tracker::drop(TrackerSession* session)
{
    if (!m_sessions.removeOne(session))
        return;
    if (!session->account.isEmpty())
        m_world.disconnected(session->account);
    for (const PendingAnswer& forgotten : m_pending.takeAllOf(session))
        followUp(forgotten.answer); // what was asked for has been done all the same
    session->deleteLater();
    Q_EMIT linksChanged(links());
}

Fault Tracker::nextFault(const QByteArray& name)
{
    const auto queued = m_nextFaults.find(name);
    if (queued != m_nextFaults.end() && !queued->isEmpty())
        return queued->dequeue();
    return m_alwaysFaults.value(name, m_allFault);
}

} // namespace practice
