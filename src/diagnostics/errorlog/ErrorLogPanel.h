#pragma once

#include "diagnostics/errorlog/ErrorLogSender.h"
#include "store/ErrorLog.h"

#include <QFutureWatcher>
#include <QGroupBox>
#include <QTimer>

#include <memory>

class ImageButton;
class LinedText;
class QLabel;
class TextPane;
struct Client;

/// The frame "Error Log": shows the log, clears it, lets the administrator see what a report would tell, and sends the
/// reports. A large log is read in another thread, so that the program stays usable meanwhile.
class ErrorLogPanel : public QGroupBox
{
    Q_OBJECT

public:
    /// @param client  outlives the panel
    ErrorLogPanel(Client& client, const ErrorReportPage& page, QWidget* parent);

    /// Reads the log and shows the panel. While reports are going out the log stays as it is.
    void view();

Q_SIGNALS:
    /// The user has closed the panel.
    void closed();

private:
    void buildControls();
    void layOut();
    void wireSignals();
    void readLarge();
    void takeLarge();
    void showLog();
    void showText(std::shared_ptr<const LinedText> text);
    void send();
    void concludeSending(ErrorLogSender::End end);
    void previewReports();
    void clear();
    void closePanel();
    void applyState();

    Client& m_client;
    ErrorLog m_log;
    ErrorLogSender* m_sender;
    QString m_pageAddress;
    /// A log as it was read, and as it is shown.
    struct Loaded
    {
        std::shared_ptr<ErrorLog::Contents> contents; ///< null when there is no log
        std::shared_ptr<const LinedText> text;
    };
    static Loaded load(const std::filesystem::path& file);

    QFutureWatcher<Loaded> m_reading;
    bool m_isReading = false;
    QTimer m_refresh; ///< shows what is left, at times, while reports are going out
    QString m_note;   ///< what the last action has to say

    TextPane* txtErrLog = nullptr;
    QLabel* lblErrLog = nullptr;
    ImageButton* cmdSendErrors = nullptr;
    ImageButton* cmdShowReport = nullptr;
    ImageButton* cmdClearErrors = nullptr;
    ImageButton* cmdStopErrors = nullptr; ///< in the place of Clear while reports are going out
    ImageButton* cmdCloseErrors = nullptr;
};
