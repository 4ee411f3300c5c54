// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/Baseline.h"

#include "base/Format.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr int DaysOfMean = 30;

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Baseline)
};

} // namespace

double Baseline::value(Measure measure, const QTime& time) const
{
    constexpr double secondsPerHour = 3600;
    double sum = Measures::value(measure, totals);
    const double passed = (time.minute() * 60 + time.second()) / secondsPerHour;
    for (const HourTotals& hour : cutDays) {
        const double toCome = hour.hour < time.hour()    ? 0
                              : hour.hour == time.hour() ? 1 - passed
                                                         : 1;
        sum -= isCut ? toCome * Measures::value(measure, hour.totals) : 0;
    }
    return std::max(sum, 0.0) / std::max(countedDays, 1);
}

std::optional<Baseline> Baselines::before(const HistoryScope& scope, const QDate& today)
{
    if (scope.first.isNull() || scope.first > today) {
        return std::nullopt;
    }
    const QDate last = std::min(scope.last, today);
    const bool isCut = last == today;
    if (isCut && scope.first == today) {
        const QDate day = today.addDays(-TimeSteps::DaysPerWeek);
        return Baseline{.kind = Baseline::Kind::WeekBefore, .days = {day, day}, .isCut = isCut};
    }
    const qint64 days = scope.first.daysTo(last) + 1;
    return Baseline{.kind = Baseline::Kind::DaysBefore,
                    .days = {scope.first.addDays(-days), scope.first.addDays(-1)},
                    .isCut = isCut};
}

std::optional<Baseline> Baselines::mean(const HistoryScope& scope, const QDate& today)
{
    if (!scope.isOneDay() || scope.last != today) {
        return std::nullopt;
    }
    return Baseline{.kind = Baseline::Kind::Mean,
                    .days = {today.addDays(-DaysOfMean), today.addDays(-1)},
                    .isCut = true};
}

Change Change::between(double value, double before)
{
    constexpr double hundred = 100;
    if (before <= 0) {
        return {value > 0 ? Kind::New : Kind::Same, 0};
    }
    const qint64 percent = std::llround((value - before) / before * hundred);
    return {percent > 0 ? Kind::More : percent < 0 ? Kind::Less : Kind::Same, std::abs(percent)};
}

QString Change::text() const
{
    constexpr qint64 most = 999;
    switch (kind) {
    case Kind::More:
        return percent > most ? Text::tr("▲ > +%1 %").arg(most) : Text::tr("▲ +%1 %").arg(percent);
    case Kind::Less:
        return Text::tr("▼ −%1 %").arg(percent);
    case Kind::New:
        return Text::tr("▲ new");
    case Kind::Same:
        break;
    }
    return Text::tr("= ±0 %");
}

QString Change::words(const QString& baseline) const
{
    switch (kind) {
    case Kind::More:
        return Text::tr("%1 % more than %2").arg(Format::count(percent), baseline);
    case Kind::Less:
        return Text::tr("%1 % less than %2").arg(Format::count(percent), baseline);
    case Kind::New:
        return Text::tr("New: nothing was counted %1").arg(baseline);
    case Kind::Same:
        break;
    }
    return Text::tr("As much as %1").arg(baseline);
}
