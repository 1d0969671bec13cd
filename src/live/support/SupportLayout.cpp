// How the support console is built and laid out.

#include "client/Client.h"
#include "live/support/SupportDesk.h"
#include "live/support/qrvrcSupport.h"
#include "ui/ImageButton.h"

#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 10;
constexpr int sideWidth = 250;
constexpr int titleHeight = 26; // of a frame, above its controls
constexpr int inset = 12;
constexpr int rowHeight = 32;
constexpr int fieldHeight = 25;
constexpr int labelWidth = 80;
constexpr int newMessageHeight = 66;
constexpr int statusHeight = 28;
constexpr QSize buttonSize(106, 28);

constexpr int optionsHeight = titleHeight + rowHeight + 6;
constexpr int filterHeight = titleHeight + 3 * 24 + rowHeight + buttonSize.height() + 14;
constexpr int searchHeight = titleHeight + rowHeight + 2 * (buttonSize.height() + 8) + 4;
constexpr int fieldWidth = sideWidth - 2 * inset - labelWidth;

QGroupBox* frame(const QString& name, const QString& caption, QWidget* parent)
{
    auto* box = new QGroupBox(caption, parent);
    box->setObjectName(name);
    return box;
}

/// A label with a field beside it.
void addField(QGroupBox* box, const QString& labelName, const QString& caption, QWidget* field, const QString& name,
              int top)
{
    auto* label = new QLabel(caption, box);
    label->setObjectName(labelName);
    label->setGeometry(inset, top, labelWidth - 6, fieldHeight);
    label->setBuddy(field);
    field->setObjectName(name);
    field->setGeometry(inset + labelWidth, top, fieldWidth, fieldHeight);
}

void addButton(ImageButton*& button, QGroupBox* box, const QString& name, const QString& caption, Client& client,
               const QPoint& at)
{
    button = new ImageButton(name, caption, client.pictures, box);
    button->place(QRect(at, buttonSize));
}

} // namespace

void qrvrcSupport::buildMenu()
{
    mnuBar = new QMenuBar(this);
    mnuBar->setNativeMenuBar(false);
    mnuOptions = mnuBar->addMenu(u"&Options"_s);
    mnuOptions->setObjectName(u"mnuOptions"_s);
    mnuOptions->menuAction()->setObjectName(u"mnuOptions"_s);
    const auto add = [this](const QString& name, const QString& caption, const QKeySequence& keys) {
        QAction* action = mnuOptions->addAction(caption);
        action->setObjectName(name);
        action->setShortcut(keys);
        return action;
    };
    connect(add(u"mnuSave"_s, u"&Save"_s, QKeySequence::Save), &QAction::triggered, this, &qrvrcSupport::save);
    connect(add(u"mnuSaveAs"_s, u"Save &As"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_S), &QAction::triggered, this,
            [this] { chooseFile(u"Save As"_s); });
    mnuOptions->addSeparator()->setObjectName(u"mnuSep"_s);
    connect(add(u"mnuClose"_s, u"&Close"_s, QKeySequence::Close), &QAction::triggered, this, &QWidget::close);
}

void qrvrcSupport::buildMessages()
{
    fmeSupport = frame(u"fmeSupport"_s, u"Messages"_s, this);
    txtMessages = new QPlainTextEdit(fmeSupport);
    txtMessages->setObjectName(u"txtMessages"_s);
    txtMessages->setAccessibleName(u"Messages, newest first"_s);
    txtMessages->setReadOnly(true);
    txtMessages->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtMessages->setUndoRedoEnabled(false);
    txtMessages->setTabChangesFocus(true);
    // What was found stays visible while the search field has the keyboard.
    QPalette colours = txtMessages->palette();
    colours.setColor(QPalette::Inactive, QPalette::Highlight, colours.color(QPalette::Active, QPalette::Highlight));
    colours.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     colours.color(QPalette::Active, QPalette::HighlightedText));
    txtMessages->setPalette(colours);

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
    fmeOptions = frame(u"fmeOptions"_s, u"Options"_s, this);
    cboStatus = new QComboBox(fmeOptions);
    cboStatus->setAccessibleName(u"Status"_s);
    addField(fmeOptions, u"Label1"_s, u"Status"_s, cboStatus, u"cboStatus"_s, titleHeight);
    cboStatus->addItems({u"Active"_s, u"Busy"_s, u"Away"_s, u"Be Right Back"_s, u"Out for Lunch!"_s});
    cboStatus->setCurrentText(m_desk.status);
}

void qrvrcSupport::buildFilter()
{
    fmeFilter = frame(u"fmeFilter"_s, u"Filter"_s, this);
    const std::array captions{u"Host Messages"_s, u"User Messages"_s, u"All Messages"_s};
    int top = titleHeight;
    for (std::size_t index = 0; index < Option1.size(); ++index, top += 24) {
        Option1[index] = new QRadioButton(captions[index], fmeFilter);
        Option1[index]->setObjectName(u"Option1_%1"_s.arg(index));
        // No wider than its text, which is all of it that takes a click.
        Option1[index]->setGeometry(inset, top, Option1[index]->sizeHint().width(), 24);
    }
    Option1.back()->setChecked(true);
    txtFilter = new QLineEdit(fmeFilter);
    txtFilter->setAccessibleName(u"Filter, messages containing"_s);
    txtFilter->setPlaceholderText(u"empty: no filter"_s);
    addField(fmeFilter, u"Label2"_s, u"Containing"_s, txtFilter, u"txtFilter"_s, top + 4);
    addButton(cmdFilter, fmeFilter, u"cmdFilter"_s, u"Filter"_s, m_client,
              {sideWidth - inset - buttonSize.width(), top + 4 + rowHeight});
}

void qrvrcSupport::buildSearch()
{
    fmeSearch = frame(u"fmeSearch"_s, u"Search"_s, this);
    txtSearch = new QLineEdit(fmeSearch);
    txtSearch->setAccessibleName(u"Search, containing"_s);
    addField(fmeSearch, u"Label3"_s, u"Containing"_s, txtSearch, u"txtSearch"_s, titleHeight);
    const int right = sideWidth - inset - buttonSize.width();
    const int top = titleHeight + rowHeight;
    addButton(cmdSearch, fmeSearch, u"cmdSearch"_s, u"Search"_s, m_client, {right, top});
    addButton(cmdPrevious, fmeSearch, u"cmdPrevious"_s, u"Previous"_s, m_client,
              {inset, top + buttonSize.height() + 8});
    addButton(cmdNext, fmeSearch, u"cmdNext"_s, u"Next"_s, m_client, {right, top + buttonSize.height() + 8});
}

void qrvrcSupport::buildStatusLine()
{
    fmeStatus = new QFrame(this);
    auto* line = new QHBoxLayout(fmeStatus);
    line->setContentsMargins(margin, 0, margin, 4);
    lblLink = new QLabel;
    lblLink->setObjectName(u"lblLink"_s);
    lblShown = new QLabel;
    lblShown->setObjectName(u"lblShown"_s);
    for (QLabel* label : {lblLink, lblShown})
        label->setTextFormat(Qt::PlainText);
    cmdReconnect = new QToolButton;
    cmdReconnect->setObjectName(u"cmdReconnect"_s);
    cmdReconnect->setText(u"Connect"_s);
    cmdReconnect->setFocusPolicy(Qt::TabFocus);
    line->addWidget(lblLink);
    line->addWidget(cmdReconnect);
    line->addStretch();
    line->addWidget(lblShown);
}

void qrvrcSupport::placeControls()
{
    const int top = mnuBar->sizeHint().height();
    mnuBar->setGeometry(0, 0, width(), top);
    fmeStatus->setGeometry(0, height() - statusHeight, width(), statusHeight);

    const int sideLeft = width() - margin - sideWidth;
    int sideTop = top + 6;
    const auto placeSide = [&](QWidget* box, int boxHeight) {
        box->setGeometry(sideLeft, sideTop, sideWidth, boxHeight);
        sideTop += boxHeight + 8;
    };
    placeSide(fmeOptions, optionsHeight);
    placeSide(fmeFilter, filterHeight);
    placeSide(fmeSearch, searchHeight);

    fmeSupport->setGeometry(margin, top + 6, sideLeft - 2 * margin, height() - statusHeight - top - 10);
    const QRect inner(inset, titleHeight, fmeSupport->width() - 2 * inset, fmeSupport->height() - titleHeight - inset);
    const int newTop = inner.bottom() + 1 - newMessageHeight;
    txtMessages->setGeometry(inner.left(), inner.top(), inner.width(), newTop - 8 - inner.top());
    txtNewMessage->setGeometry(inner.left(), newTop, inner.width() - buttonSize.width() - 8, newMessageHeight);
    cmdSend->place(
        QRect(QPoint(inner.right() + 1 - buttonSize.width(), newTop + (newMessageHeight - buttonSize.height()) / 2),
              buttonSize));
    setMinimumSize(2 * margin + sideWidth + 330, sideTop + statusHeight + 4);
}
