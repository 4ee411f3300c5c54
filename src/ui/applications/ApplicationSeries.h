// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/TimeChart.h"
#include "ui/applications/ApplicationMeasure.h"

#include <QStringList>

#include <functional>

/// Which applications a chart compares, and their values over days. Any thread.
namespace ApplicationSeries {

struct Choice
{
    QStringList own;   ///< Those with a line each, in the order of their colours.
    QStringList other; ///< Those whose sum has one line together.

    friend bool operator==(const Choice&, const Choice&) = default;
};

/// The first of `applications` by `measure`: of those `selected`, or, where none is, the top five.
/// Those shown `before` keep their order, and so mostly their colours.
Choice choose(const QList<ApplicationTotals>& applications, const QStringList& selected,
              ApplicationMeasure measure, const Choice& before);

/// A series to each of `choice`, the sum of the others last. On the days of `counted`, on which
/// anything was, an application that was not used has zero. `name` finds what to call a path.
QList<TimeChart::DaySeries> series(const Choice& choice, const QList<ApplicationDay>& days,
                                   const QList<QDate>& counted, ApplicationMeasure measure,
                                   const std::function<QString(const QString& path)>& name,
                                   const QString& otherName);

} // namespace ApplicationSeries
