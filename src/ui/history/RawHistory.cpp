// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RawHistory.h"

#include "ui/history/HourRows.h"
#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

/// The sums of a table's counts, by one of its columns.
QString countsBy(const QString& column, const QString& table)
{
    return RowReader::scoped(QStringLiteral("SELECT %1, SUM(\"count\") FROM %2").arg(column, table),
                             QStringLiteral("GROUP BY 1 HAVING SUM(\"count\")<>0"));
}

bool addNumbers(const QSqlDatabase& connection, const QString& column, const QString& table,
                const HistoryScope& scope, NumberSums& sums)
{
    return RowReader::forEachRow(
        connection, countsBy(column, table), scope,
        [&sums](const QSqlQuery& row) { sums[row.value(0).toInt()] += row.value(1).toLongLong(); });
}

const QString& inputPerApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"path\", SUM(\"keys\"), SUM(\"clicks\"), SUM(\"scrolls\"), "
                       "SUM(\"distance_inches\") FROM input_per_application"),
        QStringLiteral("AND \"path\"<>'' GROUP BY \"path\""));
    return text;
}

const QString& frontPerApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"path\", SUM(\"seconds_active\") FROM application_active_hour"),
        QStringLiteral("AND \"path\"<>'' GROUP BY \"path\""));
    return text;
}

const QString& inputOfApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"day\", SUM(\"keys\"), SUM(\"clicks\"), SUM(\"scrolls\"), "
                       "SUM(\"distance_inches\") FROM input_per_application"),
        QStringLiteral("AND \"path\"=:path GROUP BY \"day\""));
    return text;
}

const QString& frontOfApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"day\", SUM(\"seconds_active\") FROM application_active_hour"),
        QStringLiteral("AND \"path\"=:path GROUP BY \"day\""));
    return text;
}

ApplicationCounts inputCounts(const QSqlQuery& row)
{
    return {.keys = row.value(1).toLongLong(),
            .clicks = row.value(2).toLongLong(),
            .scrolls = row.value(3).toLongLong(),
            .inches = row.value(4).toDouble()};
}

ApplicationCounts frontCounts(const QSqlQuery& row)
{
    return {.frontSeconds = row.value(1).toLongLong()};
}

} // namespace

RawHistory::RawHistory(const QSqlDatabase& connection)
    : m_connection(connection)
{
}

bool RawHistory::addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums)
{
    HourSums hours;
    if (!HourRows::read(m_connection, scope, hours)) {
        return false;
    }
    for (const auto& [slot, totals] : hours) {
        sums[totalsGroup(by, slot.julianDay, slot.hour)] += totals;
    }
    return true;
}

bool RawHistory::addKeys(const HistoryScope& scope, NumberSums& sums)
{
    return addNumbers(m_connection, QStringLiteral("\"key\""), QStringLiteral("keypress_frequency"),
                      scope, sums);
}

bool RawHistory::addCombinations(const HistoryScope& scope, TextSums& sums)
{
    return RowReader::forEachRow(
        m_connection, countsBy(QStringLiteral("\"combo\""), QStringLiteral("keycombo_frequency")),
        scope, [&sums](const QSqlQuery& row) {
            sums[row.value(0).toString()] += row.value(1).toLongLong();
        });
}

bool RawHistory::addButtons(const HistoryScope& scope, NumberSums& sums)
{
    return addNumbers(m_connection, QStringLiteral("\"button\""),
                      QStringLiteral("mouseclicks_frequency"), scope, sums);
}

bool RawHistory::addScrolls(const HistoryScope& scope, NumberSums& sums)
{
    return addNumbers(m_connection, QStringLiteral("\"direction\""), QStringLiteral("mousescrolls"),
                      scope, sums);
}

bool RawHistory::addClickCells(const HistoryScope& scope, CellSums& sums)
{
    // CAST cuts towards zero: one less where that is not below the value.
    static const QString cells = RowReader::scoped(
        QStringLiteral("SELECT CAST(\"x\" AS INTEGER) - (CAST(\"x\" AS INTEGER)>\"x\"), "
                       "CAST(\"y\" AS INTEGER) - (CAST(\"y\" AS INTEGER)>\"y\"), COUNT(*) "
                       "FROM (SELECT \"day\", \"profile_id\", \"x\"*%1 AS \"x\", \"y\"*%2 AS \"y\" "
                       "FROM mousepoints)")
            .arg(ClickCell::Columns)
            .arg(ClickCell::Rows),
        QStringLiteral("GROUP BY 1, 2"));
    return RowReader::forEachRow(m_connection, cells, scope, [&sums](const QSqlQuery& row) {
        sums[{row.value(0).toInt(), row.value(1).toInt()}] += row.value(2).toLongLong();
    });
}

bool RawHistory::addApplications(const HistoryScope& scope, ApplicationSums& sums)
{
    return RowReader::forEachRow(m_connection, inputPerApplication(), scope,
                                 [&sums](const QSqlQuery& row) {
                                     sums[row.value(0).toString()] += inputCounts(row);
                                 }) &&
           RowReader::forEachRow(m_connection, frontPerApplication(), scope,
                                 [&sums](const QSqlQuery& row) {
                                     sums[row.value(0).toString()] += frontCounts(row);
                                 });
}

bool RawHistory::addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                                    ApplicationDaySums& sums)
{
    return std::ranges::all_of(paths, [&](const QString& path) {
        const auto bindPath = [&path](QSqlQuery& query) {
            query.bindValue(QStringLiteral(":path"), path);
        };
        const auto day = [](const QSqlQuery& row) {
            return QDate::fromString(row.value(0).toString(), Qt::ISODate);
        };
        return RowReader::forEachRow(
                   m_connection, inputOfApplication(), scope,
                   [&](const QSqlQuery& row) {
                       sums[{day(row), path}] += inputCounts(row);
                   },
                   bindPath) &&
               RowReader::forEachRow(
                   m_connection, frontOfApplication(), scope,
                   [&](const QSqlQuery& row) {
                       sums[{day(row), path}] += frontCounts(row);
                   },
                   bindPath);
    });
}
