#include "profiles/qrvrcNotePad.h"

#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "platform/CodePage.h"
#include "platform/PathText.h"
#include "store/FileBytes.h"

#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(720, 480);

} // namespace

qrvrcNotePad::qrvrcNotePad(Client& client, QWidget* parent) : QWidget(parent, Qt::Window), m_client(client)
{
    setObjectName(u"qrvrcNotePad"_s);
    setWindowTitle(u"Text Viewer"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    resize(usualSize);
    buildControls();
    buildMenus();
}

void qrvrcNotePad::buildControls()
{
    Text1 = new QPlainTextEdit;
    Text1->setObjectName(u"Text1"_s);
    Text1->setAccessibleName(u"Text"_s);
    Text1->setReadOnly(true);
    Text1->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    Text1->setUndoRedoEnabled(false);
    Text1->setLineWrapMode(QPlainTextEdit::NoWrap);
    Text1->setTabChangesFocus(true);
    Text1->setFrameShape(QFrame::NoFrame);
    Text1->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    // What was found stays visible while the search field has the keyboard.
    QPalette colours = Text1->palette();
    colours.setColor(QPalette::Inactive, QPalette::Highlight, colours.color(QPalette::Active, QPalette::Highlight));
    colours.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     colours.color(QPalette::Active, QPalette::HighlightedText));
    Text1->setPalette(colours);

    fmeFind = new QFrame;
    fmeFind->setObjectName(u"fmeFind"_s);
    auto* bar = new QHBoxLayout(fmeFind);
    bar->setContentsMargins(8, 4, 8, 4);
    txtFind = new QLineEdit;
    txtFind->setObjectName(u"txtFind"_s);
    txtFind->setAccessibleName(u"Find"_s);
    txtFind->setMaximumWidth(280);
    lblFound = new QLabel;
    lblFound->setObjectName(u"lblFound"_s);
    bar->addWidget(new QLabel(u"Find:"_s));
    bar->addWidget(txtFind);
    const auto addButton = [&](const QString& name, const QString& caption, auto clicked) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setText(caption);
        connect(button, &QToolButton::clicked, this, clicked);
        bar->addWidget(button);
    };
    addButton(u"cmdFindNext"_s, u"Next"_s, [this] { find(false); });
    addButton(u"cmdFindPrevious"_s, u"Previous"_s, [this] { find(true); });
    bar->addWidget(lblFound, 1);
    connect(txtFind, &QLineEdit::returnPressed, this, [this] { find(false); });
    connect(txtFind, &QLineEdit::textEdited, lblFound, &QLabel::clear);
    fmeFind->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Text1, 1);
    layout->addWidget(fmeFind);
}

void qrvrcNotePad::buildMenus()
{
    mnuBar = new QMenuBar(this);
    mnuBar->setNativeMenuBar(false);
    layout()->setMenuBar(mnuBar);
    const auto add = [this](QMenu* menu, const QString& name, const QString& caption, const QKeySequence& keys,
                            auto triggered) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, triggered);
    };
    QMenu* file = mnuBar->addMenu(u"&File"_s);
    add(file, u"mnuSaveAs"_s, u"&Save As..."_s, Qt::CTRL | Qt::Key_S, [this] { chooseFile(); });
    add(file, u"mnuClose"_s, u"&Close"_s, QKeySequence::Close, [this] { close(); });
    QMenu* edit = mnuBar->addMenu(u"&Edit"_s);
    // The field and the text know Ctrl+C and Ctrl+A themselves, each for what is in it.
    add(edit, u"mnuCopy"_s, u"&Copy"_s, {}, [this] { Text1->copy(); });
    add(edit, u"mnuSelectAll"_s, u"Select &All"_s, {}, [this] { Text1->selectAll(); });
    edit->addSeparator();
    add(edit, u"mnuFind"_s, u"&Find..."_s, QKeySequence::Find, [this] { openFindBar(); });
    add(edit, u"mnuFindNext"_s, u"Find &Next"_s, Qt::Key_F3, [this] { find(false); });
    add(edit, u"mnuFindPrevious"_s, u"Find &Previous"_s, Qt::SHIFT | Qt::Key_F3, [this] { find(true); });
}

void qrvrcNotePad::setText(const QString& text)
{
    m_text = text;
    Text1->setPlainText(text);
    lblFound->clear();
}

void qrvrcNotePad::showText(const QString& caption, const QString& text)
{
    setWindowTitle(caption);
    setText(text);
    Text1->setFocus();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void qrvrcNotePad::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape)
        QWidget::keyPressEvent(event);
    else if (fmeFind->isVisible())
        closeFindBar();
    else
        close();
}

void qrvrcNotePad::openFindBar()
{
    const QString selected = Text1->textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        txtFind->setText(selected);
    fmeFind->show();
    txtFind->selectAll();
    txtFind->setFocus();
}

void qrvrcNotePad::closeFindBar()
{
    fmeFind->hide();
    lblFound->clear();
    Text1->setFocus();
}

void qrvrcNotePad::find(bool backward)
{
    const QString wanted = txtFind->text();
    if (wanted.isEmpty()) {
        openFindBar();
        return;
    }
    const QTextDocument::FindFlags flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    lblFound->clear();
    if (Text1->find(wanted, flags))
        return;
    const QTextCursor before = Text1->textCursor();
    Text1->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    if (Text1->find(wanted, flags)) {
        lblFound->setText(backward ? u"Continued from the end."_s : u"Continued from the beginning."_s);
    } else {
        Text1->setTextCursor(before);
        lblFound->setText(u"Not found."_s);
        fmeFind->show();
    }
}

void qrvrcNotePad::chooseFile()
{
    auto* dialog = new QFileDialog(this, u"Save As"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({u"Text files (*.txt)"_s, u"All files (*)"_s});
    dialog->setDefaultSuffix(u"txt"_s);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& file) { m_client.reporter.trap("mnuSaveAs_Click", [&] { save(pathOf(file)); }); });
    dialog->open();
}

void qrvrcNotePad::save(const std::filesystem::path& file)
{
    // The text came through the code page, so this gives back the very bytes that it was made from.
    writeBytes(file, m_client.codePage.toBytes(m_text));
}
