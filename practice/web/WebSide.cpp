#include "practice/web/WebSide.h"

#include "practice/web/PracticeCertificate.h"
#include "practice/web/ScriptPages.h"
#include "practice/web/UpdatePages.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QSslCertificate>
#include <QSslKey>

#include <vector>

namespace practice {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxReportsKept = 1000;

} // namespace

struct WebSide::Server
{
    std::vector<QHttpServerResponder> unanswered; // a responder that is let go is answered by the server
    QHttpServer http;
};

WebSide::WebSide(QObject* parent)
    : QObject(parent),
      m_updates(std::make_unique<UpdatePages>()),
      m_server(std::make_unique<Server>())
{
    addRoutes(*m_server);
    m_scripts = std::make_unique<ScriptPages>(m_server->http);
}

void WebSide::addRoutes(Server& server)
{
    server.http.route(u"/quorbeta/ErrorReports.php"_s, QHttpServerRequest::Method::Post,
                      [this, &server](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
                          m_reports += request.body();
                          m_reportTypes += request.value("Content-Type");
                          if (m_reports.size() > maxReportsKept) {
                              m_reports.removeFirst();
                              m_reportTypes.removeFirst();
                          }
                          if (m_unanswered)
                              server.unanswered.push_back(std::move(responder));
                          else
                              responder.write(m_answer, "text/html",
                                              static_cast<QHttpServerResponder::StatusCode>(m_status));
                          Q_EMIT reportReceived(m_reports.constLast());
                      });
    m_updates->serveOn(server.http);
}

WebSide::~WebSide() = default;

bool WebSide::listen(quint16 port)
{
    m_port = m_server->http.listen(QHostAddress::LocalHost, port);
    return m_port != 0;
}

QUrl WebSide::listenSecurely()
{
    m_secureServer = std::make_unique<Server>();
    m_secureServer->http.sslSetup(QSslCertificate(QByteArray(certificatePem)),
                                  QSslKey(QByteArray(certificateKeyPem), QSsl::Ec));
    addRoutes(*m_secureServer);
    const quint16 port = m_secureServer->http.listen(QHostAddress::LocalHost);
    return port ? QUrl(u"https://127.0.0.1:%1"_s.arg(port)) : QUrl();
}

QUrl WebSide::base() const
{
    return QUrl(u"http://127.0.0.1:%1"_s.arg(m_port));
}

void WebSide::setReportAnswer(const QByteArray& body, int httpStatus)
{
    m_answer = body;
    m_status = httpStatus;
}

void WebSide::setReportsUnanswered(bool unanswered)
{
    m_unanswered = unanswered;
}

} // namespace practice
