#include "profiles/viewer/qrvrcNotePad.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/Background.h"
#include "platform/system/CodePage.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "profiles/viewer/FindBar.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextExpander.h"
#include "profiles/viewer/TextPane.h"
#include "store/AppFolder.h"
#include "ui/GridDelegate.h"

#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(720, 480);
const QString usualTitle = u"Text Viewer"_s;

} // namespace

qrvrcNotePad::qrvrcNotePad(Client& client, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_client(client),
      m_expander(new TextExpander(this))
{
    setObjectName(u"qrvrcNotePad"_s);
    setWindowTitle(usualTitle);
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

    fmeFind = new FindBar(*Text1, m_client.codePage);
    connect(m_expander, &TextExpander::started, this, &qrvrcNotePad::announce);
    connect(m_expander, &TextExpander::ready, this, [this](std::shared_ptr<const LinedText> text) {
        setWindowTitle(usualTitle);
        nameFile(m_awaited);
        present(std::move(text));
    });
    connect(m_expander, &TextExpander::failed, this, [this](const RuntimeError& error) {
        Text1->setMessage({});
        m_client.reporter.ReportMsg(MessageKind::Trapped, u"HandleData"_s, &error, error.line());
    });

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
    add(edit, u"mnuFind"_s, u"&Find..."_s, QKeySequence::Find, [this] { fmeFind->open(); });
    add(edit, u"mnuFindNext"_s, u"Find &Next"_s, Qt::Key_F3, [this] { fmeFind->find(TextFinder::Way::Forward); });
    add(edit, u"mnuFindPrevious"_s, u"Find &Previous"_s, Qt::SHIFT | Qt::Key_F3,
        [this] { fmeFind->find(TextFinder::Way::Backward); });
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
    fmeFind->reset();
    setWindowTitle(usualTitle);
    nameFile({});
    Text1->clear();
    QWidget::closeEvent(event);
}

void qrvrcNotePad::announce()
{
    fmeFind->reset();
    Text1->setMessage(u"Expanding %1..."_s.arg(m_awaited));
    bringToFront();
}

void qrvrcNotePad::present(std::shared_ptr<const LinedText> text)
{
    fmeFind->reset();
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
        fmeFind->leave();
    else
        close();
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
    // The text of the click: another one may be shown by then, or none.
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, text = Text1->text()](const QString& file) { save(pathOf(file), text); });
    dialog->open();
}

void qrvrcNotePad::save(const std::filesystem::path& file, std::shared_ptr<const LinedText> text)
{
    mnuSaveAs->setEnabled(false); // one at a time
    m_saving.setFuture(inBackground([file, text = std::move(text)] { writeBytes(file, text->bytes()); }));
}
