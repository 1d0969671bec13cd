#include "profiles/viewer/FindBar.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/TextPane.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;
using Way = TextFinder::Way;

namespace {

constexpr int maxWanted = 256; // characters that can be looked for
const QString notFound = u"Not found."_s;

} // namespace

FindBar::FindBar(TextPane& text, const CodePage& codePage, QWidget* parent)
    : QFrame(parent),
      m_text(text),
      m_codePage(codePage),
      m_finder(codePage, nullptr),
      txtFind(new QLineEdit),
      lblFound(new QLabel)
{
    setObjectName(u"fmeFind"_s);
    auto* bar = new QHBoxLayout(this);
    bar->setContentsMargins(8, 4, 8, 4);
    txtFind->setObjectName(u"txtFind"_s);
    txtFind->setAccessibleName(u"Find"_s);
    txtFind->setMaximumWidth(280);
    txtFind->setMaxLength(maxWanted);
    lblFound->setObjectName(u"lblFound"_s);
    bar->addWidget(new QLabel(u"Find:"_s));
    bar->addWidget(txtFind);
    const auto addButton = [&](const QString& name, const QString& caption, Way way) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setText(caption);
        connect(button, &QToolButton::clicked, this, [this, way] { find(way); });
        bar->addWidget(button);
    };
    addButton(u"cmdFindNext"_s, u"Next"_s, Way::Forward);
    addButton(u"cmdFindPrevious"_s, u"Previous"_s, Way::Backward);
    bar->addWidget(lblFound, 1);
    connect(txtFind, &QLineEdit::returnPressed, this, [this] { find(Way::Forward); });
    connect(txtFind, &QLineEdit::textEdited, this, &FindBar::reset);
    connect(&m_finder, &TextFinder::found, this, &FindBar::showFound);
    connect(&m_finder, &TextFinder::notFound, this, [this] { say(notFound); });
    hide();
}

void FindBar::open()
{
    const QString selected = m_text.selection().size() <= maxWanted ? m_text.selectedText() : QString();
    if (!selected.isEmpty() && !selected.contains(u'\n') && !selected.contains(u'\r'))
        txtFind->setText(selected);
    show();
    txtFind->selectAll();
    txtFind->setFocus();
}

void FindBar::leave()
{
    reset();
    hide();
    m_text.setFocus();
}

void FindBar::reset()
{
    m_finder.stop();
    lblFound->clear();
}

void FindBar::say(const QString& state)
{
    show();
    lblFound->setText(state);
}

void FindBar::find(Way way)
{
    const QString wanted = txtFind->text();
    if (wanted.isEmpty()) {
        open();
        return;
    }
    reset();
    if (!m_codePage.firstForeign(wanted).isEmpty()) {
        say(notFound);
        return;
    }
    m_way = way;
    const TextRange selection = m_text.selection();
    m_finder.start(m_text.text(), m_codePage.toBytes(wanted), way == Way::Forward ? selection.end : selection.begin,
                   way);
    if (m_finder.isSearching())
        say(u"Searching..."_s);
}

void FindBar::showFound(std::size_t at, std::size_t size, bool wrapped)
{
    m_text.select(at, at + size);
    if (wrapped)
        lblFound->setText(m_way == Way::Forward ? u"Continued from the beginning."_s : u"Continued from the end."_s);
    else
        lblFound->clear();
}
