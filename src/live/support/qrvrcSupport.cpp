#include "live/support/qrvrcSupport.h"

#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "live/support/FilterFrame.h"
#include "live/support/SearchFrame.h"
#include "live/support/SideRows.h"
#include "live/support/SupportDesk.h"
#include "live/support/TalkFile.h"
#include "platform/system/CodePage.h"
#include "ui/ImageButton.h"
#include "ui/QuietComboBox.h"
#include "ui/WindowRegistry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QSize usualSize(780, 540);
constexpr QMargins pageMargins(10, 6, 10, 4);
constexpr int columnGap = 10;
constexpr int frameGap = 8;
constexpr int messagesWidth = 320; // at least
constexpr QMargins messagesInsets(9, 6, 9, 9);
constexpr int messagesGap = 8;
constexpr int newMessageHeight = 66;
constexpr int statusHeight = 24;
constexpr int statusGap = 6;

constexpr qsizetype maxCaptionStatus = 120; // characters

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
      m_desk(desk),
      m_file(new TalkFile(client, desk, this))
{
    setObjectName(u"qrvrcSupport"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    buildMenu();
    buildMessages();
    buildOptions();
    fmeFilter = new FilterFrame(client.pictures, this);
    fmeSearch = new SearchFrame(client.pictures, this);
    buildStatusLine();
    layOut();
    wireSignals();
    resize(usualSize);
    showTalk();
    txtNewMessage->setFocus();
    showHostStatus();
    showLink();
}

void qrvrcSupport::buildMenu()
{
    mnuBar = new QMenuBar(this);
    mnuBar->setNativeMenuBar(false);
    QMenu* menu = mnuBar->addMenu(u"&Options"_s);
    menu->setObjectName(u"mnuOptions"_s);
    menu->menuAction()->setObjectName(u"mnuOptions"_s);
    const auto add = [menu](const QString& name, const QString& caption, const QKeySequence& keys) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        action->setShortcut(keys);
        return action;
    };
    connect(add(u"mnuSave"_s, u"&Save"_s, QKeySequence::Save), &QAction::triggered, m_file, &TalkFile::save);
    connect(add(u"mnuSaveAs"_s, u"Save &As"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_S), &QAction::triggered, m_file,
            &TalkFile::saveAs);
    menu->addSeparator()->setObjectName(u"mnuSep"_s);
    connect(add(u"mnuClose"_s, u"&Close"_s, QKeySequence::Close), &QAction::triggered, this, &QWidget::close);
}

void qrvrcSupport::buildMessages()
{
    fmeSupport = new QGroupBox(u"Messages"_s, this);
    fmeSupport->setObjectName(u"fmeSupport"_s);
    txtMessages = new ConversationView(m_desk, m_client.codePage, fmeSupport);
    txtNewMessage = new QPlainTextEdit(fmeSupport);
    txtNewMessage->setObjectName(u"txtNewMessage"_s);
    txtNewMessage->setAccessibleName(u"New message"_s);
    txtNewMessage->setPlaceholderText(u"Enter sends, Ctrl+Enter begins a new line"_s);
    txtNewMessage->setTabChangesFocus(true);
    txtNewMessage->installEventFilter(this);
    cmdSend = new ImageButton(u"cmdSend"_s, u"Send"_s, m_client.pictures, fmeSupport);
}

void qrvrcSupport::buildOptions()
{
    fmeOptions = new QGroupBox(u"Options"_s, this);
    fmeOptions->setObjectName(u"fmeOptions"_s);
    cboStatus = new QuietComboBox(fmeOptions);
    cboStatus->setObjectName(u"cboStatus"_s);
    cboStatus->setAccessibleName(u"Status"_s);
    cboStatus->addItems({u"Active"_s, u"Busy"_s, u"Away"_s, u"Be Right Back"_s, u"Out for Lunch!"_s});
    cboStatus->setCurrentText(m_desk.status);
}

void qrvrcSupport::buildStatusLine()
{
    lblLink = new QLabel(this);
    lblLink->setObjectName(u"lblLink"_s);
    lblShown = new QLabel(this);
    lblShown->setObjectName(u"lblShown"_s);
    for (QLabel* label : {lblLink, lblShown})
        label->setTextFormat(Qt::PlainText);
    cmdReconnect = new QToolButton(this);
    cmdReconnect->setObjectName(u"cmdReconnect"_s);
    cmdReconnect->setText(u"Connect"_s);
    cmdReconnect->setFocusPolicy(Qt::TabFocus);
}

/// The messages take what is left by the frames beside them.
void qrvrcSupport::layOut()
{
    layOutMessages();
    side::add(side::columnIn(fmeOptions), u"Label1"_s, u"Status"_s, cboStatus);
    auto* frames = new QVBoxLayout;
    frames->setSpacing(frameGap);
    for (QGroupBox* frame : std::initializer_list<QGroupBox*>{fmeOptions, fmeFilter, fmeSearch})
        frames->addWidget(frame);
    frames->addStretch();
    auto* columns = new QHBoxLayout;
    columns->setSpacing(columnGap);
    columns->addWidget(fmeSupport, 1);
    columns->addLayout(frames);
    auto* page = new QVBoxLayout(this);
    page->setMenuBar(mnuBar);
    page->setContentsMargins(pageMargins);
    page->setSpacing(pageMargins.bottom());
    page->addLayout(columns, 1);
    page->addLayout(statusLine());
}

void qrvrcSupport::layOutMessages()
{
    fmeSupport->setMinimumWidth(messagesWidth);
    txtNewMessage->setFixedHeight(newMessageHeight);
    cmdSend->face()->setFixedSize(side::buttonSize);
    auto* typing = new QHBoxLayout;
    typing->setSpacing(messagesGap);
    typing->addWidget(txtNewMessage);
    typing->addWidget(cmdSend->face());
    auto* messages = new QVBoxLayout(fmeSupport);
    messages->setContentsMargins(messagesInsets);
    messages->setSpacing(messagesGap);
    messages->addWidget(txtMessages, 1);
    messages->addLayout(typing);
}

QLayout* qrvrcSupport::statusLine()
{
    auto* line = new QHBoxLayout;
    line->setSpacing(statusGap);
    lblLink->setMinimumHeight(statusHeight); // with the button or without
    line->addWidget(lblLink);
    line->addWidget(cmdReconnect);
    line->addStretch();
    line->addWidget(lblShown);
    return line;
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
    connect(fmeFilter, &FilterFrame::filterWanted, this,
            m_client.reporter.trapped("cmdFilter", [this] { applyFilter(); }));
    connect(fmeSearch, &SearchFrame::searchWanted, this, &qrvrcSupport::search);
    connect(cmdReconnect, &QToolButton::clicked, &m_desk, &SupportDesk::open);
    using Search = ConversationView::Search;
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, fmeSearch, &SearchFrame::takeKeyboard);
    connect(new QShortcut(Qt::Key_F3, this), &QShortcut::activated, this, [this] { search(Search::Next); });
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F3, this), &QShortcut::activated, this,
            [this] { search(Search::Previous); });

    connect(&m_desk, &SupportDesk::talkChanged, this, &qrvrcSupport::showTalk);
    connect(&m_desk, &SupportDesk::entriesAdded, txtMessages, &ConversationView::addEntries);
    connect(&m_desk, &SupportDesk::entriesAdded, this, &qrvrcSupport::showCount);
    connect(&m_desk, &SupportDesk::entryReplaced, txtMessages, &ConversationView::replaceEntry);
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
    fmeFilter->clear();
    fmeSearch->clear();
    showAll();
}

void qrvrcSupport::showAll()
{
    txtMessages->showAll();
    showCount();
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
    QStringList notes;
    if (talk.isFiltered())
        notes += u"Filter on: %1 of %2 messages"_s.arg(talk.shownCount()).arg(talk.size());
    if (talk.first() > 0)
        notes += u"The oldest %1 are gone"_s.arg(talk.first());
    lblShown->setText(notes.join(u" - "_s));
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
    const QString text = fmeFilter->text();
    if (const QString foreign = m_client.codePage.firstForeign(text); !foreign.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"The character '%1' cannot be part of a message!"_s.arg(foreign));
        return;
    }
    if (conversation().filter(fmeFilter->speaker(), m_client.codePage.toBytes(text), m_desk.user()))
        showAll();
}

void qrvrcSupport::search(ConversationView::Search search)
{
    txtMessages->find(search, fmeSearch->text());
}
