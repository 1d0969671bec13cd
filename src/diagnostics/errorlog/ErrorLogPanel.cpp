#include "diagnostics/errorlog/ErrorLogPanel.h"

#include "client/Client.h"
#include "diagnostics/errorlog/ErrorReportPreview.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/Background.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "store/ErrorLogText.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"

#include <QLabel>
#include <QScopeGuard>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Pixels.
constexpr QMargins frameMargins(7, 4, 7, 7);
constexpr int gap = 5;
constexpr int noteHeight = 20;
constexpr int buttonGap = 8;
constexpr int buttonWidth = 150;

constexpr std::uintmax_t maxDirectBytes = 1 << 20; // of a log that is read at once
constexpr auto refreshTime = 100ms;

const QString emptyLog = u"The error log is empty."_s;

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
    m_refresh.setInterval(refreshTime);
    m_refresh.setSingleShot(true);
    buildControls();
    layOut();
    wireSignals();
    hide();
}

void ErrorLogPanel::buildControls()
{
    txtErrLog = new TextPane(m_client.codePage, this);
    txtErrLog->setObjectName(u"txtErrLog"_s);
    txtErrLog->setAccessibleName(u"Error Log"_s);
    txtErrLog->setMessage(emptyLog);
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
    connect(&m_reading, &QFutureWatcherBase::finished, this, trapped("cmdViewErrors", &ErrorLogPanel::takeLarge));
    connect(&m_refresh, &QTimer::timeout, this, &ErrorLogPanel::showLog);
    connect(m_sender, &ErrorLogSender::sending, this, [this](std::size_t number, std::size_t count) {
        lblErrLog->setText(u"Sending report %1 of %2..."_s.arg(number).arg(count));
    });
    connect(m_sender, &ErrorLogSender::delivered, this, [this] {
        if (!m_refresh.isActive())
            m_refresh.start();
    });
    connect(m_sender, &ErrorLogSender::finished, this, &ErrorLogPanel::concludeSending);
}

void ErrorLogPanel::view()
{
    if (!m_sender->isSending() && !m_isReading)
        m_client.reporter.trap("cmdViewErrors", [this] {
            m_note.clear();
            std::error_code none;
            if (std::filesystem::file_size(m_log.file(), none) > maxDirectBytes && !none) {
                readLarge();
            } else if (Loaded loaded = load(m_log.file()); loaded.contents) {
                m_log.adopt(std::move(loaded.contents));
                showText(std::move(loaded.text));
            }
        });
    show();
    applyState();
}

ErrorLogPanel::Loaded ErrorLogPanel::load(const std::filesystem::path& file)
{
    std::shared_ptr<ErrorLog::Contents> contents = ErrorLog::read(file);
    auto text = std::make_shared<const LinedText>(contents ? contents->text : std::string());
    return {std::move(contents), std::move(text)};
}

void ErrorLogPanel::readLarge()
{
    m_isReading = true;
    txtErrLog->setMessage(u"Reading the log..."_s);
    m_reading.setFuture(inBackground([file = m_log.file()] { return load(file); }));
}

void ErrorLogPanel::takeLarge()
{
    if (!std::exchange(m_isReading, false))
        return; // the end of no log
    const auto isOver = qScopeGuard([this] {
        m_reading.setFuture({}); // it keeps a share of the log otherwise
        applyState();
    });
    txtErrLog->setMessage({});
    const Loaded loaded = m_reading.result();
    if (!loaded.contents)
        return;
    m_log.adopt(loaded.contents);
    showText(loaded.text);
}

/// Shows what is left of the log.
void ErrorLogPanel::showLog()
{
    m_refresh.stop();
    std::string left;
    for (const std::string_view piece : m_log.pieces())
        left += piece;
    showText(std::make_shared<const LinedText>(std::move(left)));
    applyState();
}

void ErrorLogPanel::showText(std::shared_ptr<const LinedText> text)
{
    txtErrLog->setMessage(text->size() == 0 ? emptyLog : QString());
    txtErrLog->setText(std::move(text));
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

void ErrorLogPanel::concludeSending(ErrorLogSender::End end)
{
    const bool hadKeyboard = cmdStopErrors->hasFocus();
    ErrorLog::FileFate fate = ErrorLog::FileFate::Stays;
    m_client.reporter.trap("cmdSendErrors", [&] {
        m_log.takeTwins();
        fate = m_log.settleFile();
    });
    showLog();
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
            reports.push_back(m_client.store.reportable(std::string(piece)));
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
    const bool hasText = !m_isReading && !m_log.isBlank();
    cmdSendErrors->setEnabled(hasText && !isSending);
    cmdShowReport->setEnabled(hasText && !isSending);
    cmdClearErrors->setEnabled(!m_isReading);
    cmdClearErrors->setVisible(!isSending);
    cmdStopErrors->setVisible(isSending);
    if (!isSending)
        lblErrLog->setText(m_isReading ? u"Reading the log..."_s : m_note);
}
