#pragma once

#include "link/ReplyAssembler.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <string>
#include <string_view>

class LockableInterface;
class Reporter;

/// Hands every message of a logged-in client to the handler that is registered for the pending request. Knows no
/// feature: rooms register theirs.
class ReplyDispatcher : public QObject
{
public:
    using Handler = std::function<void(std::string_view body)>;
    using KeepingHandler = std::function<void(std::string_view body, const ReplyOwner& owner)>;
    using PluginHandler = std::function<void(const std::string& component, const std::string& payload)>;

    /// @param interface  locked while a message is handled
    ReplyDispatcher(Reporter& reporter, LockableInterface& interface);

    /// Registers the handler for replies to `request`; it is called only while `owner` lives. A handler does not wait
    /// for replies itself; what must follow a reply it schedules. A reply that is due already was asked for by another
    /// owner and reaches nobody.
    void on(const std::string& request, QObject* owner, Handler handler);
    /// The same for a handler that needs the body after it has returned: it is valid while a share in its owner is
    /// held.
    void on(const std::string& request, QObject* owner, KeepingHandler handler);
    /// Registers where messages to plugins go.
    void onPluginMessage(QObject* owner, PluginHandler handler);

    /// Handles one message body. Whatever happens in a handler, no request is pending afterwards and the interface is
    /// unlocked; a RuntimeError is reported under "HandleData".
    /// @param owner  holds `body`; not null
    void HandleData(std::string_view body, const ReplyOwner& owner);

    /// The name of the request sent last, empty when none is pending. Written by `clsWinSock::SendData`, cleared here
    /// and when the link leaves the connected state.
    std::string pendingRequest;

private:
    struct Entry
    {
        QPointer<QObject> owner;
        KeepingHandler handler;
    };

    Reporter& m_reporter;
    LockableInterface& m_interface;
    std::map<std::string, Entry, std::less<>> m_handlers;
    QPointer<QObject> m_pluginOwner;
    PluginHandler m_pluginHandler;
};
