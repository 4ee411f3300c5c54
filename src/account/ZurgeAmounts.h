// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/UnzurgedCounts.h"

#include <QDateTime>
#include <QHash>
#include <QString>

/// The counts asked for by who starts a zurge, in the service's units; 0 stands for all there are.
struct ZurgeWish
{
    quint64 keys = 0;
    quint64 clicks = 0;
    quint64 uptimeSeconds = 0;
    quint64 downloadMiB = 0;
    quint64 uploadMiB = 0;
    quint64 scrolls = 0;
    quint64 distanceInches = 0;
};

/// Amounts that were put on the wire and that the service has not confirmed yet. In the units of
/// `UnzurgedCounts`, and always whole in the service's units: whole MiB, whole seconds.
struct ZurgeInFlight
{
    QString token; ///< The zurge token sent with them: the service changes it when it takes them.
    QDateTime time;
    UnzurgedCounts totals;
    QHash<QString, UnzurgedCounts> applications; ///< By executable path.
    qint64 userId = 0;                           ///< Whose they are; see `AccountIdentity`.
    qint64 computerId = 0;

    friend bool operator==(const ZurgeInFlight&, const ZurgeInFlight&) = default;
};

namespace ZurgeAmounts {

/// What to send: for each counter the wished value, or the stored one where the wish is 0 or the
/// stored value is more than twice the wish. Never more than is stored.
UnzurgedCounts choose(const ZurgeWish& wish, const UnzurgedCounts& stored);

/// The part that the service's units can tell: whole MiB, whole seconds.
UnzurgedCounts wholeUnits(const UnzurgedCounts& counts);

/// Takes `sent` away, and stops at zero.
UnzurgedCounts subtract(const UnzurgedCounts& counts, const UnzurgedCounts& sent);

/// "keys 10, clicks 2, ...", in the counters' own units, for the log. Counters at zero are left
/// out.
QString describe(const UnzurgedCounts& counts);

} // namespace ZurgeAmounts
