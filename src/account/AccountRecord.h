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
    QString zurgeToken;  ///< Goes with the next zurge; never logged.
    QDateTime lastZurge; ///< When the last one began; invalid: never.

    /// Nothing where every zurge was answered. May be of an account that was signed in before: it
    /// is the one to ask, should it come back before another one zurges.
    std::optional<ZurgeInFlight> inFlight;

    /// Those in flight that are of this account and computer; null where there are none.
    const ZurgeInFlight* ownInFlight() const
    {
        const bool isOwn = inFlight && inFlight->userId == identity.userId &&
                           inFlight->computerId == identity.computerId;
        return isOwn ? &*inFlight : nullptr;
    }

    friend bool operator==(const AccountRecord&, const AccountRecord&) = default;
};
