// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/TimeSteps.h"
#include "ui/history/HistoryScope.h"
#include "ui/history/HistoryTypes.h"
#include "ui/overview/Measure.h"

#include <QTime>

#include <optional>

/// What the figures of some days are compared with. Plain value. Thread: any.
///
/// A day that is not over yet is compared with as much of other days: their hours until the present
/// time, of the present hour the part that has passed. Comparing it with whole days would promise
/// too little every morning.
struct Baseline
{
    enum class Kind
    {
        WeekBefore, ///< One day, a week before today.
        Mean,       ///< A mean day of those before today on which something was counted.
        DaysBefore, ///< As many days, right before.
    };

    Kind kind = Kind::DaysBefore;
    DaySpan days{};
    int countedDays = 1; ///< Of `days`, those that `value` is a mean of; 1 for a sum.
    Totals totals{};     ///< Of whole days.
    bool isCut = false;  ///< At the present time, on the last day or, for the mean, on each.
    QList<HourTotals> cutDays{}; ///< The hours of the days that are cut.

    /// What is comparable at `time` of day.
    double value(Measure measure, const QTime& time) const;
};

namespace Baselines {

/// The days to compare those of `scope` with: for today the same day last week, else as many days
/// right before. Nothing where `scope` has no first day.
std::optional<Baseline> before(const HistoryScope& scope, const QDate& today);

/// The 30 days before today, where `scope` is today.
std::optional<Baseline> mean(const HistoryScope& scope, const QDate& today);

} // namespace Baselines

/// How one value differs from another. Plain value.
struct Change
{
    enum class Kind
    {
        Same, ///< To the per cent.
        More,
        Less,
        New, ///< There was nothing before.
    };

    Kind kind = Kind::Same;
    qint64 percent = 0; ///< Of the value before; never negative.

    static Change between(double value, double before);

    /// An arrow and a signed percentage, or "new".
    QString text() const;

    /// "12 % more than", or "as much as", to be followed by what it is compared with.
    QString words(const QString& baseline) const;

    friend bool operator==(const Change&, const Change&) = default;
};
