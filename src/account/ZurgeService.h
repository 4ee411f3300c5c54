// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/ClientCommunication.h"

#include <functional>

/// What a zurge needs of the outside. Who has it hands it to `LocalStats`; what is left out
/// refuses, or has nothing.
struct ZurgeService
{
    /// Sends a "zurge" request, or queues it. False: refused. Otherwise
    /// `LocalStats::processZurgeResponse` follows, and not before this returns.
    std::function<bool(const ClientCommunication::ZurgeRequest& zurge)> send =
        [](const ClientCommunication::ZurgeRequest&) { return false; };

    /// As above, "refresh_account_info", and `LocalStats::processAccountInfo`.
    std::function<bool()> askAccountInfo = [] { return false; };

    /// Builds the hourly series that goes with a zurge.
    std::function<ClientCommunication::Map()> timeSeries = [] {
        return ClientCommunication::Map();
    };
};
