#pragma once

#include "ui/EventWait.h"

class clsWinSock;
struct Request;

/// Sends `request` and lets GUI events run until its reply is handled, the link drops, the tracker has been silent for
/// `link.replyLimit`, or the program quits, which counts as a dropped link. While an earlier request is still to be
/// answered it waits for that first, because replies are told apart by the request sent last. A silent tracker is given
/// up: the link is then closed and the user told, once.
[[nodiscard]] WaitEnd ask(clsWinSock& link, const Request& request);
