// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TodayQuery.h"

#include "base/Format.h"
#include "storage/DSqlQuery.h"

namespace {

const QString& keysPerHour()
{
    static const QString text = QStringLiteral(
        "SELECT \"hour\", SUM(\"largest\") AS \"keys\" FROM ("
        "SELECT \"hour\", \"profile_id\", MAX(\"counted\") AS \"largest\" FROM ("
        "SELECT \"hour\", \"profile_id\", \"count\" AS \"counted\" FROM \"keypresses\" "
        "WHERE \"day\"=:day "
        "UNION ALL "
        "SELECT \"hour\", \"profile_id\", SUM(\"count\") FROM \"keypress_frequency\" "
        "WHERE \"day\"=:day GROUP BY \"hour\", \"profile_id\" "
        "UNION ALL "
        "SELECT \"hour\", \"profile_id\", SUM(\"keys\") FROM \"input_per_application\" "
        "WHERE \"day\"=:day GROUP BY \"hour\", \"profile_id\""
        ") GROUP BY \"hour\", \"profile_id\""
        ") GROUP BY \"hour\" HAVING \"keys\">0 ORDER BY \"hour\"");
    return text;
}

const QString& keysPerKey()
{
    static const QString text = QStringLiteral(
        "SELECT \"key\", SUM(\"count\") AS \"keys\" FROM \"keypress_frequency\" WHERE \"day\"=:day "
        "GROUP BY \"key\" HAVING \"keys\">0 ORDER BY \"keys\" DESC, \"key\"");
    return text;
}

const QString& keysPerApplication()
{
    static const QString text =
        QStringLiteral("SELECT \"path\", SUM(\"keys\") AS \"total\" FROM \"input_per_application\" "
                       "WHERE \"day\"=:day AND \"path\"<>'' "
                       "GROUP BY \"path\" HAVING \"total\">0 ORDER BY \"total\" DESC, \"path\"");
    return text;
}

/// Runs `statement` for `day` and hands each row to `take`; false where it failed.
template <typename Take>
bool forEachRow(const QSqlDatabase& connection, const QString& statement, const QDate& day,
                Take take)
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.prepare(statement)) {
        return false;
    }
    query.bindValue(QStringLiteral(":day"), Format::isoDay(day));
    if (!query.exec()) {
        return false;
    }
    while (query.next()) {
        take(query);
    }
    return true;
}

bool readHours(const QSqlDatabase& connection, const QDate& day, TodayFigures& figures)
{
    return forEachRow(connection, keysPerHour(), day, [&figures](const QSqlQuery& row) {
        figures.hours.append({.hour = row.value(0).toInt(), .keys = row.value(1).toLongLong()});
        figures.keys += figures.hours.constLast().keys;
    });
}

bool readKeys(const QSqlDatabase& connection, const QDate& day, TodayFigures& figures)
{
    return forEachRow(connection, keysPerKey(), day, [&figures](const QSqlQuery& row) {
        figures.keyCounts.append({.key = row.value(0).toInt(), .keys = row.value(1).toLongLong()});
    });
}

bool readApplications(const QSqlDatabase& connection, const QDate& day, TodayFigures& figures)
{
    return forEachRow(connection, keysPerApplication(), day, [&figures](const QSqlQuery& row) {
        figures.applications.append(
            {.path = row.value(0).toString(), .keys = row.value(1).toLongLong()});
    });
}

} // namespace

std::optional<TodayFigures> TodayQuery::run(const QSqlDatabase& connection, const QDate& day)
{
    TodayFigures figures;
    figures.day = day;
    if (!readHours(connection, day, figures) || !readKeys(connection, day, figures) ||
        !readApplications(connection, day, figures)) {
        return std::nullopt;
    }
    return figures;
}

qint64 TodayQuery::keys(const QSqlDatabase& connection, const QDate& day)
{
    TodayFigures figures;
    readHours(connection, day, figures);
    return figures.keys;
}

std::optional<qint64> TodayQuery::dataVersion(const QSqlDatabase& connection)
{
    DSqlQuery query(connection);
    if (!query.exec(QStringLiteral("PRAGMA data_version")) || !query.next()) {
        return std::nullopt;
    }
    return query.value(0).toLongLong();
}
