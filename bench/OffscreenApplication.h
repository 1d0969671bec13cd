#pragma once

#include <QApplication>

/// The application of a program that measures windows: without a screen unless the environment names a platform, and
/// running on when a window closes.
class OffscreenApplication : public QApplication
{
public:
    OffscreenApplication(int& argc, char** argv) : QApplication((choosePlatform(), argc), argv)
    {
        setQuitOnLastWindowClosed(false);
    }

private:
    static void choosePlatform()
    {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
};
