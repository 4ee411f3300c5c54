// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistorySource.h"

#include <QSqlDatabase>

/// The hourly rows of the client's database. Each question takes a few milliseconds per day that is
/// asked for, so ask for few days at a time: a reader holds up whoever writes.
///
/// Thread: that of the connection.
class RawHistory final : public HistorySource
{
public:
    explicit RawHistory(const QSqlDatabase& connection);

    bool addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums) override;
    bool eachCount(CountTable table, const HistoryScope& scope, const TakeRow& take) override;
    bool addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                            ApplicationDaySums& sums) override;
    bool addTrafficDays(const HistoryScope& scope, TrafficGroupSums& sums) override;

    /// By hour; of a few days at most, and of no profile either.
    bool addTrafficHours(const HistoryScope& scope, TrafficGroupSums& sums);

    /// Clicks by button. They are few, as none is kept for longer than three months.
    bool addButtons(const HistoryScope& scope, NumberSums& sums);

private:
    QSqlDatabase m_connection;
};
