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
    bool addKeys(const HistoryScope& scope, NumberSums& sums) override;
    bool addCombinations(const HistoryScope& scope, TextSums& sums) override;
    bool addScrolls(const HistoryScope& scope, NumberSums& sums) override;
    bool addClickCells(const HistoryScope& scope, CellSums& sums) override;
    bool addApplications(const HistoryScope& scope, ApplicationSums& sums) override;
    bool addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                            ApplicationDaySums& sums) override;

    bool addButtons(const HistoryScope& scope, NumberSums& sums);

private:
    QSqlDatabase m_connection;
};
