#pragma once

#include <QHash>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

/// The windows that others open by name ("qrvrcModify"). Each is created when it is first asked for, and again when it
/// has been deleted meanwhile. The registry owns none: a window belongs to the parent that its maker gives it.
class WindowRegistry
{
public:
    /// @param guardedLoops  how many of the nested event loops under way belong to callers that expect their window to
    ///                      go meanwhile; none for none
    explicit WindowRegistry(std::function<int()> guardedLoops = {});
    ~WindowRegistry();

    /// Replaces what was known under `name`, but not a window that exists.
    void add(const QString& name, std::function<QWidget*()> create);

    /// The same for a window class, whose name is the name.
    template <typename Window>
    void add(std::function<Window*()> create)
    {
        add(nameOf<Window>(), std::function<QWidget*()>(std::move(create)));
    }
    /// The window of that class; null where the name gives null.
    template <typename Window>
    Window* window()
    {
        return qobject_cast<Window*>(window(nameOf<Window>()));
    }
    template <typename Window>
    Window* existing() const
    {
        return qobject_cast<Window*>(existing(nameOf<Window>()));
    }
    template <typename Window>
    static QString nameOf()
    {
        static_assert(QtPrivate::HasQ_OBJECT_Macro<Window>::Value, "without it the class goes by its base's name");
        return QString::fromLatin1(Window::staticMetaObject.className());
    }

    /// The window, created when there is none. Null for an unknown name, and for a window that is being created and
    /// whose maker asks for it.
    QWidget* window(const QString& name);
    /// The window if it has been created, otherwise null.
    QWidget* existing(const QString& name) const;
    bool isCreated(const QString& name) const { return existing(name) != nullptr; }
    /// Hides the window and lets it be deleted once no event, menu or box of its own can be on the stack any more;
    /// asked for again, it is created anew.
    void unload(const QString& name);
    /// Deletes the windows that are still waiting for that, at the program's end.
    void deleteUnloaded();

private:
    struct Entry
    {
        std::function<QWidget*()> create;
        QPointer<QWidget> window;
        bool beingCreated = false;
    };

    bool isInBoxOrMenu() const;

    QHash<QString, Entry> m_entries;
    std::function<int()> m_guardedLoops;
    std::vector<QPointer<QWidget>> m_unloaded; ///< not deleted yet
    std::unique_ptr<QObject> m_watch;          ///< of the event loop, while there are such
};
