#include "ui/CutNote.h"

#include <QLocale>

using namespace Qt::StringLiterals;

CutNote::CutNote(const QString& name, QWidget* parent) : QLabel(parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    hide();
}

void CutNote::tell(bool isCut, qsizetype rows)
{
    const QString count = QLocale(QLocale::English).toString(rows);
    setText(isCut ? u"The list is too long. Shown are its first %1 rows."_s.arg(count) : QString());
    setVisible(isCut);
}
