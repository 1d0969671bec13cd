#include "tour/Hand.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QMenu>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QWindow>

namespace tour {

namespace {

/// Who gets the keys: an open menu before anybody else.
QWindow* keyReceiver()
{
    const QWidget* popup = QApplication::activePopupWidget();
    return popup ? popup->windowHandle() : QGuiApplication::focusWindow();
}

void clickAt(const QWidget* widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton)
{
    const QWidget* window = widget->window();
    QTest::mouseClick(window->windowHandle(), button, Qt::NoModifier, widget->mapTo(window, position));
}

} // namespace

bool hasWindowManager()
{
    return QGuiApplication::platformName() != QStringLiteral("offscreen");
}

void click(const QString& name, const QString& container)
{
    if (const auto* widget = seen<QWidget>(name, container))
        clickAt(widget, widget->rect().center());
}

void click(QAbstractButton* button)
{
    if (button && button->isVisible())
        clickAt(button, button->rect().center());
}

void clickTab(const QString& strip, const QString& caption, const QString& container)
{
    const auto* bar = seen<QTabBar>(strip, container);
    for (int index = 0; bar && index < bar->count(); ++index) {
        if (bar->tabText(index) == caption) {
            clickAt(bar, bar->tabRect(index).center());
            return;
        }
    }
}

void clickRow(const QString& grid, int row, Qt::MouseButton button)
{
    if (const auto* view = seen<QTableView>(grid)) {
        const QModelIndex cell = view->model()->index(row, 1);
        clickAt(view->viewport(), view->visualRect(cell).center(), button);
    }
}

void clickLine(const QString& list, int row, Qt::MouseButton button)
{
    if (const auto* view = seen<QListWidget>(list); view && view->item(row))
        clickAt(view->viewport(), view->visualItemRect(view->item(row)).center(), button);
}

void clickEntry(QMenu* menu, const QString& action)
{
    const QList<QAction*> entries = menu ? menu->actions() : QList<QAction*>();
    for (QAction* entry : entries) {
        if (entry->objectName() == action)
            clickAt(menu, menu->actionGeometry(entry).center());
    }
}

void type(const QByteArray& text)
{
    for (const char character : text) {
        if (QWindow* window = keyReceiver())
            QTest::keyClick(window, character);
    }
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (QWindow* window = keyReceiver())
        QTest::keyClick(window, key, modifiers);
}

} // namespace tour
