#include "link/ReplyDispatcher.h"

#include "diagnostics/report/Reporter.h"
#include "link/InterfaceLock.h"
#include "link/StatusReply.h"

#include <utility>

namespace {

/// Whether the number is one that decoders raise, and not the disk, a component or the program itself.
bool isFaultOfText(ErrorNumber number)
{
    return number == ErrorNumber::Overflow || number == ErrorNumber::OutOfMemory ||
           number == ErrorNumber::SubscriptOutOfRange || number == ErrorNumber::TypeMismatch ||
           number == ErrorNumber::InvalidFileFormat;
}

} // namespace

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

bool ReplyDispatcher::HandleData(std::string_view body, const ReplyOwner& owner, Ticket handler)
{
    const InterfaceLock lock(m_interface);
    if (isPluginMessage(body)) {
        std::optional<PluginMessage> message;
        m_reporter.trap("HandleData", [&] {
            message = decodePluginMessage(body);
            if (m_pluginOwner)
                m_pluginHandler(message->component, message->payload);
        });
        return message.has_value(); // what a plugin makes of it is its own affair
    }
    const auto found = m_handlers.find(handler);
    if (found == m_handlers.end() || !found->second.owner)
        return true;
    const KeepingHandler handle = found->second.handler; // a handler may open the window that registers the next one
    bool isWellFormed = true;
    m_reporter.trap("HandleData", [&] {
        try {
            handle(body, owner);
        } catch (const RuntimeError& error) {
            isWellFormed = !isFaultOfText(error.number());
            throw;
        }
    });
    return isWellFormed;
}

BoxHold ReplyDispatcher::holdBoxes()
{
    return BoxHold(m_reporter.boxes());
}
