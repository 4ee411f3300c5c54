// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/OverviewTables.h"

#include "ui/overview/BaselineText.h"

#include <QCoreApplication>
#include <QLocale>

#include <cmath>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(OverviewTables)
};

FiguresModel::Row rowOf(const QVariant& time, const std::function<double(Measure)>& value,
                        Format::Lengths lengths)
{
    FiguresModel::Row cells{time};
    for (const Measure measure : Measures::All) {
        const double raw = value(measure);
        cells.append(measure == Measure::Travel ? QVariant(raw / tableUnit(lengths).inches)
                                                : QVariant(static_cast<qint64>(std::llround(raw))));
    }
    return cells;
}

std::function<double(Measure)> valuesOf(const Totals& totals)
{
    return [totals](Measure measure) { return Measures::value(measure, totals); };
}

} // namespace

QList<FiguresModel::Column> OverviewTables::columns(const QString& time, Format::Lengths lengths)
{
    const auto length = [](const QVariant& raw) {
        return QLocale(QLocale::English, QLocale::UnitedStates).toString(raw.toDouble(), 'f', 1);
    };
    QList<FiguresModel::Column> columns{FiguresModel::timeColumn(time)};
    for (const Measure measure : Measures::All) {
        const QString name = Measures::quantity(measure, lengths).name;
        columns.append(
            measure == Measure::Uptime ? FiguresModel::durationColumn(name)
            : measure == Measure::Travel
                ? FiguresModel::Column{.header = Text::tr("%1 (%2)", "a length, its unit")
                                                     .arg(name, tableUnit(lengths).name),
                                       .text = length}
                : FiguresModel::countColumn(name));
    }
    return columns;
}

FiguresModel::Row OverviewTables::row(const QString& label, const Totals& totals,
                                      Format::Lengths lengths)
{
    return rowOf(label, valuesOf(totals), lengths);
}

QList<FiguresModel::Row> OverviewTables::days(const QList<DayTotals>& days, Format::Lengths lengths)
{
    QList<FiguresModel::Row> rows;
    for (const DayTotals& day : days) {
        rows.append(rowOf(day.day, valuesOf(day.totals), lengths));
    }
    return rows;
}

QList<FiguresModel::Row> OverviewTables::hours(const QList<HourTotals>& hours,
                                               Format::Lengths lengths)
{
    QList<FiguresModel::Row> rows;
    for (const HourTotals& hour : hours) {
        rows.append(rowOf(hour.hour, valuesOf(hour.totals), lengths));
    }
    return rows;
}

QList<FiguresModel::Row> OverviewTables::totals(const QString& label,
                                                const OverviewFigures& figures, const QTime& time,
                                                Format::Lengths lengths)
{
    QList<FiguresModel::Row> rows{row(label, figures.totals, lengths)};
    for (const Baseline& baseline : figures.baselines) {
        rows.append(rowOf(
            BaselineText::caption(baseline),
            [&baseline, &time](Measure measure) { return baseline.value(measure, time); },
            lengths));
    }
    return rows;
}
