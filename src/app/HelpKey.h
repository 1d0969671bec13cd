#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

struct Client;

/// F1, wherever in the program it is pressed: opens the help topic of the window that has the keyboard, which for the
/// frame is that of the section shown.
class HelpKey : public QObject, public QAbstractNativeEventFilter
{
public:
    /// Watches the application's keys for as long as it lives. @param client  outlives this
    explicit HelpKey(Client& client);

    /// For the windows of components that have a toolkit of their own.
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// @param window  name of the window in which the key was pressed
    void showHelp(const QString& window);
    void showHelpFor(const QString& section);

    Client& m_client;
};
