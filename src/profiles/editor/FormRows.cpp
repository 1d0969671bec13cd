#include "profiles/editor/FormRows.h"

#include "ui/QuietComboBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

namespace rows {

namespace {

// Pixels.
constexpr int rowGap = 7;
constexpr int height = 25;

} // namespace

QLineEdit* field(const QString& name, const QString& spoken, QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    edit->setAccessibleName(spoken);
    edit->setTextMargins(2, 0, 2, 0);
    return edit;
}

QComboBox* choice(const QString& name, const QString& spoken, QWidget* parent)
{
    auto* box = new QuietComboBox(parent);
    box->setObjectName(name);
    box->setAccessibleName(spoken);
    return box;
}

QCheckBox* checkBox(const QString& name, const QString& caption, QWidget* parent)
{
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    return box;
}

QLabel* captionOf(QWidget* control, const QString& text)
{
    auto* label = new QLabel(text);
    label->setBuddy(control);
    label->setFixedHeight(height);
    return label;
}

QGridLayout* gridIn(QGroupBox* box)
{
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(frameInsets);
    grid->setVerticalSpacing(rowGap);
    grid->setHorizontalSpacing(cellGap);
    return grid;
}

void add(QGridLayout* grid, const QString& caption, QWidget* control, int columns, int width)
{
    const int row = grid->rowCount();
    grid->addWidget(captionOf(control, caption), row, 0);
    control->setFixedHeight(height);
    if (width > 0)
        control->setFixedWidth(width);
    // With an alignment its width does not bind the columns.
    grid->addWidget(control, row, 1, 1, columns, width > 0 ? Qt::AlignLeft : Qt::Alignment());
}

void add(QGridLayout* grid, QCheckBox* box)
{
    box->setFixedHeight(height);
    // No wider than its text, which is all of it that takes a click.
    grid->addWidget(box, grid->rowCount(), 0, 1, -1, Qt::AlignLeft);
}

} // namespace rows
