// The least that a program with a window does between its start and its first paint. With an argument the window shows
// that text, for which the toolkit loads its fonts.

#include "FirstPaint.h"

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.setFixedSize(760, 495);
    if (argc > 1)
        new QLabel(QString::fromLocal8Bit(argv[1]), &window);
    const EndAtFirstPaint end(window);
    window.show();
    return QApplication::exec();
}
