// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The lines of "/proc/net/tcp", "udp", "tcp6" and "udp6", see proc_net_tcp(5).
namespace SocketTable {

/// What one line tells of its socket. Plain value.
struct Socket
{
    unsigned int localPort = 0;
    unsigned int remotePort = 0;
    unsigned short state = 0; ///< As in the kernel's net/tcp_states.h.
    unsigned int userId = 0;
    std::uint64_t inode = 0; ///< 0 once no process holds the socket any more.

    friend bool operator==(const Socket&, const Socket&) = default;
};

/// Reads a line, however damaged or cut off, exactly as sscanf(3) does by the format
/// "%*d: %*X:%x %*X:%x %hx %*X:%*X %*X:%*X %*x %u %*u %lu". Empty where it does not read all five.
/// Any thread.
std::optional<Socket> parse(std::string_view line);

/// Whether traffic of this socket is attributed to the program that holds it: system services, by
/// their low user ids, are left out. Any thread.
bool isAttributed(const Socket& socket);

} // namespace SocketTable
