#include "link/Ask.h"

#include "link/Request.h"
#include "link/clsWinSock.h"

#include <QPointer>

namespace {

WaitEnd awaitAnswer(clsWinSock& link)
{
    const QPointer<clsWinSock> alive(&link);
    const bool isRaw = link.pending() && link.pending()->name == rawRequestName;
    const WaitEnd end = EventWait(isRaw ? link.rawLimit : link.replyLimit)
                            .endsOn(&link, &clsWinSock::answered, WaitEnd::Done)
                            .endsOn(&link, &clsWinSock::linkLost, WaitEnd::Broken)
                            .endsOn(&link, &clsWinSock::requestForgotten, WaitEnd::TimedOut)
                            .restartsLimitOn(&link, &clsWinSock::chunkArrived)
                            .stopsLimitOn(&link, &clsWinSock::answering)
                            .run();
    if (end == WaitEnd::TimedOut && alive && link.pending())
        link.giveUp();
    return alive ? end : WaitEnd::Broken;
}

} // namespace

WaitEnd untilFree(clsWinSock& link)
{
    while (link.pending()) {
        if (awaitAnswer(link) == WaitEnd::Broken)
            return WaitEnd::Broken;
    }
    return link.isConnected() ? WaitEnd::Done : WaitEnd::Broken;
}

WaitEnd ask(clsWinSock& link, const Request& request, PendingRequest::Asked asked)
{
    if (untilFree(link) != WaitEnd::Done)
        return WaitEnd::Broken; // nothing is sent, so nothing will answer
    link.send(request, asked);
    return awaitAnswer(link);
}
