#include "platform/net/Download.h"

#include "platform/net/Inet.h"
#include "platform/system/PathText.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <array>
#include <utility>

namespace {

constexpr qint64 stepBytes = qint64{64} * 1024;
constexpr qint64 bufferBytes = 4 * stepBytes; // what may wait in memory for the disk
constexpr int maxRedirects = 5;

} // namespace

Download::Download(Inet& inet, const QUrl& url, const std::filesystem::path& file, const Limits& limits,
                   Listener listener)
    : m_file(textOf(file)),
      m_limits(limits),
      m_listener(std::move(listener))
{
    QFile::remove(m_file.fileName());
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        m_outcome = DownloadEnd::NotWritable;
        QTimer::singleShot(0, this, &Download::finished);
        return;
    }
    QNetworkRequest request(url);
    // The announced length is to be the file's own; nothing is to be unpacked on the way.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setMaximumRedirectsAllowed(maxRedirects);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    m_reply = inet.network().get(request);
    m_reply->setParent(this);
    m_reply->setReadBufferSize(bufferBytes);
    m_silence.setSingleShot(true);
    m_silence.setInterval(limits.silence);
    connect(&m_silence, &QTimer::timeout, this, [this] { end(DownloadEnd::Silent); });
    connect(m_reply, &QNetworkReply::readyRead, this, &Download::takeSteps);
    connect(m_reply, &QNetworkReply::finished, this, &Download::conclude);
    m_silence.start();
}

Download::~Download()
{
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    m_file.remove();
}

void Download::readHead()
{
    m_hasHead = true;
    m_status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    bool isNumber = false;
    m_announced = m_reply->rawHeader("Content-Length").trimmed().toLongLong(&isNumber);
    if (m_status < 200 || m_status >= 300)
        end(m_status == 0 ? DownloadEnd::NoAnswer : DownloadEnd::ErrorPage);
    else if (!isNumber || m_announced < 0)
        end(DownloadEnd::NoLength);
    else if (m_limits.exactBytes > 0 && m_announced != m_limits.exactBytes)
        end(DownloadEnd::OtherLength);
    else if (m_limits.exactBytes == 0 && m_announced > m_limits.maxBytes)
        end(DownloadEnd::TooLong);
}

void Download::takeSteps()
{
    if (!m_hasHead)
        readHead();
    std::array<char, stepBytes> step;
    const qint64 before = m_received;
    while (m_reply) {
        const qint64 read = m_reply->read(step.data(), stepBytes);
        if (read <= 0)
            break;
        m_received += read;
        if (m_received > m_announced)
            return end(DownloadEnd::CutOff); // more than announced is as wrong as less
        if (m_file.write(step.data(), read) != read)
            return end(DownloadEnd::DiskFailed);
        if (m_listener)
            m_listener(std::string_view(step.data(), static_cast<std::size_t>(read)));
    }
    if (!m_reply || m_received == before)
        return;
    m_silence.start();
    Q_EMIT progress(m_received);
}

void Download::conclude()
{
    takeSteps();
    if (!m_reply)
        return;
    if (m_received != m_announced || (m_received == 0 && m_reply->error() != QNetworkReply::NoError))
        return end(DownloadEnd::CutOff);
    m_file.close();
    end(m_file.error() == QFileDevice::NoError ? DownloadEnd::Whole : DownloadEnd::DiskFailed);
}

void Download::end(DownloadEnd how)
{
    if (!m_reply)
        return;
    m_outcome = how;
    m_silence.stop();
    QNetworkReply* reply = std::exchange(m_reply, nullptr);
    reply->disconnect(this);
    reply->deleteLater(); // which breaks the transfer off
    if (how != DownloadEnd::Whole)
        m_file.remove();
    Q_EMIT finished();
}
