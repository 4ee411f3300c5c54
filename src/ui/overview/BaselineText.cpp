// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/BaselineText.h"

#include "base/Format.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(BaselineText)
};

QString english(const QDate& day, const QString& format)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(day, format);
}

} // namespace

QString BaselineText::caption(const Baseline& baseline)
{
    const qint64 days = baseline.days.first.daysTo(baseline.days.last) + 1;
    switch (baseline.kind) {
    case Baseline::Kind::WeekBefore:
        return Text::tr("last %1").arg(english(baseline.days.first, QStringLiteral("ddd")));
    case Baseline::Kind::Mean:
        return Text::tr("%1-day mean").arg(days);
    case Baseline::Kind::DaysBefore:
        break;
    }
    return days == 1 ? Text::tr("day before") : Text::tr("%1 days before").arg(days);
}

QString BaselineText::words(const Baseline& baseline, const QTime& time)
{
    const QString until = time.toString(QStringLiteral("HH:mm"));
    const QString first = Format::day(baseline.days.first);
    const QString last = Format::day(baseline.days.last);
    switch (baseline.kind) {
    case Baseline::Kind::WeekBefore:
        return Text::tr("on %1 until %2")
            .arg(english(baseline.days.first, QStringLiteral("dddd, d MMMM yyyy")), until);
    case Baseline::Kind::Mean:
        return Text::tr("until %1 on a mean day from %2 to %3 (days counted: %4)")
            .arg(until, first, last)
            .arg(baseline.countedDays);
    case Baseline::Kind::DaysBefore:
        break;
    }
    const QString days = baseline.days.first == baseline.days.last
                             ? Text::tr("on %1").arg(first)
                             : Text::tr("from %1 to %2").arg(first, last);
    return baseline.isCut ? Text::tr("%1, on the last day until %2").arg(days, until) : days;
}
