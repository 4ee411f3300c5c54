// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpMonths.h"

#include <algorithm>

namespace {

constexpr int MonthsOfYear = 12;

} // namespace

int RollUpMonths::monthOf(qint64 julianDay)
{
    const QDate day = QDate::fromJulianDay(julianDay);
    return day.year() * MonthsOfYear + day.month() - 1;
}

DayRange RollUpMonths::daysOf(int month)
{
    const QDate first(month / MonthsOfYear, month % MonthsOfYear + 1, 1);
    return {.first = first.toJulianDay(), .last = first.toJulianDay() + first.daysInMonth() - 1};
}

RollUpMonths::Cut RollUpMonths::cut(const DayRange& days, const MonthRange& allowed)
{
    const int first = monthOf(days.first);
    const int last = monthOf(days.last);
    const bool isFirstWhole = days.first == daysOf(first).first;
    const bool isLastWhole = days.last == daysOf(last).last;
    const MonthRange months{.first = std::max(isFirstWhole ? first : first + 1, allowed.first),
                            .last = std::min(isLastWhole ? last : last - 1, allowed.last)};
    if (months.isEmpty()) {
        return {.head = days, .months = {}, .tail = {}};
    }
    return {.head = {.first = days.first, .last = daysOf(months.first).first - 1},
            .months = months,
            .tail = {.first = daysOf(months.last).last + 1, .last = days.last}};
}
