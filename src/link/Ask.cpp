#include "link/Ask.h"

#include "link/Request.h"
#include "link/clsWinSock.h"

#include <QPointer>

namespace {

WaitEnd awaitReply(clsWinSock& link)
{
    const QPointer<clsWinSock> alive(&link);
    const WaitEnd end = EventWait(link.replyLimit)
                            .endsOn(&link, &clsWinSock::replyHandled, WaitEnd::Replied)
                            .endsOn(&link, &clsWinSock::linkLost, WaitEnd::LinkDropped)
                            .restartsLimitOn(&link, &clsWinSock::chunkArrived)
                            .stopsLimitOn(&link, &clsWinSock::replyComplete)
                            .run();
    if (end == WaitEnd::TimedOut && alive)
        link.giveUp();
    return alive ? end : WaitEnd::LinkDropped;
}

} // namespace

WaitEnd ask(clsWinSock& link, const Request& request)
{
    while (link.isAwaitingReply()) {
        const WaitEnd end = awaitReply(link);
        if (end != WaitEnd::Replied)
            return end;
    }
    if (!link.isConnected())
        return WaitEnd::LinkDropped; // nothing is sent, so nothing will answer
    link.SendData(request.name, request.head, request.tail);
    return awaitReply(link);
}
