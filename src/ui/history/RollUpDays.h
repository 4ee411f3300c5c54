// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/CountTable.h"
#include "ui/history/HourRows.h"
#include "ui/history/RollUpMonths.h"

#include <QList>
#include <QSqlDatabase>
#include <QVariant>

#include <array>
#include <optional>
#include <set>

/// What was counted on one day, as read from the hourly rows. Plain value.
struct DayCounts
{
    qint64 day = 0; ///< Julian.
    HourSums hours;

    /// Rows of profile, things and sums, by `CountTable`.
    std::array<QList<QVariantList>, CountTables.size()> counts;
};

/// Writes days into the roll-ups, inside the caller's transaction. All return false where a
/// statement failed, which is in the log.
///
/// Thread: that of the connection.
class RollUpDays
{
public:
    /// `connection` is that of a `RollUpFile`.
    explicit RollUpDays(const QSqlDatabase& connection);

    /// Reads a day, each table by one short statement; nothing where one failed.
    static std::optional<DayCounts> read(const QSqlDatabase& history, qint64 day);

    /// Adds a day of which nothing is there yet.
    bool add(const DayCounts& counts);

    /// Deletes what is there of some days.
    bool forget(const DayRange& days);

    /// Sums those of `months` anew of which days changed; due before the transaction ends.
    bool sumMonths(const MonthRange& months);

    /// As if a day of it had changed: a month whose days were summed before is about to be read.
    void addChanged(int month);

private:
    bool addHours(const DayCounts& counts);
    bool addCounts(CountTable table, const DayCounts& counts);
    bool sumMonth(CountTable table, int month);

    QSqlDatabase m_connection;
    std::set<int> m_changedMonths;
};
