#include "diagnostics/help/qrvrcHelpViewer.h"

#include "base/RuntimeError.h"
#include "diagnostics/help/ExternalLinkBar.h"
#include "diagnostics/help/HelpBook.h"
#include "diagnostics/help/HelpBrowser.h"
#include "diagnostics/help/HelpGuide.h"
#include "platform/system/PathText.h"

#include <QHBoxLayout>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(940, 660);
constexpr int contentsWidth = 240; // pixels, as the next
constexpr int margin = 6;

} // namespace

qrvrcHelpViewer::qrvrcHelpViewer(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setObjectName(u"qrvrcHelpViewer"_s);
    setWindowTitle(tr("Help"));
    resize(usualSize.boundedTo(screen()->availableSize() - QSize(20, 40)));
    buildControls();
    layOut();
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
        setBook(nullptr);
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

QToolButton* qrvrcHelpViewer::makeButton(const QString& name, const QString& text, const QString& accessible,
                                         QStyle::StandardPixmap icon, const QKeySequence& shortcut)
{
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
}

void qrvrcHelpViewer::buildControls()
{
    cmdBack = makeButton(u"cmdBack"_s, tr("Back"), tr("Back to the page before"), QStyle::SP_ArrowBack,
                         QKeySequence(Qt::ALT | Qt::Key_Left));
    cmdForward = makeButton(u"cmdForward"_s, tr("Forward"), tr("Forward to the next page"), QStyle::SP_ArrowForward,
                            QKeySequence(Qt::ALT | Qt::Key_Right));
    cmdHome = makeButton(u"cmdHome"_s, tr("Home"), tr("The first page"), QStyle::SP_DirHomeIcon,
                         QKeySequence(Qt::ALT | Qt::Key_Home));
    cmdBack->setEnabled(false);
    cmdForward->setEnabled(false);
    m_guide = new HelpGuide(this);
    txtHelp = new HelpBrowser([this](const std::string& name) { return m_book ? m_book->page(name) : std::nullopt; });
    txtHelp->setObjectName(u"txtHelp"_s);
    txtHelp->setAccessibleName(tr("Help page"));
    fmeExternal = new ExternalLinkBar(u"fmeExternal"_s, this);
}

void qrvrcHelpViewer::layOut()
{
    auto* buttons = new QHBoxLayout;
    for (QToolButton* button : {cmdBack, cmdForward, cmdHome})
        buttons->addWidget(button);
    buttons->addStretch();
    auto* halves = new QSplitter;
    halves->addWidget(m_guide);
    halves->addWidget(txtHelp);
    halves->setStretchFactor(1, 1);
    halves->setSizes({contentsWidth, usualSize.width() - contentsWidth});
    halves->setChildrenCollapsible(false);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(margin, margin, margin, margin);
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
    connect(m_guide, &HelpGuide::pageChosen, this, [this](const QString& page) { goTo(bookUrl(page)); });
    connect(m_guide, &HelpGuide::wantedWordsChanged, txtHelp, &HelpBrowser::mark);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_guide, &HelpGuide::startSearch);
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, [this] {
        if (!m_guide->endSearch())
            close();
    });
}

bool qrvrcHelpViewer::openBook(const std::filesystem::path& file)
{
    if (m_book && m_book->file() == file && m_book->isCurrent())
        return false;
    setBook(nullptr);
    setBook(std::make_unique<HelpBook>(file));
    txtHelp->setSource(QUrl()); // so that a page of the same name is read anew
    txtHelp->clear();
    return true;
}

void qrvrcHelpViewer::setBook(std::unique_ptr<HelpBook> book)
{
    m_guide->setBook(book.get());
    m_book = std::move(book);
    cmdHome->setEnabled(m_book && !m_book->homePage().empty());
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
        fmeExternal->offer(target);
}

void qrvrcHelpViewer::showWhereWeAre(const QUrl& page)
{
    txtHelp->mark(m_guide->wantedWords());
    const QString title = txtHelp->documentTitle();
    setWindowTitle(title.isEmpty() ? tr("Help") : tr("%1 - Help").arg(title));
    m_guide->showPage(page);
}

void qrvrcHelpViewer::showFault(const QString& title, const QString& explanation)
{
    txtHelp->setSource(QUrl());
    txtHelp->setHtml(messagePage(title, explanation));
    txtHelp->clearHistory();
    setWindowTitle(tr("Help"));
}
