// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>

/// One zurge and what came of it. Plain value.
struct ZurgeRecord
{
    enum class Origin
    {
        ByHand,
        Automatic,
    };

    enum class Outcome
    {
        Sent,
        Failed,
        Unanswered, ///< Whether the service took it is not known yet.
    };

    QDateTime time;
    Origin origin = Origin::ByHand;
    Outcome outcome = Outcome::Sent;
    quint64 keys = 0;
    quint64 clicks = 0;
    QString message = {}; ///< Why it failed, for the user to read.

    friend bool operator==(const ZurgeRecord&, const ZurgeRecord&) = default;
};
