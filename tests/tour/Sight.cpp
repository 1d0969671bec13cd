#include "tour/Sight.h"

#include "tour/Hand.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTabBar>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int modColumn = 2;
constexpr int statusColumn = 8;

bool hasPicture(int row, int column)
{
    const auto* view = seen<QTableView>(u"fgProfiles"_s);
    return view && view->model()->index(row, column).data(Qt::DecorationRole).isValid();
}

} // namespace

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
        hasMod = hasMod || hasPicture(row, modColumn);
        missing.removeAll(statusOf(row));
    }
    return view && missing.isEmpty() && hasMod;
}

int statusOf(int row)
{
    const auto* view = seen<QTableView>(u"fgProfiles"_s);
    return view && hasPicture(row, statusColumn) ? view->model()->index(row, 0).data(Qt::UserRole).toInt() : -1;
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

bool hasTab(const QString& strip, const QString& caption)
{
    const auto* bar = seen<QTabBar>(strip);
    for (int index = 0; bar && index < bar->count(); ++index) {
        if (bar->tabText(index) == caption)
            return true;
    }
    return false;
}

QString textOf(const QString& name, const QString& container)
{
    const auto* label = seen<QLabel>(name, container);
    return label ? label->text() : QString();
}

QString fieldText(const QString& name)
{
    const auto* field = seen<QLineEdit>(name);
    return field ? field->text() : QString();
}

bool isConnected()
{
    return textOf(u"lblStatus"_s, u"qrvrcLogin"_s) == u"Connected"_s;
}

bool isLoggedOut()
{
    const auto* strip = seen<QTabBar>(u"tsMain"_s);
    return textOf(u"lblStatus"_s, u"qrvrcLogin"_s) == u"Not Connected"_s && strip && strip->count() == 6 &&
           !seen<QTabBar>(u"tsSection"_s);
}

bool isButton(const QString& name, bool enabled)
{
    const auto* caption = seen<QWidget>(name);
    const auto* face = seen<QWidget>(name + u"Img"_s);
    return caption && face && caption->isEnabled() == enabled && face->isEnabled() == enabled;
}

bool hasFocus(const QString& name)
{
    const QWidget* focused = QApplication::focusWidget();
    return focused && focused->objectName() == name;
}

bool boxSays(const QString& text)
{
    const auto* box = seen<QMessageBox>(u"msgBox"_s);
    return box && box->text().contains(text);
}

} // namespace tour
