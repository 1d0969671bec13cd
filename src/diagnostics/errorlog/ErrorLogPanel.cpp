#include "diagnostics/errorlog/ErrorLogPanel.h"

#include "client/Client.h"
#include "diagnostics/errorlog/ErrorReportPreview.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "store/ErrorLogText.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"

#include <QDeadlineTimer>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Pixels.
constexpr QMargins frameMargins(7, 4, 7, 7);
constexpr int gap = 5;
constexpr int noteHeight = 20;
constexpr int buttonGap = 8;
constexpr int buttonWidth = 150;

constexpr auto sliceTime = 8ms; // of an event-loop turn that fills the text box
constexpr std::size_t sliceBytes = 16 * 1024;

/// Characters that a piece takes up in the text box, where a line break is one.
int shownLength(std::string_view piece)
{
    return static_cast<int>(piece.size() - static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n')));
}

QString reportCount(std::size_t count)
{
    return count == 1 ? u"1 report"_s : u"%1 reports"_s.arg(count);
}

} // namespace

ErrorLogPanel::ErrorLogPanel(Client& client, const ErrorReportPage& page, QWidget* parent)
    : QGroupBox(u"Error Log"_s, parent),
      m_client(client),
      m_log(client.store, client.folder),
      m_sender(new ErrorLogSender(m_log, client.store, client.reporter, page, this)),
      m_pageAddress(page.url.toString())
{
    setObjectName(u"fmeErrors"_s);
    m_filling.setInterval(0);
    buildControls();
    layOut();
    wireSignals();
    hide();
}

void ErrorLogPanel::buildControls()
{
    txtErrLog = new QPlainTextEdit(this);
    txtErrLog->setObjectName(u"txtErrLog"_s);
    txtErrLog->setAccessibleName(u"Error Log"_s);
    txtErrLog->setReadOnly(true);
    txtErrLog->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtErrLog->setUndoRedoEnabled(false);
    txtErrLog->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtErrLog->setTabChangesFocus(true);
    txtErrLog->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtErrLog->setPlaceholderText(u"The error log is empty."_s);
    lblErrLog = new QLabel(this);
    lblErrLog->setObjectName(u"lblErrLog"_s);
    lblErrLog->setTextFormat(Qt::PlainText);
    const auto button = [this](const QString& name, const QString& caption) {
        return new ImageButton(name, caption, m_client.pictures, this);
    };
    cmdSendErrors = button(u"cmdSendErrors"_s, u"Send to Quorvane"_s);
    cmdShowReport = button(u"cmdShowReport"_s, u"Show Report"_s);
    cmdClearErrors = button(u"cmdClearErrors"_s, u"Clear Error Log"_s);
    cmdStopErrors = button(u"cmdStopErrors"_s, u"Stop Sending"_s);
    cmdCloseErrors = button(u"cmdCloseErrors"_s, u"Close"_s);
    cmdStopErrors->hide();
    setFocusProxy(txtErrLog);
}

void ErrorLogPanel::layOut()
{
    auto* buttons = new QGridLayout;
    buttons->setHorizontalSpacing(buttonGap);
    const auto add = [buttons](const ImageButton* button, int column) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face(), 0, column);
    };
    add(cmdSendErrors, 0);
    add(cmdShowReport, 1);
    add(cmdClearErrors, 2);
    add(cmdStopErrors, 2);
    buttons->setColumnStretch(3, 1);
    add(cmdCloseErrors, 4);
    lblErrLog->setMinimumHeight(noteHeight);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(frameMargins);
    all->setSpacing(gap);
    all->addWidget(txtErrLog, 1);
    all->addWidget(lblErrLog);
    all->addLayout(buttons);
}

void ErrorLogPanel::wireSignals()
{
    const auto trapped = [this](const char* procedure, void (ErrorLogPanel::*method)()) {
        return m_client.reporter.trapped(procedure, [this, method] { (this->*method)(); });
    };
    connect(cmdSendErrors, &ImageButton::activated, this, trapped("cmdSendErrors", &ErrorLogPanel::send));
    connect(cmdShowReport, &ImageButton::activated, this, trapped("cmdShowReport", &ErrorLogPanel::previewReports));
    connect(cmdClearErrors, &ImageButton::activated, this, trapped("cmdClearErrors", &ErrorLogPanel::clear));
    connect(cmdStopErrors, &ImageButton::activated, m_sender, &ErrorLogSender::stop);
    connect(cmdCloseErrors, &ImageButton::activated, this, &ErrorLogPanel::closePanel);
    connect(&m_filling, &QTimer::timeout, this, &ErrorLogPanel::fillOn);
    connect(m_sender, &ErrorLogSender::sending, this, [this](std::size_t number, std::size_t count) {
        lblErrLog->setText(u"Sending report %1 of %2..."_s.arg(number).arg(count));
    });
    connect(m_sender, &ErrorLogSender::delivered, this, &ErrorLogPanel::removePiece);
    connect(m_sender, &ErrorLogSender::finished, this, &ErrorLogPanel::concludeSending);
}

void ErrorLogPanel::view()
{
    if (!m_sender->isSending())
        m_client.reporter.trap("cmdViewErrors", [this] {
            m_note.clear();
            if (m_log.load())
                showLog();
        });
    show();
    applyState();
}

void ErrorLogPanel::showLog()
{
    txtErrLog->clear();
    m_filled = 0;
    m_filledPart = 0;
    fillOn();
}

/// Puts more of the log into the text box; a short log is there at once.
void ErrorLogPanel::fillOn()
{
    const QDeadlineTimer over(sliceTime);
    QTextCursor end(txtErrLog->document());
    end.movePosition(QTextCursor::End);
    const std::vector<std::string_view>& pieces = m_log.pieces();
    while (m_filled < pieces.size() && !over.hasExpired()) {
        // A log without order may be one huge piece. A line break is not torn apart.
        std::string_view slice = pieces[m_filled].substr(m_filledPart, sliceBytes);
        if (slice.ends_with('\r'))
            slice = pieces[m_filled].substr(m_filledPart, slice.size() + 1);
        end.insertText(m_client.codePage.toText(slice));
        m_filledPart += slice.size();
        if (m_filledPart == pieces[m_filled].size()) {
            m_filledPart = 0;
            ++m_filled;
        }
    }
    if (m_filled < pieces.size())
        m_filling.start();
    else
        m_filling.stop();
    applyState();
}

void ErrorLogPanel::send()
{
    if (!cmdSendErrors->isEnabled())
        return;
    m_sender->start();
    applyState();
    if (m_sender->isSending())
        cmdStopErrors->setFocus();
}

void ErrorLogPanel::removePiece(std::size_t piece, std::string_view text)
{
    int before = 0;
    for (std::size_t index = 0; index < piece; ++index)
        before += shownLength(m_log.pieces()[index]);
    QTextCursor cursor(txtErrLog->document());
    cursor.setPosition(before);
    cursor.setPosition(before + shownLength(text), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    --m_filled;
}

void ErrorLogPanel::concludeSending(ErrorLogSender::End end)
{
    const bool hadKeyboard = cmdStopErrors->hasFocus();
    ErrorLog::FileFate fate = ErrorLog::FileFate::Stays;
    m_client.reporter.trap("cmdSendErrors", [&] {
        const bool hadTwins = m_log.takeTwins();
        fate = m_log.settleFile();
        if (hadTwins || fate == ErrorLog::FileFate::HoldsNewOnly)
            showLog();
    });
    const auto delivered = static_cast<std::size_t>(m_sender->deliveredCount());
    QString text = delivered == 0 ? u"No report was delivered."_s : reportCount(delivered) + u" delivered."_s;
    if (end == ErrorLogSender::End::NoAnswer)
        text += u" The error-report page does not answer."_s;
    if (fate == ErrorLog::FileFate::Deleted)
        text += u" The log was deleted."_s;
    else if (fate == ErrorLog::FileFate::HoldsNewOnly)
        text += u" What is shown now was logged meanwhile."_s;
    else if (std::any_of(m_log.pieces().begin(), m_log.pieces().end(), isReportable))
        text += u" What is left stays in the log and can be sent again."_s;
    else if (!m_log.isBlank())
        text += u" What is left belongs to no entry and stays in the log."_s;
    m_note = text;
    applyState();
    if (hadKeyboard)
        (cmdSendErrors->isEnabled() ? static_cast<QWidget*>(cmdSendErrors) : cmdCloseErrors)->setFocus();
}

void ErrorLogPanel::previewReports()
{
    std::vector<std::string> reports;
    std::size_t silent = 0;
    for (const std::string_view piece : m_log.pieces()) {
        if (isReportable(piece))
            reports.emplace_back(piece);
        else if (!isBlank(piece))
            ++silent;
    }
    auto* preview = new ErrorReportPreview({.pieces = std::move(reports),
                                            .leftOut = silent,
                                            .identity = m_client.store.GetUIDStr(),
                                            .page = m_pageAddress},
                                           m_client.codePage, window());
    preview->show();
}

void ErrorLogPanel::clear()
{
    if (m_sender->isSending())
        return;
    m_log.clear();
    m_note = u"The log was cleared."_s;
    showLog();
    cmdCloseErrors->setFocus();
}

void ErrorLogPanel::closePanel()
{
    m_sender->stop();
    hide();
    Q_EMIT closed();
}

void ErrorLogPanel::applyState()
{
    const bool isSending = m_sender->isSending();
    const bool isFilling = m_filling.isActive();
    const bool hasText = !isFilling && !m_log.isBlank();
    cmdSendErrors->setEnabled(hasText && !isSending);
    cmdShowReport->setEnabled(hasText && !isSending);
    cmdClearErrors->setEnabled(!isFilling);
    cmdClearErrors->setVisible(!isSending);
    cmdStopErrors->setVisible(isSending);
    if (!isSending)
        lblErrLog->setText(isFilling ? u"Reading the log..."_s : m_note);
}
