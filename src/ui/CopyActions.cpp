#include "ui/CopyActions.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace {

void copyLines(const QListWidget& list, bool all)
{
    QStringList lines;
    for (int row = 0; row < list.count(); ++row) {
        if (all || list.item(row)->isSelected())
            lines += list.item(row)->text();
    }
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(u"\r\n"_s));
}

} // namespace

QList<QAction*> addCopyActions(QListWidget* list)
{
    auto* copy = new QAction(u"&Copy"_s, list);
    copy->setObjectName(u"mnuCopy"_s);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    auto* copyAll = new QAction(u"Copy &All"_s, list);
    copyAll->setObjectName(u"mnuCopyAll"_s);
    QObject::connect(copy, &QAction::triggered, list, [list] { copyLines(*list, false); });
    QObject::connect(copyAll, &QAction::triggered, list, [list] { copyLines(*list, true); });
    list->addActions({copy, copyAll});
    if (list->contextMenuPolicy() == Qt::DefaultContextMenu)
        list->setContextMenuPolicy(Qt::ActionsContextMenu);
    return {copy, copyAll};
}
