#include "live/support/SearchFrame.h"

#include "live/support/SideRows.h"
#include "ui/ImageButton.h"

#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SearchFrame::SearchFrame(PictureStore& pictures, QWidget* parent) : QGroupBox(u"Search"_s, parent)
{
    using Search = ConversationView::Search;
    setObjectName(u"fmeSearch"_s);
    txtSearch = new QLineEdit(this);
    txtSearch->setObjectName(u"txtSearch"_s);
    txtSearch->setAccessibleName(u"Search, containing"_s);
    cmdSearch = new ImageButton(u"cmdSearch"_s, u"Search"_s, pictures, this);
    cmdPrevious = new ImageButton(u"cmdPrevious"_s, u"Previous"_s, pictures, this);
    cmdNext = new ImageButton(u"cmdNext"_s, u"Next"_s, pictures, this);
    layOut();
    connect(txtSearch, &QLineEdit::returnPressed, this, [this] { Q_EMIT searchWanted(Search::First); });
    connect(cmdSearch, &ImageButton::activated, this, [this] { Q_EMIT searchWanted(Search::First); });
    connect(cmdPrevious, &ImageButton::activated, this, [this] { Q_EMIT searchWanted(Search::Previous); });
    connect(cmdNext, &ImageButton::activated, this, [this] { Q_EMIT searchWanted(Search::Next); });
}

void SearchFrame::layOut()
{
    QVBoxLayout* column = side::columnIn(this);
    side::add(column, u"Label3"_s, u"Containing"_s, txtSearch);
    side::add(column, nullptr, cmdSearch);
    side::add(column, cmdPrevious, cmdNext);
}

QString SearchFrame::text() const
{
    return txtSearch->text();
}

void SearchFrame::clear()
{
    txtSearch->setText({}); // nothing is left for Undo to bring back
}

void SearchFrame::takeKeyboard()
{
    txtSearch->setFocus();
}
