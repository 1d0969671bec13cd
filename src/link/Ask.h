#pragma once

#include "link/EventWait.h"
#include "link/clsWinSock.h"

struct Request;

/// Lets GUI events run until no request is under way, so that what is sent next goes out at once.
/// @return Broken when the link is down by then
[[nodiscard]] WaitEnd untilFree(clsWinSock& link);

/// Sends `request` and lets GUI events run until its answer is handled, the link drops, the tracker has been silent for
/// `link.replyLimit`, or the program quits, which counts as a dropped link. While an earlier request is still to be
/// answered it waits for that first, because an answer belongs to the request sent last. A silent tracker is given up:
/// the link is then closed and the user told, once; a request of the raw queue ends after `link.rawLimit`, alone.
/// @return Done only when the answer was handled
[[nodiscard]] WaitEnd ask(clsWinSock& link, const Request& request,
                          PendingRequest::Asked asked = PendingRequest::Asked::ByUser);
