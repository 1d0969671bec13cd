#include "platform/net/Inet.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// No page that is asked for here has a longer answer; a longer one is cut off.
constexpr qint64 maxAnswerBytes = 1 << 20;

} // namespace

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == u"http" || url.scheme() == u"https");
}

PageFetch::PageFetch(QNetworkReply* reply, std::chrono::milliseconds limit) : m_reply(reply)
{
    reply->setParent(this);
    reply->setReadBufferSize(maxAnswerBytes);
    // A limit on the whole transfer: the library's own counts only the silence between two bytes.
    QTimer::singleShot(limit, this, &PageFetch::cancel);
    connect(reply, &QNetworkReply::finished, this, &PageFetch::finish);
    // A body that fills the buffer would wait for a reader for ever.
    connect(reply, &QNetworkReply::readyRead, this, [this] {
        if (m_reply && m_reply->bytesAvailable() >= maxAnswerBytes)
            finish();
    });
}

PageFetch::~PageFetch()
{
    if (m_reply)
        m_reply->disconnect(this);
}

void PageFetch::cancel()
{
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    m_reply->abort();
    std::exchange(m_reply, nullptr)->deleteLater();
    Q_EMIT finished();
}

void PageFetch::finish()
{
    m_reply->disconnect(this);
    const bool isCutOff = !m_reply->isFinished();
    // An error page is an answer too; whether it counts is for whoever asked.
    m_answer.status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    m_answer.body = m_reply->read(maxAnswerBytes);
    m_answer.isWhole = !isCutOff && m_reply->error() == QNetworkReply::NoError;
    if (isCutOff)
        m_reply->abort();
    std::exchange(m_reply, nullptr)->deleteLater();
    Q_EMIT finished();
}

Inet::Inet(QObject* parent) : QObject(parent) {}

Inet::~Inet() = default;

QNetworkAccessManager& Inet::network()
{
    if (!m_network)
        m_network = std::make_unique<QNetworkAccessManager>();
    return *m_network;
}

void Inet::post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit,
                std::function<void(const PageAnswer&)> done)
{
    PageFetch* page = post(url, body, limit).release();
    page->setParent(this);
    connect(page, &PageFetch::finished, this, [page, done = std::move(done)] {
        page->deleteLater();
        done(page->answer());
    });
}

std::unique_ptr<PageFetch> Inet::post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    return std::make_unique<PageFetch>(network().post(request, body), limit);
}

std::unique_ptr<PageFetch> Inet::get(const QUrl& url, std::chrono::milliseconds limit)
{
    return std::make_unique<PageFetch>(network().get(QNetworkRequest(url)), limit);
}
