#pragma once

#include "link/RawRequestFiles.h"

class AppFolder;
class clsMFD;
class clsWinSock;

/// Requests that other programs put into the folder "\RCData", one a file; each is sent unchanged and its reply awaited
/// before the next.
class RawRequestQueue
{
public:
    /// All three outlive the queue.
    RawRequestQueue(clsWinSock& link, const AppFolder& folder, const clsMFD& store);

    /// Sends what waits, in the order of the file names; to be called again and again, because a file is sent only when
    /// it is as the call before has found it. Does nothing while not connected, while a reply is still to come, or
    /// while an earlier call is still at it. A file is gone before its text is sent, so that nothing is ever sent
    /// twice; when the link drops, the files behind it stay.
    /// @throws RuntimeError behind all that could be sent, once for a file that cannot be read or removed
    void serve();

private:
    clsWinSock& m_link;
    RawRequestFiles m_files;
    bool m_isServing = false;
};
