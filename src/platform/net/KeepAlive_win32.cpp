#include "platform/net/KeepAlive.h"

#include <winsock2.h>

#include <mstcpip.h>

/// The number of probes, and how long data may stay unacknowledged, are the system's own here.
void watchConnection(std::intptr_t socket, const KeepAlive& keepAlive)
{
    using Milliseconds = std::chrono::duration<ULONG, std::milli>;
    tcp_keepalive values{.onoff = 1,
                         .keepalivetime = std::chrono::duration_cast<Milliseconds>(keepAlive.idle).count(),
                         .keepaliveinterval = std::chrono::duration_cast<Milliseconds>(keepAlive.pause).count()};
    DWORD written = 0;
    static_cast<void>(WSAIoctl(static_cast<SOCKET>(socket), SIO_KEEPALIVE_VALS, &values, sizeof values, nullptr, 0,
                               &written, nullptr, nullptr));
}
