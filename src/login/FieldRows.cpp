#include "login/FieldRows.h"

#include <QFormLayout>
#include <QLabel>

namespace {

// Pixels.
constexpr int labelWidth = 120;
constexpr int fieldHeight = 25;

} // namespace

QFormLayout* fieldsIn(const QMargins& margins, int spacing)
{
    auto* form = new QFormLayout;
    form->setContentsMargins(margins);
    form->setHorizontalSpacing(0);
    form->setVerticalSpacing(spacing);
    return form;
}

void addFieldRow(QFormLayout* form, const QString& name, const QString& caption, QWidget* field)
{
    auto* label = new QLabel(caption);
    label->setObjectName(name);
    label->setMinimumWidth(labelWidth);
    label->setBuddy(field);
    field->setMinimumHeight(fieldHeight);
    form->addRow(label, field);
}
