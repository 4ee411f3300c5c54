// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/DayList.h"

#include "storage/DSqlQuery.h"

#include <QStringList>

namespace {

/// Those with counts by the day; each has an index that begins with it.
const QStringList& tables()
{
    static const QStringList names{
        QStringLiteral("keypresses"),
        QStringLiteral("keypress_frequency"),
        QStringLiteral("keycombo_frequency"),
        QStringLiteral("mouseclicks"),
        QStringLiteral("mouseclicks_frequency"),
        QStringLiteral("mousepoints"),
        QStringLiteral("mousescrolls"),
        QStringLiteral("mousedistance"),
        QStringLiteral("uptime_hour"),
        QStringLiteral("input_per_application"),
        QStringLiteral("application_active_hour"),
    };
    return names;
}

/// Leaves out what is no date of the calendar, all of which sorts before the year 1.
const QString& firstDay()
{
    static const QString text =
        QStringLiteral("SELECT MIN(\"day\") FROM %1 WHERE \"day\">='0001-01-01'");
    return text;
}

} // namespace

std::optional<QDate> DayList::first(const QSqlDatabase& connection)
{
    QDate first;
    for (const QString& table : tables()) {
        DSqlQuery query(connection);
        query.setForwardOnly(true);
        if (!query.exec(firstDay().arg(table)) || !query.next()) {
            return std::nullopt;
        }
        const QDate day = QDate::fromString(query.value(0).toString(), Qt::ISODate);
        if (day.isValid() && (first.isNull() || day < first)) {
            first = day;
        }
    }
    return first;
}
