#include "support/Pane.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTabBar>
#include <QTableView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QAbstractItemModel& modelOf(const QWidget& view)
{
    if (const auto* list = qobject_cast<const QComboBox*>(&view))
        return *list->model();
    return *static_cast<const QAbstractItemView&>(view).model();
}

} // namespace

void Pane::fail(const QString& name)
{
    qFatal("there is no control %s", qPrintable(name));
}

void Pane::click(const QString& name) const
{
    QTest::mouseClick(&control(name), Qt::LeftButton);
}

void Pane::clickTab(const QString& strip, const QString& caption) const
{
    auto& bar = control<QTabBar>(strip);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(static_cast<int>(tabs(strip).indexOf(caption))).center());
}

void Pane::clickRow(const QString& view, int row) const
{
    auto& rows = control<QAbstractItemView>(view);
    const QModelIndex cell = rows.model()->index(row, rows.model()->columnCount() > 1 ? 1 : 0);
    rows.scrollTo(cell);
    QTest::mouseClick(rows.viewport(), Qt::LeftButton, {}, rows.visualRect(cell).center());
}

void Pane::type(const QString& field, const QString& text) const
{
    auto& edit = control<QLineEdit>(field);
    if (!edit.isEnabled())
        qFatal("%s takes no text now", qPrintable(field));
    edit.selectAll();
    QTest::keyClick(&edit, Qt::Key_Delete);
    edit.insert(text); // as an input method does, so that no character is beyond the keyboard
}

void Pane::choose(const QString& list, const QString& entry) const
{
    auto& entries = control<QComboBox>(list);
    QTest::keyClick(&entries, Qt::Key_Home);
    for (int step = 1; step < entries.count() && entries.currentText() != entry; ++step)
        QTest::keyClick(&entries, Qt::Key_Down);
}

QString Pane::text(const QString& name) const
{
    const QWidget& widget = control(name);
    for (const char* property : {"text", "plainText", "currentText"}) {
        if (widget.property(property).isValid())
            return widget.property(property).toString();
    }
    qFatal("%s says nothing", qPrintable(name));
}

QStringList Pane::tabs(const QString& strip) const
{
    const auto& bar = control<QTabBar>(strip);
    QStringList captions;
    for (int index = 0; index < bar.count(); ++index)
        captions += bar.tabText(index);
    return captions;
}

QStringList Pane::column(const QString& view, int column) const
{
    const QAbstractItemModel& model = modelOf(control(view));
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts += model.index(row, column).data().toString();
    return texts;
}

QStringList Pane::cells(const QString& view, int row) const
{
    const QAbstractItemModel& model = modelOf(control(view));
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts += model.index(row, column).data().toString();
    return texts;
}
