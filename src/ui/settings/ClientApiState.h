// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

/// What the client API does now. Plain value; as it is made: off, as the settings want it.
struct ClientApiState
{
    int httpPort = 0;      ///< Where it listens; 0 while it is off, like the next.
    int websocketPort = 0; ///< TCP, as the other.

    /// The port that it could not listen at, which keeps it off.
    std::optional<int> refusedPort = std::nullopt;
};
