#include "platform/net/KeepAlive.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

void watchConnection(std::intptr_t socket, const KeepAlive& keepAlive)
{
    const auto set = [socket](int level, int option, auto value) {
        const int number = static_cast<int>(value);
        static_cast<void>(setsockopt(static_cast<int>(socket), level, option, &number, sizeof number));
    };
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
#ifdef TCP_KEEPIDLE
    set(IPPROTO_TCP, TCP_KEEPIDLE, keepAlive.idle.count());
    set(IPPROTO_TCP, TCP_KEEPINTVL, keepAlive.pause.count());
    set(IPPROTO_TCP, TCP_KEEPCNT, keepAlive.probes);
#endif
#ifdef TCP_USER_TIMEOUT
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, keepAlive.unacknowledged.count());
#endif
}
