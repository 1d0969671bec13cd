#include "diagnostics/report/TrappedError.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString lineOf(TrappedError::Report report)
{
    using Report = TrappedError::Report;
    switch (report) {
    case Report::UnderWay:
        return u"Sending the error report..."_s;
    case Report::Delivered:
        return u"Error Report Sent: Yes"_s;
    case Report::Failed:
        return u"Error Report Sent: Failed!"_s;
    case Report::EqualSent:
        return u"Error Report Sent: No, an equal error was reported before."_s;
    case Report::CountedLater:
        return u"Error Report Sent: No, it is counted in the next one."_s;
    case Report::Offered:
        return u"Error Report Sent: Not yet"_s;
    case Report::Unwanted:
        return u"Error Report Sent: No, as chosen in the options."_s;
    }
    return {};
}

} // namespace

QString TrappedError::outcome() const
{
    const QString times = m_times > 1 ? u"%1 times\r\n"_s.arg(m_times) : QString();
    return times + lineOf(m_report);
}

void TrappedError::happenAgain()
{
    ++m_times;
    Q_EMIT changed();
}

void TrappedError::setReport(Report report)
{
    m_report = report;
    Q_EMIT changed();
}

void TrappedError::offerReport(std::function<void()> send)
{
    m_send = std::move(send);
    setReport(Report::Offered);
}

void TrappedError::sendOffered()
{
    const std::function<void()> send = std::exchange(m_send, {});
    if (!send)
        return;
    setReport(Report::UnderWay);
    send();
}
