#include "platform/Inet.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// No page that is asked for here has a longer answer; a longer one is cut off.
constexpr qint64 maxAnswerBytes = 1 << 20;

} // namespace

Inet::Inet(QObject* parent) : QObject(parent) {}

Inet::~Inet() = default;

void Inet::post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit,
                std::function<void(const Answer&)> done)
{
    if (!m_network)
        m_network = std::make_unique<QNetworkAccessManager>();
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    QNetworkReply* reply = m_network->post(request, body);
    reply->setReadBufferSize(maxAnswerBytes);
    // A limit on the whole transfer: the library's own counts only the silence between two bytes.
    QTimer::singleShot(limit, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::finished, this, [reply, done = std::move(done)] {
        reply->deleteLater();
        Answer answer;
        if (reply->error() == QNetworkReply::NoError) {
            answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            answer.body = reply->read(maxAnswerBytes);
        }
        done(answer);
    });
}
