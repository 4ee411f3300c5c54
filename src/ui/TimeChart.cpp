// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TimeChart.h"

#include <QLocale>

#include <algorithm>

namespace {

constexpr int MonthsPerQuarter = 3;

QString englishDate(const QDate& day, const QString& format)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(day, format);
}

/// The rank of a month's label: years stay longest, then quarters.
int monthRank(const QDate& month)
{
    constexpr int lustrum = 5;
    if (month.month() != 1) {
        return month.month() % MonthsPerQuarter == 1 ? 1 : 0;
    }
    return month.year() % (2 * lustrum) == 0 ? 4 : month.year() % lustrum == 0 ? 3 : 2;
}

} // namespace

TimeChart::TimeChart(QWidget* parent)
    : SeriesChart(Choice::Columns, parent)
{
    setObjectName(QStringLiteral("timeChart"));
}

void TimeChart::setDays(const QDate& first, const QDate& last, const Quantity& quantity,
                        const QList<DaySeries>& series)
{
    m_step = TimeSteps::forDays(first, last);
    m_spans = TimeSteps::spans(first, last, m_step, QLocale::system().firstDayOfWeek());
    QList<Column> columns;
    for (const DaySpan& span : std::as_const(m_spans)) {
        columns.append(columnFor(span));
    }
    QList<Series> summed;
    for (const DaySeries& one : series) {
        summed.append({one.name, one.colour, TimeSteps::sums(m_spans, one.values)});
    }
    setContent(quantity, caption(quantity.name), columns, summed);
}

QString TimeChart::caption(const QString& name) const
{
    switch (m_step) {
    case TimeStep::Week:
        return tr("%1 per week").arg(name);
    case TimeStep::Month:
        return tr("%1 per month").arg(name);
    case TimeStep::Day:
        break;
    }
    return tr("%1 per day").arg(name);
}

SeriesChart::Column TimeChart::columnFor(const DaySpan& span) const
{
    if (m_step == TimeStep::Day) {
        // Every second week stays longest.
        const int week = static_cast<int>(span.first.toJulianDay() / TimeSteps::DaysPerWeek % 2);
        const bool isWeekStart = span.first.dayOfWeek() == QLocale::system().firstDayOfWeek();
        return {englishDate(span.first, QStringLiteral("d MMM")), isWeekStart ? 1 + week : 0};
    }
    // A week carries the name of the month that begins in it.
    const QDate month(span.last.year(), span.last.month(), 1);
    if (month < span.first && m_step == TimeStep::Week) {
        return {};
    }
    const QString format = month.month() == 1 ? QStringLiteral("yyyy") : QStringLiteral("MMM");
    return {englishDate(month, format), monthRank(month)};
}

QString TimeChart::describe(int column) const
{
    const DaySpan& span = m_spans.at(column);
    QString text = span.first == span.last
                       ? englishDate(span.first, QStringLiteral("dddd, d MMMM yyyy"))
                       : tr("%1 to %2").arg(Format::day(span.first), Format::day(span.last));
    for (const Series& one : series()) {
        const std::optional<double> value = one.values.at(column);
        text += QLatin1Char('\n') +
                tr("%1: %2").arg(one.name, value ? quantity().text(*value) : tr("nothing counted"));
    }
    return text;
}

QString TimeChart::summary() const
{
    if (m_spans.isEmpty()) {
        return {};
    }
    QStringList lines{tr("%1, from %2 to %3")
                          .arg(caption(quantity().name), Format::day(m_spans.constFirst().first),
                               Format::day(m_spans.constLast().last))};
    for (const Series& one : series()) {
        double sum = 0;
        std::optional<qsizetype> largest;
        for (qsizetype i = 0; i < one.values.size(); ++i) {
            sum += one.values.at(i).value_or(0);
            if (one.values.at(i) && (!largest || *one.values.at(i) > *one.values.at(*largest))) {
                largest = i;
            }
        }
        lines.append(largest ? tr("%1: %2 in all, most on %3: %4")
                                   .arg(one.name, quantity().text(sum),
                                        Format::day(m_spans.at(*largest).first),
                                        quantity().text(*one.values.at(*largest)))
                             : tr("%1: nothing counted").arg(one.name));
    }
    return lines.join(QLatin1Char('\n'));
}

void TimeChart::choose(int column)
{
    const DaySpan span = m_spans.at(column);
    Q_EMIT daysClicked(span.first, span.last);
}
