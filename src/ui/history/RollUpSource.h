// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistorySource.h"
#include "ui/history/RollUpMonths.h"

#include <QSqlDatabase>

/// The counts that the roll-ups hold; those of whole months are read from the sums of months.
///
/// Thread: that of the connection.
class RollUpSource final : public HistorySource
{
public:
    /// `connection` is that of a `RollUpFile`; `months` are those that were summed.
    RollUpSource(const QSqlDatabase& connection, const MonthRange& months);

    bool addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums) override;
    bool eachCount(CountTable table, const HistoryScope& scope, const TakeRow& take) override;
    bool addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                            ApplicationDaySums& sums) override;
    bool addTrafficDays(const HistoryScope& scope, TrafficGroupSums& sums) override;

private:
    QSqlDatabase m_connection;
    MonthRange m_months;
};
