// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DateRange.h"

#include "base/Format.h"

#include <QLocale>

#include <algorithm>

DateRange::DateRange(Preset preset)
    : m_preset(preset)
{
}

DateRange DateRange::between(const QDate& one, const QDate& other)
{
    DateRange range;
    range.m_preset.reset();
    range.m_first = std::min(one, other);
    range.m_last = std::max(one, other);
    return range;
}

QList<DateRange::Preset> DateRange::presets()
{
    return {Preset::Today,  Preset::Yesterday, Preset::Days7,  Preset::Days30,
            Preset::Days90, Preset::ThisYear,  Preset::AllTime};
}

QDate DateRange::first(const QDate& today) const
{
    if (!m_preset) {
        return m_first;
    }
    switch (*m_preset) {
    case Preset::Today:
        return today;
    case Preset::Yesterday:
        return today.addDays(-1);
    case Preset::Days7:
        return today.addDays(-6);
    case Preset::Days30:
        return today.addDays(-29);
    case Preset::Days90:
        return today.addDays(-89);
    case Preset::ThisYear:
        return {today.year(), 1, 1};
    case Preset::AllTime:
        break;
    }
    return {};
}

QDate DateRange::last(const QDate& today) const
{
    if (!m_preset) {
        return m_last;
    }
    return *m_preset == Preset::Yesterday ? today.addDays(-1) : today;
}

QString DateRange::name(Preset preset)
{
    switch (preset) {
    case Preset::Today:
        return tr("Today");
    case Preset::Yesterday:
        return tr("Yesterday");
    case Preset::Days7:
        return tr("Last 7 days");
    case Preset::Days30:
        return tr("Last 30 days");
    case Preset::Days90:
        return tr("Last 90 days");
    case Preset::ThisYear:
        return tr("This year");
    case Preset::AllTime:
        break;
    }
    return tr("All time");
}

QString DateRange::name() const
{
    return m_preset ? name(*m_preset) : daysText(m_first, m_last);
}

QString DateRange::days(const QDate& today) const
{
    const QDate from = first(today);
    const QDate to = last(today);
    if (from.isNull()) {
        return tr("Every day until %1").arg(Format::day(to));
    }
    if (from == to) {
        return QStringLiteral("%1, %2").arg(QLocale(QLocale::English).dayName(to.dayOfWeek()),
                                            Format::day(to));
    }
    return daysText(from, to);
}

QString DateRange::daysText(const QDate& first, const QDate& last)
{
    if (first == last) {
        return Format::day(first);
    }
    const QLocale english(QLocale::English);
    const bool sameYear = first.year() == last.year();
    const bool sameMonth = sameYear && first.month() == last.month();
    const QString from = sameMonth  ? QString::number(first.day())
                         : sameYear ? english.toString(first, QStringLiteral("d MMMM"))
                                    : Format::day(first);
    return QStringLiteral("%1 – %2").arg(from, Format::day(last));
}
