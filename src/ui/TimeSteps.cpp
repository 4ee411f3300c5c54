// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TimeSteps.h"

#include <algorithm>

namespace {

QDate lastOfStep(const QDate& day, TimeStep step, Qt::DayOfWeek weekStart)
{
    switch (step) {
    case TimeStep::Week: {
        const int sinceStart =
            (day.dayOfWeek() - weekStart + TimeSteps::DaysPerWeek) % TimeSteps::DaysPerWeek;
        return day.addDays(TimeSteps::DaysPerWeek - 1 - sinceStart);
    }
    case TimeStep::Month:
        return {day.year(), day.month(), day.daysInMonth()};
    case TimeStep::Day:
        break;
    }
    return day;
}

} // namespace

TimeStep TimeSteps::forDays(const QDate& first, const QDate& last)
{
    constexpr int weeksFrom = 93;
    constexpr int monthsFrom = 2 * 365;
    const qint64 days = first.daysTo(last) + 1;
    return days < weeksFrom ? TimeStep::Day : days < monthsFrom ? TimeStep::Week : TimeStep::Month;
}

QList<DaySpan> TimeSteps::spans(const QDate& first, const QDate& last, TimeStep step,
                                Qt::DayOfWeek weekStart)
{
    QList<DaySpan> spans;
    for (QDate day = first; day.isValid() && day <= last; day = spans.constLast().last.addDays(1)) {
        spans.append({day, std::min(lastOfStep(day, step, weekStart), last)});
    }
    return spans;
}

QList<std::optional<double>> TimeSteps::sums(const QList<DaySpan>& spans,
                                             const QMap<QDate, double>& values)
{
    QList<std::optional<double>> sums(spans.size());
    for (qsizetype i = 0; i < spans.size(); ++i) {
        const auto end = values.upperBound(spans.at(i).last);
        for (auto value = values.lowerBound(spans.at(i).first); value != end; ++value) {
            sums[i] = sums.at(i).value_or(0) + *value;
        }
    }
    return sums;
}
