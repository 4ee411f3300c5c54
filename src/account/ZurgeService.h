// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/ClientCommunication.h"

#include <functional>

/// What a zurge needs of the outside. Who has it hands it to `LocalStats`; what is left out
/// refuses, or has nothing.
struct ZurgeService
{
    /// Sends a "zurge" request, or queues it. False: refused, and no answer follows.
    std::function<bool(const ClientCommunication::ZurgeRequest& zurge)> send =
        [](const ClientCommunication::ZurgeRequest&) { return false; };

    /// Sends a "refresh_account_info" request, or queues it. False as above.
    std::function<bool()> askAccountInfo = [] { return false; };

    /// Whether a "zurge" request waits in the queue, or for its answer.
    std::function<bool()> isUnderWay = [] { return false; };

    /// Builds the hourly series that goes with a zurge.
    std::function<ClientCommunication::Map()> timeSeries = [] {
        return ClientCommunication::Map();
    };
};
