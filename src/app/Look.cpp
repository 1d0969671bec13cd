#include "app/Look.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QStyleFactory>

using namespace Qt::StringLiterals;

void applyLook()
{
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QPalette palette(QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Window, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xF1, 0xF5, 0xFA));
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x66, 0xA8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x8F, 0xA3, 0xBC));
    QApplication::setPalette(palette);
    // Every family that is not there costs a search at the start.
#if defined(Q_OS_WIN)
    QFont font(QStringList{u"Segoe UI"_s, u"Tahoma"_s});
#else
    QFont font(QStringList{u"Liberation Sans"_s, u"DejaVu Sans"_s});
#endif
    font.setPointSize(9);
    QApplication::setFont(font);
    QApplication::setWindowIcon(QIcon(u":/icon.png"_s));
}
