#include "ui/WindowRegistry.h"

#include <QScopeGuard>

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
    found->window->hide();
    found->window->deleteLater();
    found->window.clear();
}
