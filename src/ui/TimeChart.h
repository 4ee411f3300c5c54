// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/SeriesChart.h"
#include "ui/TimeSteps.h"

#include <QDate>
#include <QMap>

/// A quantity over days, from zero: bars for one series, lines for several. Long ranges are summed
/// by week or by month, which its caption says. Days without a value are a gap. A click on a bar,
/// or Enter where the arrow keys are, asks for its days. Thread: main.
class TimeChart : public SeriesChart
{
    Q_OBJECT

public:
    struct DaySeries
    {
        QString name;
        int colour = Series::Accent;  ///< A category of `Ramp`; beyond them "other".
        QMap<QDate, double> values{}; ///< Days on which nothing was counted are left out.
    };

    explicit TimeChart(QWidget* parent = nullptr);

    /// Shows the days from `first` to `last`, both valid. Durations are in seconds, lengths in
    /// inches.
    void setDays(const QDate& first, const QDate& last, const Quantity& quantity,
                 const QList<DaySeries>& series);

    TimeStep step() const { return m_step; }

Q_SIGNALS:
    /// The user chose these days.
    void daysClicked(const QDate& first, const QDate& last);

protected:
    QString describe(int column) const override;
    QString summary() const override;
    void choose(int column) override;

private:
    Column columnFor(const DaySpan& span) const;
    QString caption(const QString& name) const;

    QList<DaySpan> m_spans;
    TimeStep m_step = TimeStep::Day;
};
