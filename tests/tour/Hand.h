#pragma once

#include <QApplication>
#include <QString>
#include <QWidget>

class QAbstractButton;
class QMenu;
class QTabBar;
class QTableView;

namespace tour {

/// The widget of that type and object name that is on the screen, or null.
/// @param container  object name of a widget around it, for names that occur more than once
template <typename Widget>
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
void clickEntry(QMenu* menu, const QString& action);

/// Types into whatever has the focus. @param text  ASCII
void type(const QByteArray& text);
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

} // namespace tour
