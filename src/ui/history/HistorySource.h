// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/history/HistorySums.h"

#include <QStringList>

/// Something that holds counts of days: the hourly rows, or what was summed of them before. Each
/// function adds to the sums it is given, so that days from several sources come together in one
/// answer. All return false where something could not be read, which is in the log; the sums are
/// then of no use.
///
/// Thread: the query worker's.
class HistorySource
{
public:
    HistorySource() = default;
    virtual ~HistorySource() = default;

    HistorySource(const HistorySource&) = delete;
    HistorySource& operator=(const HistorySource&) = delete;

    virtual bool addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums) = 0;
    virtual bool addKeys(const HistoryScope& scope, NumberSums& sums) = 0;
    virtual bool addCombinations(const HistoryScope& scope, TextSums& sums) = 0;
    virtual bool addScrolls(const HistoryScope& scope, NumberSums& sums) = 0;
    virtual bool addClickCells(const HistoryScope& scope, CellSums& sums) = 0;
    virtual bool addApplications(const HistoryScope& scope, ApplicationSums& sums) = 0;
    virtual bool addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                                    ApplicationDaySums& sums) = 0;
};
