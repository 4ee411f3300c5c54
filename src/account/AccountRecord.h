// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"
#include "account/ZurgeAmounts.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// What the client must remember of its account between two runs, besides the counts. Plain value;
/// kept in the ".tvw" file alone.
struct AccountRecord
{
    AccountIdentity identity;
    QString zurgeToken;                    ///< Goes with the next zurge; never logged.
    QDateTime lastZurge;                   ///< When the last one began; invalid: never.
    std::optional<ZurgeInFlight> inFlight; ///< Nothing where every zurge was answered.

    friend bool operator==(const AccountRecord&, const AccountRecord&) = default;
};
