#pragma once

#include <QString>

class QFormLayout;
class QMargins;
class QWidget;

/// Captions on the left, fields on the right; those of all such layouts stand in one line.
/// @param spacing  pixels between rows
QFormLayout* fieldsIn(const QMargins& margins, int spacing);
/// @param name  of the caption's label; empty for none
void addFieldRow(QFormLayout* form, const QString& name, const QString& caption, QWidget* field);
