#include "live/qrvrcSupport.h"

#include "base/Text.h"
#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "live/SupportDesk.h"
#include "platform/CodePage.h"
#include "platform/PathText.h"
#include "store/AppFolder.h"
#include "store/FileBytes.h"
#include "ui/ImageButton.h"
#include "ui/WindowRegistry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QShortcut>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(780, 540); // pixels
constexpr qsizetype maxCaptionStatus = 120;
constexpr std::string_view saveFolder = "\\SupportSaves";

/// Whether the user is typing into another window of the program.
bool typesElsewhere(const QWidget& window)
{
    const QWidget* focused = QApplication::focusWidget();
    return focused && focused->window() != &window && focused->testAttribute(Qt::WA_InputMethodEnabled);
}

} // namespace

qrvrcSupport::qrvrcSupport(Client& client, SupportDesk& desk, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_client(client),
      m_desk(desk)
{
    setObjectName(u"qrvrcSupport"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    buildMenu();
    buildMessages();
    buildOptions();
    buildFilter();
    buildSearch();
    buildStatusLine();
    wireSignals();
    resize(usualSize);
    placeControls();
    txtNewMessage->setPlainText(m_desk.draft);
    txtNewMessage->moveCursor(QTextCursor::End);
    txtNewMessage->setFocus();
    showAll();
    showHostStatus();
    showLink();
}

void qrvrcSupport::wireSignals()
{
    connect(cmdSend, &ImageButton::activated, this, &qrvrcSupport::sendMessage);
    connect(cboStatus, &QComboBox::activated, this, [this] {
        m_desk.status = cboStatus->currentText();
        m_desk.announce();
    });
    const auto filter = m_client.reporter.trapped("cmdFilter", [this] { applyFilter(); });
    connect(cmdFilter, &ImageButton::activated, this, filter);
    connect(txtFilter, &QLineEdit::returnPressed, this, filter);
    connect(cmdSearch, &ImageButton::activated, this, &qrvrcSupport::search);
    connect(txtSearch, &QLineEdit::returnPressed, this, &qrvrcSupport::search);
    connect(cmdNext, &ImageButton::activated, this, &qrvrcSupport::searchNext);
    connect(cmdPrevious, &ImageButton::activated, this, &qrvrcSupport::searchPrevious);
    connect(cmdReconnect, &QToolButton::clicked, &m_desk, &SupportDesk::open);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, txtSearch, qOverload<>(&QWidget::setFocus));
    connect(new QShortcut(Qt::Key_F3, this), &QShortcut::activated, this, &qrvrcSupport::searchNext);
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F3, this), &QShortcut::activated, this, &qrvrcSupport::searchPrevious);

    connect(&m_desk, &SupportDesk::entriesAdded, this, &qrvrcSupport::addEntries);
    connect(&m_desk, &SupportDesk::entryReplaced, this, &qrvrcSupport::replaceEntry);
    connect(&m_desk, &SupportDesk::hostStatusChanged, this, &qrvrcSupport::showHostStatus);
    connect(&m_desk, &SupportDesk::linkChanged, this, &qrvrcSupport::showLink);
    connect(&m_desk, &SupportDesk::hostSpoke, this, &qrvrcSupport::comeForward);
}

bool qrvrcSupport::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == txtNewMessage && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (key->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier))
                txtNewMessage->insertPlainText(u"\n"_s);
            else if (!key->isAutoRepeat())
                sendMessage();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void qrvrcSupport::closeEvent(QCloseEvent* event)
{
    m_desk.draft = txtNewMessage->toPlainText();
    m_desk.conversation().filter(Conversation::Speaker::All, {}, {}); // the next window shows no filter text
    event->accept();
    m_client.windows.unload(objectName());
}

void qrvrcSupport::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeControls();
}

void qrvrcSupport::showAll()
{
    txtMessages->setPlainText(m_client.codePage.toText(m_desk.conversation().shownText()));
    txtMessages->moveCursor(QTextCursor::Start);
    showCount();
}

void qrvrcSupport::addEntries(Conversation::Number first)
{
    std::string text;
    for (Conversation::Number number = m_desk.conversation().size(); number-- > first;)
        text += m_desk.conversation().entry(number);
    insertText(0, 0, m_client.codePage.toText(text));
    showCount();
}

void qrvrcSupport::replaceEntry(Conversation::Number number, TextSpan span)
{
    insertText(static_cast<int>(span.start), static_cast<int>(span.length),
               m_client.codePage.toText(m_desk.conversation().entry(number)));
}

/// Puts `text` in the place of `length` characters. What the user reads and has selected stays where it is, unless he
/// reads the newest entry.
void qrvrcSupport::insertText(int at, int length, const QString& text)
{
    QScrollBar* bar = txtMessages->verticalScrollBar();
    const int read = bar->value();
    const int before = bar->maximum();
    QTextCursor cursor(txtMessages->document());
    cursor.setPosition(at);
    cursor.setPosition(at + length, QTextCursor::KeepAnchor);
    cursor.insertText(text);
    bar->setValue(read == 0 ? 0 : read + bar->maximum() - before);
}

void qrvrcSupport::showHostStatus()
{
    QString caption = u"Support Console"_s;
    if (!m_desk.hostStatus().isEmpty()) {
        // A caption is one line, in which "[*]" has a meaning of its own.
        QString status = m_desk.hostStatus().simplified().left(maxCaptionStatus);
        caption += u" - Host Status: "_s + status.replace("[*]"_L1, "[*][*]"_L1);
    }
    setWindowTitle(caption);
}

void qrvrcSupport::showLink()
{
    lblLink->setText(m_desk.linkText());
    cmdReconnect->setVisible(m_desk.isClosed());
    showCount(); // what could not be sent may be sent now
}

void qrvrcSupport::showCount()
{
    const Conversation& conversation = m_desk.conversation();
    lblShown->setText(conversation.isFiltered()
                          ? u"Filter on: %1 of %2 messages"_s.arg(conversation.shownCount()).arg(conversation.size())
                          : QString());
    txtMessages->setPlaceholderText(conversation.isFiltered() ? u"No message matches the filter."_s
                                                              : u"Nothing has been said yet."_s);
}

void qrvrcSupport::comeForward()
{
    if (!isVisible() || windowState() & (Qt::WindowMinimized | Qt::WindowMaximized)) {
        if (isVisible())
            QApplication::alert(this);
        return;
    }
    show();
    raise();
    // Whatever is being typed into another window must not end up in the chat.
    if (typesElsewhere(*this))
        QApplication::alert(this);
    else
        activateWindow();
}

void qrvrcSupport::sendMessage()
{
    const QString text = txtNewMessage->toPlainText();
    if (const QString foreign = m_client.codePage.firstForeign(text); !foreign.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"The character '%1' cannot be sent to the host!"_s.arg(foreign));
        return;
    }
    if (m_desk.send(replaced(m_client.codePage.toBytes(text), "\n", "\r\n")))
        txtNewMessage->clear();
    else if (!m_desk.isConnected())
        lblShown->setText(u"Not sent, because the link is not connected."_s);
    txtNewMessage->setFocus();
}

void qrvrcSupport::applyFilter()
{
    if (const QString foreign = m_client.codePage.firstForeign(txtFilter->text()); !foreign.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"The character '%1' cannot be part of a message!"_s.arg(foreign));
        return;
    }
    auto who = Conversation::Speaker::User;
    if (Option1[2]->isChecked())
        who = Conversation::Speaker::All;
    else if (Option1[0]->isChecked())
        who = Conversation::Speaker::Host;
    if (m_desk.conversation().filter(who, m_client.codePage.toBytes(txtFilter->text()), m_desk.user()))
        showAll();
}

std::string qrvrcSupport::wanted() const
{
    const QString text = txtSearch->text();
    return m_client.codePage.firstForeign(text).isEmpty() ? m_client.codePage.toBytes(text) : std::string();
}

TextSpan qrvrcSupport::selection() const
{
    const QTextCursor cursor = txtMessages->textCursor();
    return {static_cast<std::size_t>(cursor.selectionStart()),
            static_cast<std::size_t>(cursor.selectionEnd() - cursor.selectionStart())};
}

void qrvrcSupport::search()
{
    showFound(findFirst(m_desk.conversation().shownText(), wanted()));
}

void qrvrcSupport::searchNext()
{
    showFound(findNext(m_desk.conversation().shownText(), wanted(), selection()));
}

void qrvrcSupport::searchPrevious()
{
    showFound(findPrevious(m_desk.conversation().shownText(), wanted(), selection()));
}

void qrvrcSupport::showFound(std::optional<std::size_t> position)
{
    if (!position)
        return;
    QTextCursor cursor = txtMessages->textCursor();
    cursor.setPosition(static_cast<int>(*position - 1));
    cursor.setPosition(static_cast<int>(*position - 1) + static_cast<int>(txtSearch->text().size()),
                       QTextCursor::KeepAnchor);
    txtMessages->setTextCursor(cursor);
    txtMessages->setFocus();
}

void qrvrcSupport::save()
{
    if (!m_saveFile.empty() && std::filesystem::exists(m_saveFile))
        m_client.reporter.trap("mnuSave_Click", [this] { saveTo(m_saveFile); });
    else
        chooseFile(u"Save"_s);
}

void qrvrcSupport::chooseFile(const QString& title)
{
    m_client.reporter.trap("mnuSaveAs_Click", [&] {
        m_client.folder.makeFolder(saveFolder);
        auto* dialog = new QFileDialog(this, title, textOf(m_client.folder.path(saveFolder)));
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setNameFilters({u"Text Documents (*.txt)"_s});
        dialog->setDefaultSuffix(u"txt"_s);
        connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
            m_client.reporter.trap("mnuSaveAs_Click", [&] { saveTo(pathOf(file)); });
        });
        dialog->open();
    });
}

void qrvrcSupport::saveTo(const std::filesystem::path& file)
{
    writeBytes(file, replaced(m_desk.conversation().shownText(), "\n", "\r\n") + "\r\n");
    m_saveFile = file;
    m_client.reporter.ReportMsg(MessageKind::Success,
                                u"File: %1\r\n\r\nSaved Successfully"_s.arg(QDir::toNativeSeparators(textOf(file))));
}
