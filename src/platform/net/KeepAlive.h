#pragma once

#include <chrono>
#include <cstdint>

/// How soon a connection is given up whose other side has gone without a word: a cable pulled, a machine without power.
struct KeepAlive
{
    std::chrono::seconds idle{30};  ///< silence before the first probe
    std::chrono::seconds pause{10}; ///< between probes
    int probes = 3;                 ///< that stay without an answer
    /// How long what was sent may stay unacknowledged; where the system can be told so.
    std::chrono::milliseconds unacknowledged = std::chrono::seconds(60);
};

/// Has the system look after a connected stream socket. What it refuses stays as the system has it.
/// @param socket  its descriptor
void watchConnection(std::intptr_t socket, const KeepAlive& keepAlive = {});
