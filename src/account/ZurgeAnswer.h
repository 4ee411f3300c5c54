// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/OnlineFigures.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

/// What the service answers to a zurge that it took. Plain value.
struct ZurgeAnswer
{
    QString token; ///< Goes with the next zurge.
    OnlineTotals totals;
    OnlineRanks ranks;
    bool hasComputerInfo = true; ///< Also where the service does not say.

    /// From the answer's "data"; nothing unless all of it is there and of its own type.
    static std::optional<ZurgeAnswer> from(const QMap<QString, QVariant>& data);
};

/// What the service says of the account, as far as zurges go. Plain value.
struct AccountInfo
{
    QString token; ///< Of the next zurge; empty where the service does not say.
    std::optional<OnlineTotals> totals;
    std::optional<OnlineRanks> ranks;

    /// From an answer's "data"; each field for itself, and left out where it is not as it should
    /// be.
    static AccountInfo from(const QMap<QString, QVariant>& data);
};
