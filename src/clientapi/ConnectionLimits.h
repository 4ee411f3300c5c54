// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <chrono>

/// What one connection, and all of one listening socket, may ask of the client. Plain value.
struct ConnectionLimits
{
    enum class WhenFull
    {
        DropIdlest, ///< The connection that has been silent longest makes room.
        Refuse,     ///< The new one is closed at once.
    };

    int connections = 0; ///< Per listening socket.
    WhenFull whenFull = WhenFull::Refuse;
    qint64 unansweredBytes = 0; ///< Received since something was last sent to it.

    /// Waiting for a client that does not read when more is to be sent to it. One answer of any
    /// length may wait.
    qint64 unsentBytes = 0;

    /// From the first byte of a request to its answer; zero: any.
    std::chrono::milliseconds unanswered{0};

    /// Without a byte in either direction; zero: any.
    std::chrono::milliseconds idle{0};
};
