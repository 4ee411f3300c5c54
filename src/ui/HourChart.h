// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/HourSlots.h"
#include "ui/SeriesChart.h"

#include <QDate>
#include <QHash>

/// A quantity over the hours of one day as bars from zero. Hovering over an hour tells its exact
/// value. Thread: main.
class HourChart : public SeriesChart
{
    Q_OBJECT

public:
    explicit HourChart(QWidget* parent = nullptr);

    /// `values` by hour; an hour it lacks has none. Bars of an hour that comes twice on that day
    /// each show half of its value, since the two are stored as one. The hour of `now` is marked.
    void setDay(const QDate& day, const Quantity& quantity, const QHash<int, double>& values,
                const QDateTime& now);

protected:
    QString describe(int column) const override;
    QString summary() const override;

private:
    int columnOf(const QDateTime& time) const;

    QDate m_day;
    QList<HourSlot> m_hours;
    QHash<int, double> m_values;
};
