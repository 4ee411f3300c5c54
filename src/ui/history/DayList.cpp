// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/DayList.h"

#include "ui/history/RowReader.h"

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
        QStringLiteral("network_interface_bandwidth"),
        QStringLiteral("application_bandwidth"),
        QStringLiteral("country_bandwidth"),
        QStringLiteral("network_protocol_bandwidth"),
    };
    return names;
}

/// `extreme`, MIN or MAX, of the days of the calendar before :before. What is no such day sorts in
/// front of them or is no date to read.
QString extremeDay(const QString& extreme)
{
    QStringList parts;
    for (const QString& table : tables()) {
        parts += QStringLiteral("SELECT %1(\"day\") AS \"found\" FROM %2 "
                                "WHERE \"day\">='0001-01-01' AND \"day\"<:before")
                     .arg(extreme, table);
    }
    return QStringLiteral("SELECT %1(\"found\") FROM (%2)")
        .arg(extreme, parts.join(QStringLiteral(" UNION ALL ")));
}

std::optional<QDate> find(const QSqlDatabase& connection, const QString& statement,
                          const QString& before)
{
    QDate found;
    const bool isRead = RowReader::forEachRow(
        connection, statement,
        [&before](QSqlQuery& query) { query.bindValue(QStringLiteral(":before"), before); },
        [&found](const QSqlQuery& row) {
            found = QDate::fromString(row.value(0).toString(), Qt::ISODate);
        });
    return isRead ? std::optional(found) : std::nullopt;
}

} // namespace

std::optional<QDate> DayList::first(const QSqlDatabase& connection)
{
    static const QString statement = extremeDay(QStringLiteral("MIN"));
    return find(connection, statement, QStringLiteral("9999-12-31"));
}

std::optional<QDate> DayList::before(const QSqlDatabase& connection, const QDate& day)
{
    static const QString statement = extremeDay(QStringLiteral("MAX"));
    return find(connection, statement, Format::isoDay(day));
}
