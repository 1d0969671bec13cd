#pragma once

#include "platform/net/Inet.h"

#include <QObject>
#include <QUrl>

#include <chrono>
#include <memory>
#include <string>

class clsMFD;
class ErrorLog;
class Reporter;

/// The page that takes error reports.
struct ErrorReportPage
{
    QUrl url;
    std::chrono::milliseconds limit = std::chrono::seconds(10); ///< a page that has not answered by then is given up
};

/// The body that is posted for one piece of the log.
/// @param sentAt  "yyyy-mm-dd hh:mm:ss"
std::string reportBody(std::string_view piece, std::string_view thisIdentity, std::string_view sentAt);

/// Sends an error log piece by piece, each when the page has answered the one before. Nobody waits: it all happens in
/// the event loop.
class ErrorLogSender : public QObject
{
    Q_OBJECT

public:
    enum class End {
        Through,  ///< every piece has had its turn
        Stopped,  ///< by stop(), or by a run-time error, which has been reported
        NoAnswer, ///< the page stayed silent for two pieces in a row
    };

    /// All outlive the sender.
    ErrorLogSender(ErrorLog& log, const clsMFD& store, Reporter& reporter, ErrorReportPage page, QObject* parent);

    bool isSending() const { return m_isSending; }
    /// Sends all reportable pieces that are left. The log is not loaded or cleared until `finished`.
    void start();
    /// Cuts off the transfer under way; the piece then counts as not delivered.
    void stop();

    /// Of this or the last run.
    int deliveredCount() const { return m_delivered; }

Q_SIGNALS:
    /// The report of that number, counted from 1, is going out now.
    void sending(std::size_t number, std::size_t count);
    /// The page has taken this piece, which has just left the log.
    void delivered(std::size_t piece, std::string_view text);
    void finished(End end);

private:
    void sendNext();
    void handleAnswer();
    void finish(End end);

    ErrorLog& m_log;
    const clsMFD& m_store;
    Reporter& m_reporter;
    ErrorReportPage m_page;
    Inet m_inet{this};
    std::unique_ptr<PageFetch> m_transfer;
    std::string m_identity;
    std::string m_sentAt;
    std::size_t m_at = 0;     ///< the piece that is or was going out
    std::size_t m_number = 0; ///< of its report
    std::size_t m_count = 0;  ///< reports of this run
    int m_delivered = 0;
    int m_unanswered = 0; ///< in a row
    bool m_isSending = false;
};
