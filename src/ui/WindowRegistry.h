#pragma once

#include <QHash>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>

/// The windows that others open by name ("qrvrcModify"). Each is created when it is first asked for, and again when it
/// has been deleted meanwhile. The registry owns none: a window belongs to the parent that its maker gives it.
class WindowRegistry
{
public:
    /// Replaces what was known under `name`, but not a window that exists.
    void add(const QString& name, std::function<QWidget*()> create);

    /// The window, created when there is none. Null for an unknown name, and for a window that is being created and
    /// whose maker asks for it.
    QWidget* window(const QString& name);
    /// The window if it has been created, otherwise null.
    QWidget* existing(const QString& name) const;
    bool isCreated(const QString& name) const { return existing(name) != nullptr; }
    /// Hides the window and lets it be deleted from the event loop; asked for again, it is created anew.
    void unload(const QString& name);

private:
    struct Entry
    {
        std::function<QWidget*()> create;
        QPointer<QWidget> window;
        bool beingCreated = false;
    };

    QHash<QString, Entry> m_entries;
};
