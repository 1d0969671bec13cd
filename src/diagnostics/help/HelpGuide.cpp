#include "diagnostics/help/HelpGuide.h"

#include "diagnostics/help/HelpBook.h"
#include "diagnostics/help/HelpBrowser.h"
#include "diagnostics/help/HelpPageTexts.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int pageRole = Qt::UserRole;

QString pageOf(const QTreeWidgetItem& item)
{
    return item.data(0, pageRole).toString();
}

} // namespace

HelpGuide::HelpGuide(QWidget* parent) : QWidget(parent)
{
    buildControls();
    wireSignals();
}

HelpGuide::~HelpGuide() = default;

void HelpGuide::buildControls()
{
    txtSearch = new QLineEdit;
    txtSearch->setObjectName(u"txtSearch"_s);
    txtSearch->setAccessibleName(tr("Search"));
    txtSearch->setPlaceholderText(tr("Search the manual"));
    txtSearch->setClearButtonEnabled(true);
    lblFound = new QLabel;
    lblFound->setObjectName(u"lblFound"_s);
    tvContents = new QTreeWidget;
    tvContents->setObjectName(u"tvContents"_s);
    tvContents->setAccessibleName(tr("Contents"));
    tvContents->setHeaderHidden(true);
    tvContents->setRootIsDecorated(false); // always open, so there is nothing to unfold
    tvContents->setItemsExpandable(false);
    tvContents->setStyleSheet(u"QTreeView::item { padding: 3px; }"_s);
    tvContents->setTabKeyNavigation(false);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(txtSearch);
    layout->addWidget(lblFound);
    layout->addWidget(tvContents, 1);
    lblFound->hide();
}

void HelpGuide::wireSignals()
{
    connect(tvContents, &QTreeWidget::currentItemChanged, this, &HelpGuide::choose);
    connect(txtSearch, &QLineEdit::textChanged, this, &HelpGuide::search);
    connect(txtSearch, &QLineEdit::returnPressed, this, &HelpGuide::chooseNextFound);
}

void HelpGuide::setBook(const HelpBook* book)
{
    m_book = book;
    m_texts.reset();
    const QSignalBlocker quiet(tvContents);
    tvContents->clear();
    if (!m_book)
        return;
    fill();
    search();
}

void HelpGuide::fill()
{
    QList<QTreeWidgetItem*> above; // the item that the next one of each depth belongs under
    for (const HelpContentsEntry& entry : m_book->contents()) {
        above.resize(std::min<qsizetype>(above.size(), entry.depth));
        QTreeWidgetItem* under = above.isEmpty() ? tvContents->invisibleRootItem() : above.last();
        auto* item = new QTreeWidgetItem(under, {fromBook(entry.title)});
        item->setData(0, pageRole, fromBook(entry.page));
        above.append(item);
    }
    tvContents->expandAll();
}

QStringList HelpGuide::wantedWords() const
{
    return txtSearch->text().split(u' ', Qt::SkipEmptyParts);
}

void HelpGuide::startSearch()
{
    txtSearch->setFocus();
    txtSearch->selectAll();
}

bool HelpGuide::endSearch()
{
    if (txtSearch->text().isEmpty())
        return false;
    txtSearch->clear();
    return true;
}

void HelpGuide::search()
{
    const QStringList words = wantedWords();
    if (m_book && !m_texts && !words.isEmpty())
        m_texts = std::make_unique<HelpPageTexts>(*m_book);
    const int found = showFound(words);
    lblFound->setVisible(!words.isEmpty());
    lblFound->setText(found == 0   ? tr("No page holds all of this.")
                      : found == 1 ? tr("1 page")
                                   : tr("%1 pages").arg(found));
    Q_EMIT wantedWordsChanged(words);
}

int HelpGuide::showFound(const QStringList& words)
{
    QList<QTreeWidgetItem*> found;
    for (QTreeWidgetItemIterator it(tvContents); *it; ++it) {
        const bool isFound = words.isEmpty() || m_texts->holdAll(pageOf(**it), words);
        (*it)->setHidden(!isFound);
        (*it)->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        if (isFound)
            found.append(*it);
    }
    // An entry is out of sight when the one above it is; that one is shown then, but not among those found.
    for (QTreeWidgetItem* item : std::as_const(found)) {
        for (QTreeWidgetItem* above = item->parent(); above && above->isHidden(); above = above->parent()) {
            above->setHidden(false);
            above->setFlags(Qt::ItemIsEnabled);
        }
    }
    return static_cast<int>(found.size());
}

void HelpGuide::chooseNextFound()
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

void HelpGuide::choose(const QTreeWidgetItem* item)
{
    const QString page = item ? pageOf(*item) : QString();
    if (!page.isEmpty())
        Q_EMIT pageChosen(page);
}

void HelpGuide::showPage(const QUrl& page)
{
    const QSignalBlocker quiet(tvContents);
    tvContents->setCurrentItem(nullptr);
    for (QTreeWidgetItemIterator it(tvContents); *it; ++it) {
        if (bookUrl(pageOf(**it)).path().compare(page.path(), Qt::CaseInsensitive) == 0) {
            tvContents->setCurrentItem(*it);
            return;
        }
    }
}
