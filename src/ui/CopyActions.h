#pragma once

#include <QList>

class QAction;
class QListWidget;

/// Lets the lines of a list be copied: "Copy" takes the selected ones (Ctrl+C), "Copy All" all of them, with CR LF
/// between two. A list with a context menu of its own gets the key alone; the others get a menu of these entries.
/// @return the entries, owned by the list, for a menu of its own
QList<QAction*> addCopyActions(QListWidget* list);
