#include "diagnostics/errorlog/ErrorLogSender.h"

#include "diagnostics/report/Reporter.h"
#include "store/ErrorLog.h"
#include "store/ErrorLogText.h"
#include "store/clsMFD.h"

#include <QDateTime>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Each silent piece costs the whole limit; a page that is gone is not to be asked a hundred times.
constexpr int maxUnanswered = 2;

} // namespace

std::string reportBody(std::string_view piece, std::string_view thisIdentity, std::string_view sentAt)
{
    return "Report=" + joinReport(reportFields(readErrorLogBlock(piece), thisIdentity, sentAt));
}

ErrorLogSender::ErrorLogSender(ErrorLog& log, const clsMFD& store, Reporter& reporter, ErrorReportPage page,
                               QObject* parent)
    : QObject(parent),
      m_log(log),
      m_store(store),
      m_reporter(reporter),
      m_page(std::move(page))
{
    m_inet.setObjectName(u"inetSendErrors"_s);
}

void ErrorLogSender::start()
{
    if (m_isSending)
        return;
    m_isSending = true;
    m_at = 0;
    m_number = 0;
    m_count = static_cast<std::size_t>(std::count_if(m_log.pieces().begin(), m_log.pieces().end(), isReportable));
    m_delivered = 0;
    m_unanswered = 0;
    const bool isReady = m_reporter.trap("cmdSendErrors", [this] {
        m_identity = m_store.GetUIDStr();
        m_sentAt = QDateTime::currentDateTime().toString(u"yyyy-MM-dd hh:mm:ss"_s).toStdString();
        sendNext();
    });
    if (!isReady)
        finish(End::Stopped);
}

void ErrorLogSender::stop()
{
    if (!m_isSending)
        return;
    m_transfer.reset();
    finish(End::Stopped);
}

void ErrorLogSender::sendNext()
{
    while (m_at < m_log.pieces().size() && !isReportable(m_log.pieces()[m_at]))
        ++m_at;
    if (m_at == m_log.pieces().size()) {
        finish(End::Through);
        return;
    }
    Q_EMIT sending(++m_number, m_count);
    const std::string piece = m_store.reportable(std::string(m_log.pieces()[m_at]));
    m_transfer =
        m_inet.post(m_page.url, QByteArray::fromStdString(reportBody(piece, m_identity, m_sentAt)), m_page.limit);
    connect(m_transfer.get(), &PageFetch::finished, this, [this] {
        if (!m_reporter.trap("cmdSendErrors", [this] { handleAnswer(); }))
            finish(End::Stopped);
    });
}

void ErrorLogSender::handleAnswer()
{
    const PageAnswer answer = m_transfer->answer();
    m_transfer.release()->deleteLater(); // this runs in its signal
    m_unanswered = answer.status == 0 ? m_unanswered + 1 : 0;
    if (answer.isGood() && answer.body == "1") {
        ++m_delivered;
        const std::string_view piece = m_log.pieces()[m_at];
        m_log.take(m_at);
        Q_EMIT delivered(m_at, piece);
    } else {
        ++m_at;
    }
    if (m_unanswered < maxUnanswered)
        sendNext();
    else
        finish(End::NoAnswer);
}

void ErrorLogSender::finish(End end)
{
    m_isSending = false;
    Q_EMIT finished(end);
}
