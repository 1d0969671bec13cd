#include "ui/WindowRegistry.h"

#include <QAbstractEventDispatcher>
#include <QScopeGuard>
#include <QThread>

#include <utility>

WindowRegistry::WindowRegistry(std::function<int()> guardedLoops) : m_guardedLoops(std::move(guardedLoops)) {}

WindowRegistry::~WindowRegistry() = default;

void WindowRegistry::add(const QString& name, std::function<QWidget*()> create)
{
    m_entries[name].create = std::move(create);
}

QWidget* WindowRegistry::window(const QString& name)
{
    const auto found = m_entries.find(name);
    if (found == m_entries.end() || found->beingCreated)
        return nullptr;
    if (found->window)
        return found->window;

    // The maker may add names, so no reference into the table is carried across it.
    const std::function<QWidget*()> create = found->create;
    found->beingCreated = true;
    const auto done = qScopeGuard([this, &name] { m_entries[name].beingCreated = false; });
    QWidget* const created = create();
    m_entries[name].window = created;
    return created;
}

QWidget* WindowRegistry::existing(const QString& name) const
{
    const auto found = m_entries.constFind(name);
    return found == m_entries.cend() ? nullptr : found->window.data();
}

void WindowRegistry::unload(const QString& name)
{
    const auto found = m_entries.find(name);
    if (found == m_entries.end() || !found->window)
        return;
    QWidget* const window = std::exchange(found->window, nullptr);
    window->hide();
    if (!isInBoxOrMenu()) {
        window->deleteLater();
        return;
    }
    // Qt deletes what is to be deleted later in the loop that runs now, with the events that led to the box below it.
    m_unloaded.emplace_back(window);
    if (m_watch)
        return;
    m_watch = std::make_unique<QObject>();
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, m_watch.get(),
                     [this] {
                         if (!isInBoxOrMenu())
                             deleteUnloaded();
                     });
}

void WindowRegistry::deleteUnloaded()
{
    m_watch.reset();
    for (const QPointer<QWidget>& window : std::exchange(m_unloaded, {}))
        delete window;
}

/// Whether a loop runs inside another one that is no wait: the program's own loop is the first.
bool WindowRegistry::isInBoxOrMenu() const
{
    return QThread::currentThread()->loopLevel() - (m_guardedLoops ? m_guardedLoops() : 0) > 1;
}
