// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/OverviewFigures.h"

#include "ui/history/History.h"

namespace {

/// The totals of each hour of the day over all weekdays.
QList<HourTotals> byHour(const QList<WeekHourTotals>& weekHours)
{
    QMap<int, Totals> sums;
    for (const WeekHourTotals& one : weekHours) {
        sums[one.hour] += one.totals;
    }
    QList<HourTotals> hours;
    for (auto sum = sums.cbegin(); sum != sums.cend(); ++sum) {
        hours.append({sum.key(), *sum});
    }
    return hours;
}

bool readMean(History& history, const HistoryScope& scope, Baseline& baseline)
{
    const auto days = history.days(scope);
    const auto weekHours = days ? history.weekHours(scope) : std::nullopt;
    if (!weekHours) {
        return false;
    }
    baseline.countedDays = static_cast<int>(days->size());
    for (const DayTotals& day : *days) {
        baseline.totals += day.totals;
    }
    baseline.cutDays = byHour(*weekHours);
    return true;
}

bool readSum(History& history, const HistoryScope& scope, Baseline& baseline)
{
    const auto totals = history.totals(scope);
    if (!totals) {
        return false;
    }
    baseline.totals = *totals;
    if (baseline.isCut) {
        const auto hours = history.hours({scope.last, scope.last, scope.profileId});
        baseline.cutDays = hours.value_or(QList<HourTotals>());
        return hours.has_value();
    }
    return true;
}

/// Fills in what was counted on the days of `baseline`, and appends it.
bool addBaseline(History& history, std::optional<Baseline> baseline, OverviewFigures& figures,
                 std::optional<int> profileId)
{
    if (!baseline || figures.firstDay.isNull() || baseline->days.last < figures.firstDay) {
        return true;
    }
    const HistoryScope scope{baseline->days.first, baseline->days.last, profileId};
    const bool isRead = baseline->kind == Baseline::Kind::Mean ? readMean(history, scope, *baseline)
                                                               : readSum(history, scope, *baseline);
    if (isRead && baseline->countedDays > 0) {
        figures.baselines.append(*baseline);
    }
    return isRead;
}

/// Takes an answer's value over; false where there is none.
template <typename Value>
bool take(std::optional<Value> answer, Value& target)
{
    if (!answer) {
        return false;
    }
    target = *std::move(answer);
    return true;
}

} // namespace

std::optional<QList<DayTotals>> OverviewFigures::readMonth(History& history, const QDate& month,
                                                           std::optional<int> profileId)
{
    return history.days({{month.year(), month.month(), 1},
                         {month.year(), month.month(), month.daysInMonth()},
                         profileId});
}

std::optional<OverviewFigures> OverviewFigures::read(History& history, const HistoryScope& scope,
                                                     const QDate& today, const QDate& month)
{
    OverviewFigures figures;
    figures.month = {month.year(), month.month(), 1};
    const bool isRead =
        take(history.firstDay(), figures.firstDay) && take(history.days(scope), figures.days) &&
        (!scope.isOneDay() || take(history.hours(scope), figures.hours)) &&
        take(history.keys(scope), figures.keys) &&
        take(history.applications(scope), figures.applications) &&
        take(readMonth(history, month, scope.profileId), figures.monthDays) &&
        addBaseline(history, Baselines::before(scope, today), figures, scope.profileId) &&
        addBaseline(history, Baselines::mean(scope, today), figures, scope.profileId);
    if (!isRead) {
        return std::nullopt;
    }
    for (const DayTotals& day : std::as_const(figures.days)) {
        figures.totals += day.totals;
    }
    return figures;
}
