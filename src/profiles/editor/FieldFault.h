#pragma once

#include <QString>

class QWidget;
enum class MessageKind : quint8;

/// What is wrong with a field of a form, in words for the user.
struct FieldFault
{
    MessageKind kind;
    QString text;
    QWidget* field; ///< of the form that found the fault
};
