#include "tour/Screen.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int modColumn = 2;
constexpr int statusColumn = 8;

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

bool hasPicture(const QTableView& view, int row, int column)
{
    return view.model()->index(row, column).data(Qt::DecorationRole).isValid();
}

} // namespace

bool hasWindowManager()
{
    return QGuiApplication::platformName() != u"offscreen"_s;
}

void click(const QString& name, const QString& container)
{
    if (const auto* widget = seen(name, container))
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

void clickEntry(const QString& action, const QString& menu)
{
    const auto* open = seen<QMenu>(menu);
    const QList<QAction*> entries = open ? open->actions() : QList<QAction*>();
    for (QAction* entry : entries) {
        if (entry->objectName() == action)
            clickAt(open, open->actionGeometry(entry).center());
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

void enter(const QString& field, const QByteArray& text, const QString& container)
{
    click(field, container);
    press(Qt::Key_A, Qt::ControlModifier);
    type(text);
}

int rowsOf(const QString& grid)
{
    const auto* view = seen<QTableView>(grid);
    return view ? view->model()->rowCount() : -1;
}

int selectedRow()
{
    const auto* view = seen<QTableView>(u"fgProfiles"_s);
    const QModelIndexList selected = view ? view->selectionModel()->selectedRows() : QModelIndexList();
    return selected.size() == 1 ? selected.front().row() : -1;
}

bool showsEveryStatus()
{
    const auto* view = seen<QTableView>(u"fgProfiles"_s);
    QList<int> missing{0, 1, 2, 3, 4, 5};
    bool hasMod = false;
    for (int row = 0; view && row < view->model()->rowCount(); ++row) {
        hasMod = hasMod || hasPicture(*view, row, modColumn);
        missing.removeAll(statusOf(row));
    }
    return view && missing.isEmpty() && hasMod;
}

int statusOf(int row)
{
    const auto* view = seen<QTableView>(u"fgProfiles"_s);
    return view && hasPicture(*view, row, statusColumn) ? view->model()->index(row, 0).data(Qt::UserRole).toInt() : -1;
}

QStringList linesOf(const QString& list)
{
    const auto* view = seen<QListWidget>(list);
    QStringList lines;
    for (int row = 0; view && row < view->count(); ++row)
        lines += view->item(row)->text();
    return lines;
}

int selectedLine(const QString& list)
{
    const auto* view = seen<QListWidget>(list);
    const QList<QListWidgetItem*> selected = view ? view->selectedItems() : QList<QListWidgetItem*>();
    return selected.size() == 1 ? view->row(selected.front()) : -1;
}

QString textOf(const QString& name, const QString& container)
{
    const auto* widget = seen(name, container);
    for (const char* property : {"text", "plainText", "currentText"}) {
        if (widget && widget->property(property).isValid())
            return widget->property(property).toString();
    }
    return {};
}

bool isLoggedOut()
{
    const auto* strip = seen<QTabBar>(u"tsMain"_s);
    return textOf(u"lblStatus"_s, u"qrvrcLogin"_s) == u"Not Connected"_s && strip && strip->count() == 6 &&
           !seen(u"tsSection"_s);
}

bool isButton(const QString& name, bool enabled)
{
    const auto* caption = seen(name);
    const auto* face = seen(name + u"Img"_s);
    return caption && face && caption->isEnabled() == enabled && face->isEnabled() == enabled;
}

bool hasFocus(const QString& name)
{
    const QWidget* focused = QApplication::focusWidget();
    return focused && focused->objectName() == name;
}

bool isFront(const QString& window)
{
    auto* shown = seen(window);
    if (shown && !hasWindowManager() && !seen(u"msgBox"_s))
        shown->window()->activateWindow();
    return shown && shown->isActiveWindow();
}

bool boxSays(const QString& text)
{
    const auto* box = seen<QMessageBox>(u"msgBox"_s);
    return box && box->text().contains(text);
}

} // namespace tour
