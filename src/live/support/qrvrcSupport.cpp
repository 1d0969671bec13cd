#include "live/support/qrvrcSupport.h"

#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "live/support/SupportDesk.h"
#include "platform/system/CodePage.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"
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

#include <utility>

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
    showTalk();
    txtNewMessage->setFocus();
    showHostStatus();
    showLink();
}

void qrvrcSupport::wireSignals()
{
    connect(txtNewMessage, &QPlainTextEdit::textChanged, this,
            [this] { m_desk.talk()->draft = txtNewMessage->toPlainText(); });
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

    connect(&m_desk, &SupportDesk::talkChanged, this, &qrvrcSupport::showTalk);
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

void qrvrcSupport::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_desk.markSeen();
}

void qrvrcSupport::closeEvent(QCloseEvent* event)
{
    conversation().filter(Conversation::Speaker::All, {}, {}); // the next window shows no filter text
    event->accept();
    m_client.windows.unload(objectName());
}

void qrvrcSupport::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeControls();
}

Conversation& qrvrcSupport::conversation()
{
    return m_desk.talk()->conversation;
}

/// Nothing of another account's talk is left in the window, nor for Undo to bring back.
void qrvrcSupport::showTalk()
{
    const QString draft = m_desk.talk()->draft; // a copy, because it follows what the field shows
    txtNewMessage->setPlainText(draft);
    txtNewMessage->moveCursor(QTextCursor::End);
    for (QLineEdit* field : {txtFilter, txtSearch})
        field->setText({});
    showAll();
}

void qrvrcSupport::showAll()
{
    txtMessages->setPlainText(m_client.codePage.toText(conversation().shownText()));
    txtMessages->moveCursor(QTextCursor::Start);
    showCount();
}

void qrvrcSupport::addEntries(Conversation::Number first)
{
    std::string text;
    for (Conversation::Number number = conversation().size(); number-- > first;)
        text += conversation().entry(number);
    insertText(0, 0, m_client.codePage.toText(text));
    showCount();
}

void qrvrcSupport::replaceEntry(Conversation::Number number, TextSpan span)
{
    insertText(static_cast<int>(span.start), static_cast<int>(span.length),
               m_client.codePage.toText(conversation().entry(number)));
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
    const Conversation& talk = conversation();
    lblShown->setText(talk.isFiltered() ? u"Filter on: %1 of %2 messages"_s.arg(talk.shownCount()).arg(talk.size())
                                        : QString());
    txtMessages->setPlaceholderText(talk.isFiltered() ? u"No message matches the filter."_s
                                                      : u"Nothing has been said yet."_s);
}

void qrvrcSupport::comeForward()
{
    if (!isVisible() || windowState() & (Qt::WindowMinimized | Qt::WindowMaximized))
        return;
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
    if (const QString unsendable = m_client.codePage.sendFault(text); !unsendable.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed, unsendable);
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
    if (conversation().filter(who, m_client.codePage.toBytes(txtFilter->text()), m_desk.user()))
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
    showFound(findFirst(conversation().shownText(), wanted()));
}

void qrvrcSupport::searchNext()
{
    showFound(findNext(conversation().shownText(), wanted(), selection()));
}

void qrvrcSupport::searchPrevious()
{
    showFound(findPrevious(conversation().shownText(), wanted(), selection()));
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
    const std::shared_ptr<SupportTalk> talk = m_desk.talk();
    if (!talk->saveFile.empty() && std::filesystem::exists(talk->saveFile))
        m_client.reporter.trap("mnuSave_Click", [&] { saveTo(*talk, talk->saveFile); });
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
        connect(dialog, &QFileDialog::fileSelected, this, [this, talk = m_desk.talk()](const QString& file) {
            m_client.reporter.trap("mnuSaveAs_Click", [&] { saveTo(*talk, pathOf(file)); });
        });
        dialog->open();
    });
}

/// @param file  a copy, because it is remembered in `talk`
void qrvrcSupport::saveTo(SupportTalk& talk, std::filesystem::path file)
{
    writeBytes(file, replaced(talk.conversation.shownText(), "\n", "\r\n") + "\r\n");
    const QString name = QDir::toNativeSeparators(textOf(file));
    talk.saveFile = std::move(file);
    m_client.reporter.ReportMsg(MessageKind::Success, u"File: %1\r\n\r\nSaved Successfully"_s.arg(name));
}
