#pragma once

#include <QApplication>
#include <QStringList>
#include <QWidget>

class QAbstractButton;
class QMenu;

namespace tour {

/// The widget of that type and object name that is on the screen, or null.
/// @param container  object name of a widget around it, for names that occur more than once
template <typename Widget = QWidget>
Widget* seen(const QString& name, const QString& container = {})
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible())
            continue;
        QList<Widget*> found = window->findChildren<Widget*>(name);
        if (auto* itself = qobject_cast<Widget*>(window); itself && window->objectName() == name)
            found.prepend(itself);
        for (Widget* widget : found) {
            if (!widget->isVisible())
                continue;
            const QWidget* around = widget->parentWidget();
            while (around && around->objectName() != container && !container.isEmpty())
                around = around->parentWidget();
            if (container.isEmpty() || around)
                return widget;
        }
    }
    return nullptr;
}

// What a user does with mouse and keyboard. Everything enters where the window system hands events over, so a window
// that a modal one blocks takes nothing. What is not on the screen cannot be clicked; nothing happens then.

/// Whether another window becomes active by itself when the active one goes.
bool hasWindowManager();
/// Clicks in the middle of a widget. @param container  as for seen()
void click(const QString& name, const QString& container = {});
void click(QAbstractButton* button);
void clickTab(const QString& strip, const QString& caption, const QString& container = {});
void clickRow(const QString& grid, int row, Qt::MouseButton button = Qt::LeftButton);
void clickLine(const QString& list, int row, Qt::MouseButton button = Qt::LeftButton);
/// Clicks an entry of the menu that is open.
void clickEntry(const QString& action, const QString& menu = QStringLiteral("mnuMain"));
/// Types into whatever has the focus. @param text  ASCII
void type(const QByteArray& text);
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// Clicks a field and types in place of what it holds.
void enter(const QString& field, const QByteArray& text, const QString& container = {});

// What a user can read off the screen. What is not on it has no rows, no text and no state.

/// -1 for a grid that is not there.
int rowsOf(const QString& grid);
/// The selected row of the profile list, from 0; -1 when it is not exactly one.
int selectedRow();
/// Whether each status from 0 to 5 is there with its picture, and the picture of a mod.
bool showsEveryStatus();
/// The status of a row of the profile list; -1 when that is not there with its picture.
int statusOf(int row);
/// The lines of a list; none for one that is not there.
QStringList linesOf(const QString& list);
/// The line of a list that is selected, from 0; -1 when it is not exactly one.
int selectedLine(const QString& list);
/// What a label, a field or a box of text says.
QString textOf(const QString& name, const QString& container = {});
/// Whether the client has the login window and the menus of one that is not logged in.
bool isLoggedOut();
/// Whether an image button is there in that state, caption and face alike.
bool isButton(const QString& name, bool enabled);
bool hasFocus(const QString& name);
/// Whether a window has the keyboard; gives it to the window where nobody else does.
bool isFront(const QString& window);
bool boxSays(const QString& text);

} // namespace tour
