#include "diagnostics/qrvrcHelpViewer.h"

#include "base/RuntimeError.h"
#include "diagnostics/HelpBook.h"
#include "diagnostics/HelpBrowser.h"
#include "diagnostics/HelpPageTexts.h"
#include "platform/PathText.h"

#include <QDesktopServices>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int pageRole = Qt::UserRole;
constexpr QSize usualSize(940, 660);
constexpr int contentsWidth = 240;

} // namespace

qrvrcHelpViewer::qrvrcHelpViewer(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setObjectName(u"qrvrcHelpViewer"_s);
    setWindowTitle(tr("Help"));
    resize(usualSize.boundedTo(screen()->availableSize() - QSize(20, 40)));
    buildControls();
    wireSignals();
}

qrvrcHelpViewer::~qrvrcHelpViewer() = default;

void qrvrcHelpViewer::showTopic(const std::filesystem::path& file, const QString& topic)
{
    fmeExternal->hide();
    try {
        const bool isNew = openBook(file);
        goTo(bookUrl(topic.isEmpty() ? fromBook(m_book->homePage()) : topic));
        if (isNew)
            txtHelp->clearHistory(); // the pages of another book are nothing to go back to
    } catch (const RuntimeError& error) {
        m_book.reset();
        fillContents();
        const bool isMissing =
            error.number() == ErrorNumber::FileNotFound || error.number() == ErrorNumber::PathNotFound;
        showFault(isMissing ? tr("The help file is missing") : tr("The help file cannot be read"),
                  tr("%1 (%2)").arg(textOf(file), fromBook(error.description())));
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    txtHelp->setFocus();
}

void qrvrcHelpViewer::buildControls()
{
    const auto makeButton = [this](const QString& name, const QString& text, const QString& accessible,
                                   QStyle::StandardPixmap icon, const QKeySequence& shortcut) {
        auto* button = new QToolButton(this);
        button->setObjectName(name);
        button->setText(text);
        button->setIcon(style()->standardIcon(icon));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setAutoRaise(true);
        button->setAccessibleName(accessible);
        button->setShortcut(shortcut);
        button->setToolTip(u"%1 (%2)"_s.arg(accessible, shortcut.toString(QKeySequence::NativeText)));
        return button;
    };
    cmdBack = makeButton(u"cmdBack"_s, tr("Back"), tr("Back to the page before"), QStyle::SP_ArrowBack,
                         QKeySequence(Qt::ALT | Qt::Key_Left));
    cmdForward = makeButton(u"cmdForward"_s, tr("Forward"), tr("Forward to the next page"), QStyle::SP_ArrowForward,
                            QKeySequence(Qt::ALT | Qt::Key_Right));
    cmdHome = makeButton(u"cmdHome"_s, tr("Home"), tr("The first page"), QStyle::SP_DirHomeIcon,
                         QKeySequence(Qt::ALT | Qt::Key_Home));
    cmdBack->setEnabled(false);
    cmdForward->setEnabled(false);

    tvContents = new QTreeWidget;
    tvContents->setObjectName(u"tvContents"_s);
    tvContents->setAccessibleName(tr("Contents"));
    tvContents->setHeaderHidden(true);
    tvContents->setRootIsDecorated(false); // always open, so there is nothing to unfold
    tvContents->setItemsExpandable(false);
    tvContents->setStyleSheet(u"QTreeView::item { padding: 3px; }"_s);
    tvContents->setTabKeyNavigation(false);

    txtSearch = new QLineEdit(this);
    txtSearch->setObjectName(u"txtSearch"_s);
    txtSearch->setAccessibleName(tr("Search"));
    txtSearch->setPlaceholderText(tr("Search the manual"));
    txtSearch->setClearButtonEnabled(true);
    lblFound = new QLabel(this);
    lblFound->setObjectName(u"lblFound"_s);

    txtHelp = new HelpBrowser([this](const std::string& name) { return m_book ? m_book->page(name) : std::nullopt; });
    txtHelp->setObjectName(u"txtHelp"_s);
    txtHelp->setAccessibleName(tr("Help page"));

    fmeExternal = new QFrame(this);
    fmeExternal->setObjectName(u"fmeExternal"_s);
    fmeExternal->setFrameShape(QFrame::StyledPanel);
    lblExternal = new QLabel(fmeExternal);
    lblExternal->setObjectName(u"lblExternal"_s);
    lblExternal->setTextFormat(Qt::PlainText);
    lblExternal->setWordWrap(true);
    lblExternal->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    cmdOpenExternal = new QToolButton(fmeExternal);
    cmdOpenExternal->setObjectName(u"cmdOpenExternal"_s);
    cmdOpenExternal->setText(tr("Open in browser"));
    cmdOpenExternal->setAccessibleName(tr("Open the link in the web browser"));
    cmdOpenExternal->setFocusPolicy(Qt::StrongFocus);
    auto* external = new QHBoxLayout(fmeExternal);
    external->addWidget(lblExternal, 1);
    external->addWidget(cmdOpenExternal);
    fmeExternal->hide();

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdBack);
    buttons->addWidget(cmdForward);
    buttons->addWidget(cmdHome);
    buttons->addStretch();
    auto* left = new QWidget;
    auto* guide = new QVBoxLayout(left);
    guide->setContentsMargins(0, 0, 0, 0);
    guide->addWidget(txtSearch);
    guide->addWidget(lblFound);
    guide->addWidget(tvContents, 1);
    lblFound->hide();
    auto* halves = new QSplitter;
    halves->addWidget(left);
    halves->addWidget(txtHelp);
    halves->setStretchFactor(1, 1);
    halves->setSizes({contentsWidth, usualSize.width() - contentsWidth});
    halves->setChildrenCollapsible(false);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(6, 6, 6, 6);
    all->addLayout(buttons);
    all->addWidget(halves, 1);
    all->addWidget(fmeExternal);
}

void qrvrcHelpViewer::wireSignals()
{
    connect(cmdBack, &QToolButton::clicked, txtHelp, &QTextBrowser::backward);
    connect(cmdForward, &QToolButton::clicked, txtHelp, &QTextBrowser::forward);
    connect(cmdHome, &QToolButton::clicked, this, &qrvrcHelpViewer::goHome);
    connect(txtHelp, &QTextBrowser::backwardAvailable, cmdBack, &QWidget::setEnabled);
    connect(txtHelp, &QTextBrowser::forwardAvailable, cmdForward, &QWidget::setEnabled);
    connect(txtHelp, &QTextBrowser::anchorClicked, this, &qrvrcHelpViewer::followLink);
    connect(txtHelp, &QTextBrowser::sourceChanged, this, &qrvrcHelpViewer::showWhereWeAre);
    connect(tvContents, &QTreeWidget::currentItemChanged, this, &qrvrcHelpViewer::followContents);
    connect(cmdOpenExternal, &QToolButton::clicked, this, [this] {
        QDesktopServices::openUrl(QUrl(lblExternal->text(), QUrl::StrictMode));
        fmeExternal->hide();
    });
    connect(txtSearch, &QLineEdit::textChanged, this, &qrvrcHelpViewer::search);
    connect(txtSearch, &QLineEdit::returnPressed, this, &qrvrcHelpViewer::showNextFound);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        txtSearch->setFocus();
        txtSearch->selectAll();
    });
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, [this] {
        if (txtSearch->text().isEmpty())
            close();
        else
            txtSearch->clear();
    });
}

bool qrvrcHelpViewer::openBook(const std::filesystem::path& file)
{
    if (m_book && m_book->file() == file && m_book->isCurrent())
        return false;
    m_book.reset();
    m_texts.reset();
    m_book = std::make_unique<HelpBook>(file);
    txtHelp->setSource(QUrl()); // so that a page of the same name is read anew
    txtHelp->clear();
    fillContents();
    return true;
}

void qrvrcHelpViewer::fillContents()
{
    const QSignalBlocker quiet(tvContents);
    tvContents->clear();
    cmdHome->setEnabled(m_book && !m_book->homePage().empty());
    if (!m_book)
        return;
    QList<QTreeWidgetItem*> above; // the item that the next one of each depth belongs under
    for (const HelpContentsEntry& entry : m_book->contents()) {
        above.resize(std::min<qsizetype>(above.size(), entry.depth));
        QTreeWidgetItem* under = above.isEmpty() ? tvContents->invisibleRootItem() : above.last();
        auto* item = new QTreeWidgetItem(under, {fromBook(entry.title)});
        item->setData(0, pageRole, fromBook(entry.page));
        above.append(item);
    }
    tvContents->expandAll();
    search();
}

QStringList qrvrcHelpViewer::wantedWords() const
{
    return txtSearch->text().split(u' ', Qt::SkipEmptyParts);
}

void qrvrcHelpViewer::search()
{
    const QStringList words = wantedWords();
    if (m_book && !m_texts && !words.isEmpty())
        m_texts = std::make_unique<HelpPageTexts>(*m_book);
    int found = 0;
    QList<QTreeWidgetItem*> shown;
    for (QTreeWidgetItemIterator it(tvContents); *it; ++it) {
        const bool isFound = words.isEmpty() || m_texts->holdAll((*it)->data(0, pageRole).toString(), words);
        (*it)->setHidden(!isFound);
        if (isFound)
            shown.append(*it);
        found += isFound ? 1 : 0;
    }
    // An entry is out of sight when the one above it is; that one is shown then, but not among those found.
    for (QTreeWidgetItemIterator it(tvContents); *it; ++it)
        (*it)->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    for (QTreeWidgetItem* item : std::as_const(shown)) {
        for (QTreeWidgetItem* above = item->parent(); above && above->isHidden(); above = above->parent()) {
            above->setHidden(false);
            above->setFlags(Qt::ItemIsEnabled);
        }
    }
    lblFound->setVisible(!words.isEmpty());
    lblFound->setText(found == 0   ? tr("No page holds all of this.")
                      : found == 1 ? tr("1 page")
                                   : tr("%1 pages").arg(found));
    txtHelp->mark(words);
}

void qrvrcHelpViewer::showNextFound()
{
    if (wantedWords().isEmpty())
        return;
    QList<QTreeWidgetItem*> found;
    for (QTreeWidgetItemIterator it(tvContents,
                                    QTreeWidgetItemIterator::NotHidden | QTreeWidgetItemIterator::Selectable);
         *it; ++it)
        found.append(*it);
    if (found.isEmpty())
        return;
    const qsizetype at = found.indexOf(tvContents->currentItem());
    tvContents->setCurrentItem(found.at((at + 1) % found.size()));
}

void qrvrcHelpViewer::goTo(const QUrl& page)
{
    fmeExternal->hide();
    txtHelp->setSource(page, QTextDocument::HtmlResource);
}

void qrvrcHelpViewer::goHome()
{
    if (m_book)
        goTo(bookUrl(fromBook(m_book->homePage())));
}

void qrvrcHelpViewer::followLink(const QUrl& link)
{
    const QUrl target = txtHelp->source().resolved(link);
    // Links of the form "ms-its:book.chm::/page.html" name a page of a book by its full address.
    const QString text = target.toString(QUrl::PrettyDecoded);
    if (isInBook(target))
        goTo(target);
    else if ((target.scheme() == u"ms-its" || target.scheme() == u"mk") && text.contains(u"::"))
        goTo(bookUrl(text.section(u"::"_s, -1)));
    else
        offerExternal(target);
}

void qrvrcHelpViewer::offerExternal(const QUrl& link)
{
    const bool isWeb = link.isValid() && (link.scheme() == u"http" || link.scheme() == u"https");
    lblExternal->setText(QString::fromUtf8(link.toEncoded()));
    cmdOpenExternal->setVisible(isWeb);
    fmeExternal->show();
    if (isWeb)
        cmdOpenExternal->setFocus();
}

void qrvrcHelpViewer::followContents(const QTreeWidgetItem* item)
{
    const QString page = item ? item->data(0, pageRole).toString() : QString();
    if (!page.isEmpty())
        goTo(bookUrl(page));
}

void qrvrcHelpViewer::showWhereWeAre(const QUrl& page)
{
    txtHelp->mark(wantedWords());
    const QString title = txtHelp->documentTitle();
    setWindowTitle(title.isEmpty() ? tr("Help") : tr("%1 - Help").arg(title));
    const QSignalBlocker quiet(tvContents);
    tvContents->setCurrentItem(nullptr);
    for (QTreeWidgetItemIterator it(tvContents); *it; ++it) {
        const QUrl entry = bookUrl((*it)->data(0, pageRole).toString());
        if (entry.path().compare(page.path(), Qt::CaseInsensitive) == 0) {
            tvContents->setCurrentItem(*it);
            return;
        }
    }
}

void qrvrcHelpViewer::showFault(const QString& title, const QString& explanation)
{
    txtHelp->setSource(QUrl());
    txtHelp->setHtml(messagePage(title, explanation));
    txtHelp->clearHistory();
    setWindowTitle(tr("Help"));
}
