#pragma once

#include <QDialog>

#include <string>
#include <vector>

class CodePage;
class QLabel;
class QPlainTextEdit;
class QPushButton;

/// Shows what would be sent of the error log, one report at a time: every field in readable form, and the very text
/// that goes out. Modal; deletes itself when it is closed.
class ErrorReportPreview : public QDialog
{
    Q_OBJECT

public:
    struct Contents
    {
        std::vector<std::string> pieces; ///< of the log, one for each report
        std::size_t leftOut = 0;         ///< stretches of the log that no report tells of
        std::string identity;            ///< of this installation
        QString page;                    ///< the address that the reports go to
    };

    /// @param codePage  outlives the window
    ErrorReportPreview(Contents contents, const CodePage& codePage, QWidget* parent);

private:
    void buildControls();
    void showReport(std::size_t index);
    QString textOf(std::size_t index) const;

    const Contents m_contents;
    const CodePage& m_codePage;
    std::size_t m_shown = 0;

    QLabel* lblReport = nullptr;
    QPlainTextEdit* txtReport = nullptr;
    QPushButton* cmdPrevious = nullptr;
    QPushButton* cmdNext = nullptr;
};
