// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationTexts.h"

#include "ui/Quantity.h"
#include "ui/applications/ApplicationsModel.h"

#include <cmath>

namespace {

/// "12,345:06", hours and minutes.
QString hoursAndMinutes(qint64 seconds)
{
    constexpr qint64 minute = 60;
    constexpr qint64 hour = 60 * minute;
    if (seconds > 0 && seconds < minute) {
        return QStringLiteral("< 0:01");
    }
    return QStringLiteral("%1:%2")
        .arg(Format::count(seconds / hour))
        .arg(seconds % hour / minute, 2, 10, QLatin1Char('0'));
}

QString timeOfDay(const QDateTime& time)
{
    constexpr int dayLength = 11;
    constexpr int minutesLength = 5;
    return Format::isoDateTime(time).mid(dayLength, minutesLength);
}

double travel(const ApplicationTotals& totals, Format::Lengths lengths)
{
    return totals.inches / tableUnit(lengths).inches;
}

} // namespace

QString ApplicationTexts::cell(const ApplicationTotals& totals, int column, Format::Lengths lengths)
{
    switch (column) {
    case ApplicationsModel::TravelColumn: {
        constexpr double half = 0.5;
        const double length = travel(totals, lengths);
        return length > 0 && length < half ? QStringLiteral("< 1")
                                           : Format::count(std::llround(length));
    }
    case ApplicationsModel::FrontColumn:
        return hoursAndMinutes(totals.frontSeconds);
    case ApplicationsModel::RunningColumn:
        return hoursAndMinutes(totals.runningSeconds);
    case ApplicationsModel::LastUsedColumn:
        if (!totals.lastUsed.isValid()) {
            return {};
        }
        return totals.lastUsed.date() == QDate::currentDate()
                   ? ApplicationsModel::tr("Today %1").arg(timeOfDay(totals.lastUsed))
                   : Format::isoDay(totals.lastUsed.date());
    case ApplicationsModel::PathColumn:
        return totals.path;
    default:
        return Format::count(raw(totals, column, lengths).toLongLong());
    }
}

QVariant ApplicationTexts::raw(const ApplicationTotals& totals, int column, Format::Lengths lengths)
{
    switch (column) {
    case ApplicationsModel::KeysColumn:
        return totals.keys;
    case ApplicationsModel::ClicksColumn:
        return totals.clicks;
    case ApplicationsModel::ScrollsColumn:
        return totals.scrolls;
    case ApplicationsModel::TravelColumn:
        return travel(totals, lengths);
    case ApplicationsModel::FrontColumn:
        return totals.frontSeconds;
    case ApplicationsModel::RunningColumn:
        return totals.runningSeconds;
    case ApplicationsModel::LastUsedColumn:
        return totals.lastUsed.isValid() ? Format::isoDateTime(totals.lastUsed) : QString();
    default:
        return totals.path;
    }
}

QString ApplicationTexts::lastUsed(const QDateTime& time)
{
    return time.isValid()
               ? ApplicationsModel::tr("%1 at %2").arg(Format::day(time.date()), timeOfDay(time))
               : ApplicationsModel::tr("Not known");
}

QString ApplicationTexts::header(int column, Format::Lengths lengths)
{
    switch (column) {
    case ApplicationsModel::NameColumn:
        return ApplicationsModel::tr("Application");
    case ApplicationsModel::KeysColumn:
        return ApplicationsModel::tr("Keys");
    case ApplicationsModel::ClicksColumn:
        return ApplicationsModel::tr("Clicks");
    case ApplicationsModel::ScrollsColumn:
        return ApplicationsModel::tr("Scrolls");
    case ApplicationsModel::TravelColumn:
        return ApplicationsModel::tr("Travel\n%1").arg(tableUnit(lengths).name);
    case ApplicationsModel::FrontColumn:
        return ApplicationsModel::tr("In front\nh:min");
    case ApplicationsModel::RunningColumn:
        return ApplicationsModel::tr("Running\nh:min");
    case ApplicationsModel::LastUsedColumn:
        return ApplicationsModel::tr("Last used");
    default:
        return ApplicationsModel::tr("Path");
    }
}

QString ApplicationTexts::headerOfRaw(int column, Format::Lengths lengths)
{
    switch (column) {
    case ApplicationsModel::TravelColumn:
        return ApplicationsModel::tr("Travel (%1)").arg(tableUnit(lengths).name);
    case ApplicationsModel::FrontColumn:
        return ApplicationsModel::tr("Time in front (s)");
    case ApplicationsModel::RunningColumn:
        return ApplicationsModel::tr("Running time since counting began (s)");
    default:
        return header(column, lengths);
    }
}
