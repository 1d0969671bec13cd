#include "live/support/SideRows.h"

#include "ui/ImageButton.h"

#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace side {

namespace {

// Pixels.
constexpr QMargins frameInsets(9, 6, 9, 10);
constexpr int rowGap = 7;
constexpr int cellGap = 6;
constexpr int captionWidth = 74;
constexpr int fieldWidth = 146;
constexpr int fieldHeight = 25;

} // namespace

QVBoxLayout* columnIn(QGroupBox* box)
{
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(frameInsets);
    column->setSpacing(rowGap);
    return column;
}

void add(QVBoxLayout* column, const QString& captionName, const QString& caption, QWidget* field)
{
    auto* label = new QLabel(caption);
    label->setObjectName(captionName);
    label->setMinimumWidth(captionWidth);
    label->setBuddy(field);
    field->setMinimumSize(fieldWidth, fieldHeight);
    auto* row = new QHBoxLayout;
    row->setSpacing(cellGap);
    row->addWidget(label);
    row->addWidget(field, 1);
    column->addLayout(row);
}

void add(QVBoxLayout* column, const ImageButton* left, const ImageButton* right)
{
    auto* row = new QHBoxLayout;
    if (left)
        row->addWidget(left->face());
    row->addStretch();
    row->addWidget(right->face());
    for (const ImageButton* button : {left, right}) {
        if (button)
            button->face()->setFixedSize(buttonSize);
    }
    column->addLayout(row);
}

} // namespace side
