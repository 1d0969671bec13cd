#include "practice/web/ScriptPages.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTimer>

#include <vector>

namespace practice {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxRequestsKept = 1000;

/// A value of the query as the bytes that were meant; a script of that time knows no other encoding.
QByteArray valueOf(const QHttpServerRequest& request, const QByteArray& name)
{
    for (const QByteArray& pair : request.url().query(QUrl::FullyEncoded).toLatin1().split('&')) {
        if (pair.startsWith(name + '='))
            return QByteArray::fromPercentEncoding(pair.mid(name.size() + 1));
    }
    return {};
}

} // namespace

/// A responder that is let go is answered by the server.
struct ScriptPages::Unanswered
{
    std::vector<QHttpServerResponder> responders;
};

ScriptPages::ScriptPages(QHttpServer& server, QObject* parent)
    : QObject(parent),
      m_unanswered(std::make_unique<Unanswered>())
{
    const auto add = [&](const QString& page, Reply reply) {
        server.route(
            page, QHttpServerRequest::Method::Get,
            [this, reply](const QString& folder, const QHttpServerRequest& request, QHttpServerResponder&& responder) {
                answer(folder, request, std::move(responder), reply);
            });
    };
    add(u"/<arg>/stats_import.php"_s, &ScriptPages::importReply);
    add(u"/<arg>/request.php"_s, &ScriptPages::requestReply);
}

ScriptPages::~ScriptPages() = default;

void ScriptPages::answer(const QString& folder, const QHttpServerRequest& request, QHttpServerResponder&& responder,
                         Reply reply)
{
    using Status = QHttpServerResponder::StatusCode;
    m_requests += request.url().toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority);
    if (m_requests.size() > maxRequestsKept)
        m_requests.removeFirst();
    const auto respond = [&](const QByteArray& body, Status status) { responder.write(body, "text/html", status); };
    if (folder == "failing"_L1)
        respond("The statistics data base is down.", Status::InternalServerError);
    else if (folder == "none"_L1)
        respond("Nothing here.", Status::NotFound);
    else if (folder == "empty"_L1)
        respond("<html><body>Welcome!</body></html>", Status::Ok);
    else if (folder == "silent"_L1)
        m_unanswered->responders.push_back(std::move(responder));
    else if (folder == "slow"_L1)
        QTimer::singleShot(
            slowness, this,
            [body = (this->*reply)(request), late = std::make_shared<QHttpServerResponder>(std::move(responder))]() {
                late->write(body, "text/html", Status::Ok);
            });
    else
        respond((this->*reply)(request), Status::Ok);
    Q_EMIT requested(m_requests.constLast());
}

QByteArray ScriptPages::importReply(const QHttpServerRequest& request) const
{
    const QByteArray id = valueOf(request, "serverid");
    if (id.isEmpty() || valueOf(request, "data").isEmpty())
        return "<html><body>No Data Sent</body></html>\n";
    return serverIds.contains(id) ? "<html><body>Stats Imported</body></html>\n"
                                  : "<html><body>Unknown Server ID</body></html>\n";
}

QByteArray ScriptPages::requestReply(const QHttpServerRequest& request) const
{
    const QByteArray name = valueOf(request, "Request");
    const bool isTrue = name == "Exists" || (name == "ValidateID" && serverIds.contains(valueOf(request, "Data")));
    return isTrue ? "True\n" : "False\n";
}

} // namespace practice
