#include "live/support/FilterFrame.h"

#include "live/support/SideRows.h"
#include "ui/ImageButton.h"

#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int optionHeight = 23; // pixels
constexpr std::array captions{u"Host Messages", u"User Messages", u"All Messages"};

} // namespace

FilterFrame::FilterFrame(PictureStore& pictures, QWidget* parent) : QGroupBox(u"Filter"_s, parent)
{
    setObjectName(u"fmeFilter"_s);
    for (std::size_t index = 0; index < Option1.size(); ++index) {
        Option1[index] = new QRadioButton(QString::fromUtf16(captions[index]), this);
        Option1[index]->setObjectName(u"Option1_%1"_s.arg(index));
    }
    Option1.back()->setChecked(true);
    txtFilter = new QLineEdit(this);
    txtFilter->setObjectName(u"txtFilter"_s);
    txtFilter->setAccessibleName(u"Filter, messages containing"_s);
    txtFilter->setPlaceholderText(u"empty: no filter"_s);
    cmdFilter = new ImageButton(u"cmdFilter"_s, u"Filter"_s, pictures, this);
    layOut();
    connect(cmdFilter, &ImageButton::activated, this, &FilterFrame::filterWanted);
    connect(txtFilter, &QLineEdit::returnPressed, this, &FilterFrame::filterWanted);
}

void FilterFrame::layOut()
{
    auto* options = new QVBoxLayout;
    options->setSpacing(0);
    for (QRadioButton* option : Option1) {
        option->setMinimumHeight(optionHeight);
        // No wider than its text, which is all of it that takes a click.
        options->addWidget(option, 0, Qt::AlignLeft);
    }
    QVBoxLayout* column = side::columnIn(this);
    column->addLayout(options);
    side::add(column, u"Label2"_s, u"Containing"_s, txtFilter);
    side::add(column, nullptr, cmdFilter);
}

Conversation::Speaker FilterFrame::speaker() const
{
    constexpr std::array speakers{Conversation::Speaker::Host, Conversation::Speaker::User};
    for (std::size_t index = 0; index < speakers.size(); ++index) {
        if (Option1[index]->isChecked())
            return speakers[index];
    }
    return Conversation::Speaker::All;
}

QString FilterFrame::text() const
{
    return txtFilter->text();
}

void FilterFrame::clear()
{
    txtFilter->setText({}); // nothing is left for Undo to bring back
}
