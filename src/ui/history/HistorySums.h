// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"
#include "ui/history/TrafficTypes.h"

#include <QDate>
#include <QHash>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <map>
#include <utility>

/// What `Totals` are summed by.
enum class TotalsBy
{
    Nothing,
    Day,      ///< Julian days.
    Hour,     ///< 0 to 23.
    WeekHour, ///< See `weekHourSlot`.
};

/// 0 is Monday's first hour, 167 Sunday's last.
constexpr int weekHourSlot(qint64 julianDay, int hour)
{
    constexpr int daysOfWeek = 7;
    constexpr int hoursOfDay = 24;
    return static_cast<int>(julianDay % daysOfWeek) * hoursOfDay + hour;
}

/// The group that counts of an hour belong to.
constexpr qint64 totalsGroup(TotalsBy by, qint64 julianDay, int hour)
{
    switch (by) {
    case TotalsBy::Nothing:
        return 0;
    case TotalsBy::Day:
        return julianDay;
    case TotalsBy::Hour:
        return hour;
    case TotalsBy::WeekHour:
        return weekHourSlot(julianDay, hour);
    }
    return 0;
}

using TotalsSums = std::map<qint64, Totals>; ///< By group; see `TotalsBy`.
using NumberSums = QHash<int, qint64>;
using TextSums = QHash<QString, qint64>;
using CellSums = QHash<std::pair<int, int>, qint64>; ///< By column and row.

/// What was counted in one application.
struct ApplicationCounts
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 scrolls = 0;
    double inches = 0;
    qint64 frontSeconds = 0;

    /// The five columns from `at` on.
    static ApplicationCounts fromRow(const QSqlQuery& row, int at)
    {
        return {.keys = row.value(at).toLongLong(),
                .clicks = row.value(at + 1).toLongLong(),
                .scrolls = row.value(at + 2).toLongLong(),
                .inches = row.value(at + 3).toDouble(),
                .frontSeconds = row.value(at + 4).toLongLong()};
    }

    ApplicationCounts& operator+=(const ApplicationCounts& other)
    {
        keys += other.keys;
        clicks += other.clicks;
        scrolls += other.scrolls;
        inches += other.inches;
        frontSeconds += other.frontSeconds;
        return *this;
    }

    friend bool operator==(const ApplicationCounts&, const ApplicationCounts&) = default;
};

using TrafficSums = QHash<QString, TrafficTotals>;
using ServiceSums = QHash<std::pair<int, QString>, TrafficTotals>; ///< By port and transport.
using TrafficGroupSums = std::map<qint64, TrafficTotals>;          ///< By Julian day, or by hour.

/// The two columns from `at` on.
inline TrafficTotals trafficFromRow(const QSqlQuery& row, int at)
{
    return {.download = row.value(at).toLongLong(), .upload = row.value(at + 1).toLongLong()};
}

using ApplicationSums = QHash<QString, ApplicationCounts>; ///< By path.
using ApplicationDaySums = std::map<std::pair<QDate, QString>, ApplicationCounts>;
