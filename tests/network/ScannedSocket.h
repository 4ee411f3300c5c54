// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/SocketTable.h"

#include <cstdio>
#include <optional>
#include <string>

/// What the C library reads from a line of a socket table: the measure of the parser.
inline std::optional<SocketTable::Socket> scannedSocket(const std::string& line)
{
    SocketTable::Socket socket;
    unsigned long inode = 0;
    constexpr auto format = "%*d: %*X:%x %*X:%x %hx %*X:%*X %*X:%*X %*x %u %*u %lu";
    // What it makes of numbers that are too large is compared too.
    // NOLINTNEXTLINE(cert-err34-c)
    const int fields = std::sscanf(line.c_str(), format, &socket.localPort, &socket.remotePort,
                                   &socket.state, &socket.userId, &inode);
    constexpr int all = 5;
    socket.inode = inode;
    return fields == all ? std::optional(socket) : std::nullopt;
}
