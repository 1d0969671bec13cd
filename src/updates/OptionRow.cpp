#include "updates/OptionRow.h"

#include <QFormLayout>
#include <QLabel>

namespace {

constexpr int labelWidth = 140; // pixels

} // namespace

QLabel* addOptionRow(QFormLayout* form, const QString& caption, QWidget* field, const QString& name)
{
    field->setObjectName(name);
    field->setAccessibleName(QString(caption).remove(u'&').remove(u':'));
    auto* label = new QLabel(caption);
    label->setBuddy(field);
    label->setMinimumWidth(labelWidth);
    form->addRow(label, field);
    return label;
}
