// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>

/// Days, both included; none where the last is before the first. Plain value.
struct DayRange
{
    qint64 first = 1; ///< Julian days.
    qint64 last = 0;

    bool isEmpty() const { return last < first; }

    qint64 count() const { return isEmpty() ? 0 : last - first + 1; }

    friend bool operator==(const DayRange&, const DayRange&) = default;
};

/// Months, both included, numbered without a gap over all years; none where the last is before the
/// first. Plain value.
struct MonthRange
{
    int first = 1;
    int last = 0;

    bool isEmpty() const { return last < first; }

    bool contains(int month) const { return month >= first && month <= last; }
};

namespace RollUpMonths {

int monthOf(qint64 julianDay);
DayRange daysOf(int month);

/// Days cut into whole months and what is left of days before and behind them. Plain value.
struct Cut
{
    DayRange head;
    MonthRange months;
    DayRange tail;
};

/// No month but those in `allowed`.
Cut cut(const DayRange& days, const MonthRange& allowed);

} // namespace RollUpMonths
