#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <functional>

struct Client;

/// F1, wherever in the program it is pressed: opens the help topic of the window that has the keyboard, which for the
/// frame is that of the section shown.
class HelpKey : public QObject, public QAbstractNativeEventFilter
{
public:
    /// Watches the application's keys for as long as it lives.
    /// @param client   outlives this
    /// @param section  gives the section that the frame shows now
    HelpKey(Client& client, std::function<QString()> section);

    /// For the windows of components that have a toolkit of their own.
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// @param window  name of the window in which the key was pressed
    void showHelp(const QString& window);
    void showHelpFor(const QString& section);

    Client& m_client;
    std::function<QString()> m_section;
};
