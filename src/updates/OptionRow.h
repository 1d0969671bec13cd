#pragma once

#include <QString>

class QFormLayout;
class QLabel;
class QWidget;

/// A label and its field, which the label's shortcut reaches and which bears its name. The fields of all option boxes
/// stand in one line.
QLabel* addOptionRow(QFormLayout* form, const QString& caption, QWidget* field, const QString& name);
