#include "link/ReplyDispatcher.h"

#include "diagnostics/report/Reporter.h"
#include "link/InterfaceLock.h"
#include "link/StatusReply.h"

#include <utility>

ReplyDispatcher::ReplyDispatcher(Reporter& reporter, LockableInterface& interface)
    : m_reporter(reporter),
      m_interface(interface)
{}

void ReplyDispatcher::on(const std::string& request, QObject* owner, Handler handler)
{
    on(request, owner, [handler = std::move(handler)](std::string_view body, const ReplyOwner&) { handler(body); });
}

void ReplyDispatcher::on(const std::string& request, QObject* owner, KeepingHandler handler)
{
    Ticket& ticket = m_tickets[request];
    m_handlers.erase(ticket);
    ticket = ++m_lastTicket;
    m_handlers[ticket] = {owner, std::move(handler)};
}

ReplyDispatcher::Ticket ReplyDispatcher::handlerOf(const std::string& request) const
{
    const auto found = m_tickets.find(request);
    return found == m_tickets.end() ? nobody : found->second;
}

void ReplyDispatcher::onPluginMessage(QObject* owner, PluginHandler handler)
{
    m_pluginOwner = owner;
    m_pluginHandler = std::move(handler);
}

void ReplyDispatcher::HandleData(std::string_view body, const ReplyOwner& owner, Ticket handler)
{
    const InterfaceLock lock(m_interface);
    if (isPluginMessage(body)) {
        m_reporter.trap("HandleData", [&] {
            const PluginMessage message = decodePluginMessage(body);
            if (m_pluginOwner)
                m_pluginHandler(message.component, message.payload);
        });
        return;
    }
    const auto found = m_handlers.find(handler);
    if (found == m_handlers.end() || !found->second.owner)
        return;
    const KeepingHandler handle = found->second.handler; // a handler may open the window that registers the next one
    m_reporter.trap("HandleData", [&] { handle(body, owner); });
}
