// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/CountTable.h"
#include "ui/history/HistoryScope.h"
#include "ui/history/HistorySums.h"

#include <QSqlQuery>
#include <QStringList>

#include <functional>

/// Something that holds counts of days: the hourly rows, or what was summed of them before. Each
/// function adds to what it is given, so that days from several sources come together in one
/// answer. All return false where something could not be read, which is in the log; the sums are
/// then of no use.
///
/// Thread: the query worker's.
class HistorySource
{
public:
    /// Takes a row: its first value stands in column `at`.
    using TakeRow = std::function<void(const QSqlQuery& row, int at)>;

    HistorySource() = default;
    virtual ~HistorySource() = default;

    HistorySource(const HistorySource&) = delete;
    HistorySource& operator=(const HistorySource&) = delete;

    virtual bool addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums) = 0;

    /// Hands over rows of what is counted and its sums, in the order of the columns of
    /// `CountTableText`. One thing may come several times.
    virtual bool eachCount(CountTable table, const HistoryScope& scope, const TakeRow& take) = 0;

    virtual bool addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                                    ApplicationDaySums& sums) = 0;

    /// What crossed all interfaces, by Julian day. It is of no profile, so that of `scope` is not
    /// looked at.
    virtual bool addTrafficDays(const HistoryScope& scope, TrafficGroupSums& sums) = 0;
};
