#include "profiles/viewer/qrvrcNotePad.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/Background.h"
#include "platform/system/CodePage.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextExpander.h"
#include "profiles/viewer/TextFinder.h"
#include "profiles/viewer/TextPane.h"
#include "store/AppFolder.h"
#include "ui/GridDelegate.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(720, 480);
constexpr int maxWanted = 256; // characters that can be looked for
const QString notFound = u"Not found."_s;

} // namespace

qrvrcNotePad::qrvrcNotePad(Client& client, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_client(client),
      m_finder(new TextFinder(client.codePage, this)),
      m_expander(new TextExpander(this))
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
    Text1 = new TextPane(m_client.codePage);
    Text1->setObjectName(u"Text1"_s);
    Text1->setAccessibleName(u"Text"_s);
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
    txtFind->setMaxLength(maxWanted);
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
    connect(txtFind, &QLineEdit::textEdited, this, [this] {
        m_finder->stop();
        lblFound->clear();
    });
    connect(m_expander, &TextExpander::started, this, &qrvrcNotePad::announce);
    connect(m_expander, &TextExpander::ready, this, [this](std::shared_ptr<const LinedText> text) {
        setWindowTitle(u"Text Viewer"_s);
        nameFile(m_awaited);
        present(std::move(text));
    });
    connect(m_expander, &TextExpander::failed, this, [this](const RuntimeError& error) {
        Text1->setMessage({});
        m_client.reporter.ReportMsg(MessageKind::Trapped, u"HandleData"_s, &error, error.line());
    });
    connect(m_finder, &TextFinder::found, this, &qrvrcNotePad::showFound);
    connect(m_finder, &TextFinder::notFound, this, [this] {
        fmeFind->show();
        lblFound->setText(notFound);
    });
    fmeFind->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Text1, 1);
    layout->addWidget(fmeFind);
}

void qrvrcNotePad::buildMenus()
{
    connect(&m_saving, &QFutureWatcherBase::finished, this, [this] {
        mnuSaveAs->setEnabled(true);
        m_client.reporter.trap("mnuSaveAs_Click", [this] { m_saving.waitForFinished(); }); // where its error comes out
    });
    mnuBar = new QMenuBar(this);
    mnuBar->setNativeMenuBar(false);
    layout()->setMenuBar(mnuBar);
    const auto add = [this](QMenu* menu, const QString& name, const QString& caption, const QKeySequence& keys,
                            auto triggered) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, triggered);
        return action;
    };
    lblFile = new QLabel(mnuBar);
    lblFile->setObjectName(u"lblFile"_s);
    lblFile->setTextFormat(Qt::PlainText);
    lblFile->setContentsMargins(0, 0, 8, 0);
    QMenu* file = mnuBar->addMenu(u"&File"_s);
    mnuSaveAs = add(file, u"mnuSaveAs"_s, u"&Save As..."_s, Qt::CTRL | Qt::Key_S, [this] { chooseFile(); });
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

void qrvrcNotePad::showText(const QString& caption, const QString& text)
{
    dropAwaited();
    setWindowTitle(caption);
    nameFile({});
    present(std::make_shared<const LinedText>(m_client.codePage.toBytes(text)));
}

void qrvrcNotePad::showFile(const QString& file, const PackedReply& packed, const ReplyOwner& owner)
{
    dropAwaited();
    m_awaited = file;
    m_expander->expand(packed, owner);
}

void qrvrcNotePad::dropAwaited()
{
    m_expander->stop();
    Text1->setMessage({});
}

void qrvrcNotePad::closeEvent(QCloseEvent* event)
{
    dropAwaited();
    m_finder->stop();
    QWidget::closeEvent(event);
}

void qrvrcNotePad::announce()
{
    m_finder->stop();
    lblFound->clear();
    Text1->setMessage(u"Expanding %1..."_s.arg(m_awaited));
    bringToFront();
}

void qrvrcNotePad::present(std::shared_ptr<const LinedText> text)
{
    m_finder->stop();
    lblFound->clear();
    Text1->setText(std::move(text));
    bringToFront();
}

void qrvrcNotePad::bringToFront()
{
    Text1->setFocus();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void qrvrcNotePad::nameFile(const QString& file)
{
    m_file = file;
    const int room = width() / 2; // the menus have the other half
    lblFile->setText(lblFile->fontMetrics().elidedText(singleLine(file), Qt::ElideMiddle, room));
    mnuBar->setCornerWidget(lblFile); // which makes room for the new text
    lblFile->setVisible(!file.isEmpty());
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
    const std::size_t length = Text1->selectionEnd() - Text1->selectionBegin();
    const QString selected = length <= maxWanted ? Text1->selectedText() : QString();
    if (!selected.isEmpty() && !selected.contains(u'\n') && !selected.contains(u'\r'))
        txtFind->setText(selected);
    fmeFind->show();
    txtFind->selectAll();
    txtFind->setFocus();
}

void qrvrcNotePad::closeFindBar()
{
    m_finder->stop();
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
    m_searchesBackward = backward;
    lblFound->clear();
    if (!m_client.codePage.firstForeign(wanted).isEmpty()) {
        fmeFind->show();
        lblFound->setText(notFound);
        return;
    }
    m_finder->start(Text1->text(), m_client.codePage.toBytes(wanted),
                    backward ? Text1->selectionBegin() : Text1->selectionEnd(),
                    backward ? TextFinder::Way::Backward : TextFinder::Way::Forward);
    if (m_finder->isSearching()) {
        fmeFind->show();
        lblFound->setText(u"Searching..."_s);
    }
}

void qrvrcNotePad::showFound(std::size_t at, std::size_t size, bool wrapped)
{
    Text1->select(at, at + size);
    if (wrapped)
        lblFound->setText(m_searchesBackward ? u"Continued from the end."_s : u"Continued from the beginning."_s);
    else
        lblFound->clear();
}

void qrvrcNotePad::chooseFile()
{
    auto* dialog = new QFileDialog(this, u"Save As"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({u"Text files (*.txt)"_s, u"All files (*)"_s});
    dialog->setDefaultSuffix(u"txt"_s);
    if (isPlainFileName(m_client.codePage.toBytes(m_file)))
        dialog->selectFile(m_file);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { save(pathOf(file)); });
    dialog->open();
}

void qrvrcNotePad::save(const std::filesystem::path& file)
{
    mnuSaveAs->setEnabled(false); // one at a time
    m_saving.setFuture(inBackground([file, text = Text1->text()] { writeBytes(file, text->bytes()); }));
}
