#include "ui/ProgramIcon.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

QIcon programIcon()
{
    if (QGuiApplication::windowIcon().isNull())
        QGuiApplication::setWindowIcon(QIcon(u":/icon.png"_s));
    return QGuiApplication::windowIcon();
}
