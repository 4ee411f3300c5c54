// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QList>
#include <QMap>

#include <optional>

/// What one bar of a chart over time stands for.
enum class TimeStep
{
    Day,
    Week,
    Month,
};

/// Days that lie together. Plain value.
struct DaySpan
{
    QDate first;
    QDate last; ///< Included.
    friend bool operator==(const DaySpan&, const DaySpan&) = default;
};

/// Over time, in steps that a chart has room for and a reader can tell apart. Any thread.
namespace TimeSteps {

constexpr int DaysPerWeek = 7;

/// Days below a quarter of a year, weeks below two years, months from there on.
TimeStep forDays(const QDate& first, const QDate& last);

/// The steps from `first` to `last`, without a gap. What lies outside these days is cut off the
/// first and the last step.
QList<DaySpan> spans(const QDate& first, const QDate& last, TimeStep step, Qt::DayOfWeek weekStart);

/// The sum of `values` over each of `spans`, which are in order; nothing where it holds none.
QList<std::optional<double>> sums(const QList<DaySpan>& spans, const QMap<QDate, double>& values);

} // namespace TimeSteps
