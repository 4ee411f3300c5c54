// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistorySums.h"
#include "ui/history/KnownApplications.h"

#include <QList>

/// Sums as the lists that `History` answers with, without entries of zero and in their order.
namespace HistoryLists {

QList<DayTotals> days(const TotalsSums& sums);
QList<HourTotals> hours(const TotalsSums& sums);
QList<WeekHourTotals> weekHours(const TotalsSums& sums);
QList<KeyCount> keys(const NumberSums& sums);
QList<CombinationCount> combinations(const TextSums& sums, int limit);
QList<ButtonCount> buttons(const NumberSums& sums);
QList<ScrollCount> scrolls(const NumberSums& sums);
QList<ClickCell> clickCells(const CellSums& sums);
QList<ApplicationTotals> applications(const ApplicationSums& sums,
                                      const QHash<QString, ApplicationFacts>& known);
QList<ApplicationDay> applicationDays(const ApplicationDaySums& sums);

} // namespace HistoryLists
