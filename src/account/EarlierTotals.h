// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

class Database;

/// What this computer had sent to the account before its database began. Plain value, in the
/// service's units.
class EarlierTotals final
{
public:
    /// From the service's object; nothing (logged) where a total is missing, of another type, or
    /// negative, or where there are none.
    static std::optional<EarlierTotals> from(const QMap<QString, QVariant>& computerStats);

    /// Writes them as one row per table on a day before all others, in place of the rows written
    /// there before; all or nothing. False (logged) where that failed. Main connection; begins and
    /// ends a transaction.
    bool store(Database& database) const;

private:
    bool storeCounts(Database& database) const;
    bool storeBandwidth(Database& database) const;

    qint64 m_keys = 0;
    qint64 m_clicks = 0;
    qint64 m_downloadMiB = 0;
    qint64 m_uploadMiB = 0;
    qint64 m_uptimeSeconds = 0;
    qint64 m_scrolls = 0;
    qint64 m_distanceInches = 0;
};
