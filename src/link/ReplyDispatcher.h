#pragma once

#include "diagnostics/report/MessageBoxes.h"
#include "link/ReplyAssembler.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

class LockableInterface;
class Reporter;

/// Hands every message of a logged-in client to the handler that was registered for the request when it was sent. Knows
/// no feature: rooms register theirs.
class ReplyDispatcher : public QObject
{
public:
    using Handler = std::function<void(std::string_view body)>;
    using KeepingHandler = std::function<void(std::string_view body, const ReplyOwner& owner)>;
    using PluginHandler = std::function<void(const std::string& component, const std::string& payload)>;

    /// @param interface  locked while a message is handled
    ReplyDispatcher(Reporter& reporter, LockableInterface& interface);

    /// Registers the handler for replies to `request`; it is called only while `owner` lives. A handler does not wait
    /// for replies itself; what must follow a reply it schedules. It takes the place of an earlier one, and a reply
    /// that was asked for before reaches neither.
    void on(const std::string& request, QObject* owner, Handler handler);
    /// The same for a handler that needs the body after it has returned: it is valid while a share in its owner is
    /// held.
    void on(const std::string& request, QObject* owner, KeepingHandler handler);
    /// Registers where messages to plugins go.
    void onPluginMessage(QObject* owner, PluginHandler handler);

    /// Stands for one registration: what a request takes along, so that its answer reaches who asked and nobody else.
    using Ticket = std::uint64_t;
    static constexpr Ticket nobody = 0;
    /// The handler that replies to `request` have now.
    Ticket handlerOf(const std::string& request) const;

    /// Handles one message body: a plugin's message goes to the plugins, anything else to `handler`. Whatever happens
    /// there, the interface is unlocked afterwards; a RuntimeError is reported under "HandleData".
    /// @param owner  holds `body`; not null
    /// @return false when the message is not what the protocol says
    bool HandleData(std::string_view body, const ReplyOwner& owner, Ticket handler);

    /// Holds boxes back while the result lives.
    BoxHold holdBoxes();

private:
    struct Entry
    {
        QPointer<QObject> owner;
        KeepingHandler handler;
    };

    Reporter& m_reporter;
    LockableInterface& m_interface;
    std::map<std::string, Ticket> m_tickets; ///< by request name
    std::map<Ticket, Entry> m_handlers;
    Ticket m_lastTicket = nobody;
    QPointer<QObject> m_pluginOwner;
    PluginHandler m_pluginHandler;
};
