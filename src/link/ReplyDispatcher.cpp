#include "link/ReplyDispatcher.h"

#include "diagnostics/Reporter.h"
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
    if (pendingRequest == request)
        pendingRequest.clear(); // what is due was asked for by the owner before, and not for this one's purpose
    m_handlers[request] = {owner, std::move(handler)};
}

void ReplyDispatcher::onPluginMessage(QObject* owner, PluginHandler handler)
{
    m_pluginOwner = owner;
    m_pluginHandler = std::move(handler);
}

void ReplyDispatcher::HandleData(std::string_view body, const ReplyOwner& owner)
{
    const InterfaceLock lock(m_interface);
    const bool isForPlugin = isPluginMessage(body);
    const std::string request = std::exchange(pendingRequest, {});
    if (isForPlugin) {
        m_reporter.trap("HandleData", [&] {
            const PluginMessage message = decodePluginMessage(body);
            if (m_pluginOwner)
                m_pluginHandler(message.component, message.payload);
        });
        return;
    }
    const auto found = m_handlers.find(request);
    if (found != m_handlers.end() && found->second.owner)
        m_reporter.trap("HandleData", [&] { found->second.handler(body, owner); });
}
