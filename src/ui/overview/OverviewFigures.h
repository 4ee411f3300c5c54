// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/overview/Baseline.h"

#include <QDate>

#include <optional>

class History;

/// What the overview shows of some days. Plain value.
struct OverviewFigures
{
    QDate firstDay; ///< On which anything was counted; null where nothing was.
    Totals totals;
    QList<DayTotals> days;
    QList<HourTotals> hours;   ///< Where the scope is one day.
    QList<Baseline> baselines; ///< What the totals are compared with.
    QList<KeyCount> keys;
    QList<ApplicationTotals> applications;
    QDate month; ///< Its first day.
    QList<DayTotals> monthDays;

    /// Asks for all of it; nothing where the database could not be read. `month` is any day of the
    /// calendar's. Thread: the query worker's.
    static std::optional<OverviewFigures> read(History& history, const HistoryScope& scope,
                                               const QDate& today, const QDate& month);

    /// The days of one month, in their order.
    static std::optional<QList<DayTotals>> readMonth(History& history, const QDate& month,
                                                     std::optional<int> profileId);
};
