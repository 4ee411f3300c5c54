// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Quantity.h"
#include "ui/TimeSteps.h"

#include <QDate>
#include <QHash>
#include <QMap>
#include <QStackedWidget>

class HourChart;
class TimeChart;

/// The course of one quantity over the days of a view: by the hour where that is one day, else by
/// the day, week or month. Thread: main.
class CourseChart : public QStackedWidget
{
    Q_OBJECT

public:
    explicit CourseChart(QWidget* parent = nullptr);

    /// Shows one day; `values` by hour. Today, the present hour is marked.
    void setHours(const QDate& day, const Quantity& quantity, const QHash<int, double>& values);

    /// Shows the days from `first` to `last`, both valid. Days without a value are a gap.
    void setDays(const QDate& first, const QDate& last, const Quantity& quantity,
                 const QMap<QDate, double>& values);

    /// What the days last shown are summed by.
    TimeStep step() const;

Q_SIGNALS:
    /// The user chose these days.
    void daysClicked(const QDate& first, const QDate& last);

private:
    HourChart* m_hours;
    TimeChart* m_days;
};
