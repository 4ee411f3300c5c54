// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/HistoryShift.h"

#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/HistoryStamp.h"

#include <QList>
#include <QStringList>

#include <algorithm>

namespace {

enum class Kind
{
    Date,
    Time,
};

struct FollowingTable
{
    QString name;
    QStringList columns;
    Kind kind;
};

struct Index
{
    QString name;
    QString sql;
};

/// The tables that follow the clock. The others keep their dates, and no `hour` column moves.
QList<FollowingTable> followingTables()
{
    const QStringList day{QStringLiteral("day")};
    const QStringList time{QStringLiteral("time")};
    return {
        {QStringLiteral("keypresses"), day, Kind::Date},
        {QStringLiteral("keypress_frequency"), day, Kind::Date},
        {QStringLiteral("mouseclicks"), day, Kind::Date},
        {QStringLiteral("mouseclicks_frequency"), day, Kind::Date},
        {QStringLiteral("uptimes"),
         {QStringLiteral("boot_time"), QStringLiteral("end_time")},
         Kind::Time},
        {QStringLiteral("application_uptime"), {QStringLiteral("last_active")}, Kind::Time},
        {QStringLiteral("application_active_hour"), day, Kind::Date},
        {QStringLiteral("network_interfaces"), {QStringLiteral("last_update")}, Kind::Time},
        {QStringLiteral("network_interface_bandwidth"), day, Kind::Date},
        {QStringLiteral("network_interface_bandwidth_second"), time, Kind::Time},
        {QStringLiteral("application_bandwidth"), day, Kind::Date},
        {QStringLiteral("application_bandwidth_second"), time, Kind::Time},
    };
}

/// The SQL of a column's moved value. Only what begins with a date of the calendar moves: SQLite's
/// own date functions would read a number as a day count and "now" as the present, and give NULL
/// for the rest, on which the whole statement would fail. Zone and fraction follow the nineteenth
/// character.
QString movedValue(const QString& column, Kind kind)
{
    const QString moved =
        kind == Kind::Date
            ? QStringLiteral(R"(date(substr("%1", 1, 10), :days) || substr("%1", 11))")
            : QStringLiteral(
                  R"(coalesce(replace(datetime(substr("%1", 1, 19), :days, :seconds), ' ', )"
                  R"(CASE substr("%1", 11, 1) WHEN 'T' THEN 'T' ELSE ' ' END) )"
                  R"(|| substr("%1", 20), "%1"))");
    return QStringLiteral(
               R"("%1"=CASE WHEN date(substr("%1", 1, 10), '+0 days')=substr("%1", 1, 10) )"
               R"(THEN %2 ELSE "%1" END)")
        .arg(column, moved.arg(column));
}

bool moveRows(Database* database, const FollowingTable& table, int days, int seconds)
{
    QStringList assignments;
    for (const QString& column : table.columns) {
        assignments += movedValue(column, table.kind);
    }
    DSqlQuery query(database);
    if (!query.prepare(QStringLiteral("UPDATE %1 SET %2")
                           .arg(table.name, assignments.join(QStringLiteral(", "))))) {
        return false;
    }
    query.bindValue(QStringLiteral(":days"), QStringLiteral("%1 days").arg(days));
    if (table.kind == Kind::Time) {
        query.bindValue(QStringLiteral(":seconds"), QStringLiteral("%1 seconds").arg(seconds));
    }
    return query.exec();
}

/// The unique indexes of a table that a moved column is part of, with the text that creates each.
QList<Index> uniqueIndexes(Database* database, const FollowingTable& table)
{
    DSqlQuery query(database);
    query.prepare(QStringLiteral(
        "SELECT DISTINCT list.name, schema.sql FROM pragma_index_list(?) AS list, "
        "pragma_index_info(list.name) AS part, "
        "(SELECT name, sql FROM sqlite_master UNION ALL SELECT name, sql FROM sqlite_temp_master) "
        "AS schema WHERE list.\"unique\"=1 AND schema.name=list.name AND schema.sql IS NOT NULL "
        "AND part.name IN (?, ?)"));
    query.bindValue(0, table.name);
    query.bindValue(1, table.columns.first());
    query.bindValue(2, table.columns.last());
    QList<Index> indexes;
    query.exec();
    while (query.next()) {
        indexes.append({query.value(0).toString(), query.value(1).toString()});
    }
    return indexes;
}

/// SQLite checks a unique index row by row, so that a row could not take a day which another row is
/// about to leave. The indexes go before the rows move, and come back as they were.
bool moveTable(Database* database, const FollowingTable& table, int days, int seconds)
{
    const QList<Index> indexes = uniqueIndexes(database, table);
    DSqlQuery query(database);
    const auto drop = [&query](const Index& index) {
        return query.exec(QStringLiteral("DROP INDEX \"%1\"").arg(index.name));
    };
    const auto create = [&query](const Index& index) { return query.exec(index.sql); };
    return std::all_of(indexes.cbegin(), indexes.cend(), drop) &&
           moveRows(database, table, days, seconds) &&
           std::all_of(indexes.cbegin(), indexes.cend(), create);
}

} // namespace

bool HistoryShift::apply(Database* database, int days, int seconds)
{
    const QList<FollowingTable> tables = followingTables();
    return std::all_of(tables.cbegin(), tables.cend(),
                       [=](const FollowingTable& table) {
                           return moveTable(database, table, days, seconds);
                       }) &&
           HistoryStamp::renew(database->connection());
}
