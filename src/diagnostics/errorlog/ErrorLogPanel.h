#pragma once

#include "diagnostics/errorlog/ErrorLogSender.h"
#include "store/ErrorLog.h"

#include <QGroupBox>
#include <QTimer>

class ImageButton;
class QLabel;
class QPlainTextEdit;
struct Client;

/// The frame "Error Log": shows the log, clears it, lets the administrator see what a report would tell, and sends the
/// reports. A log of any size is filled in slices, so that the program stays usable meanwhile.
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
    void showLog();
    void fillOn();
    void send();
    void removePiece(std::size_t piece, std::string_view text);
    void concludeSending(ErrorLogSender::End end);
    void previewReports();
    void clear();
    void closePanel();
    void applyState();

    Client& m_client;
    ErrorLog m_log;
    ErrorLogSender* m_sender;
    QString m_pageAddress;
    QTimer m_filling;
    std::size_t m_filled = 0;     ///< pieces that are in the text box
    std::size_t m_filledPart = 0; ///< bytes of the next piece that are
    QString m_note;               ///< what the last action has to say

    QPlainTextEdit* txtErrLog = nullptr;
    QLabel* lblErrLog = nullptr;
    ImageButton* cmdSendErrors = nullptr;
    ImageButton* cmdShowReport = nullptr;
    ImageButton* cmdClearErrors = nullptr;
    ImageButton* cmdStopErrors = nullptr; ///< in the place of Clear while reports are going out
    ImageButton* cmdCloseErrors = nullptr;
};
