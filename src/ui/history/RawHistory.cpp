// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RawHistory.h"

#include "ui/history/HourRows.h"
#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

constexpr int FirstThing = 2; ///< Behind day and profile.

const QString& buttonCounts()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"button\", SUM(\"count\") FROM mouseclicks_frequency"),
        QStringLiteral("GROUP BY \"button\""));
    return text;
}

const QString& inputOfApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral("SELECT \"day\", SUM(\"keys\"), SUM(\"clicks\"), SUM(\"scrolls\"), "
                       "SUM(\"distance_inches\"), 0 FROM input_per_application"),
        QStringLiteral("AND \"path\"=:path GROUP BY \"day\""));
    return text;
}

const QString& frontOfApplication()
{
    static const QString text = RowReader::scoped(
        QStringLiteral(
            "SELECT \"day\", 0, 0, 0, 0, SUM(\"seconds_active\") FROM application_active_hour"),
        QStringLiteral("AND \"path\"=:path GROUP BY \"day\""));
    return text;
}

/// By `group`, which belongs to the day or the hour.
QString trafficBy(const QString& group)
{
    return QStringLiteral("SELECT %1, SUM(\"download\"), SUM(\"upload\") "
                          "FROM network_interface_bandwidth "
                          "WHERE \"day\" BETWEEN :first AND :last GROUP BY %1")
        .arg(group);
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

bool RawHistory::eachCount(CountTable table, const HistoryScope& scope, const TakeRow& take)
{
    return RowReader::forEachScopedRow(m_connection, CountTableTexts::of(table).hourly, scope,
                                       [&take](const QSqlQuery& row) { take(row, FirstThing); });
}

bool RawHistory::addButtons(const HistoryScope& scope, NumberSums& sums)
{
    return RowReader::forEachScopedRow(
        m_connection, buttonCounts(), scope,
        [&sums](const QSqlQuery& row) { sums[row.value(0).toInt()] += row.value(1).toLongLong(); });
}

bool RawHistory::addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                                    ApplicationDaySums& sums)
{
    return std::ranges::all_of(paths, [&](const QString& path) {
        const auto bind = [&scope, &path](QSqlQuery& query) {
            RowReader::bindScope(query, scope);
            query.bindValue(QStringLiteral(":path"), path);
        };
        const auto add = [&path, &sums](const QSqlQuery& row) {
            const QDate day = QDate::fromString(row.value(0).toString(), Qt::ISODate);
            sums[{day, path}] += ApplicationCounts::fromRow(row, 1);
        };
        return RowReader::forEachRow(m_connection, inputOfApplication(), bind, add) &&
               RowReader::forEachRow(m_connection, frontOfApplication(), bind, add);
    });
}

bool RawHistory::addTrafficDays(const HistoryScope& scope, TrafficGroupSums& sums)
{
    return RowReader::forEachRow(
        m_connection, trafficBy(QStringLiteral("\"day\"")),
        [&scope](QSqlQuery& query) { RowReader::bindDays(query, scope); },
        [&sums](const QSqlQuery& row) {
            const QDate day = QDate::fromString(row.value(0).toString(), Qt::ISODate);
            sums[day.toJulianDay()] += trafficFromRow(row, 1);
        });
}

bool RawHistory::addTrafficHours(const HistoryScope& scope, TrafficGroupSums& sums)
{
    return RowReader::forEachRow(
        m_connection, trafficBy(QStringLiteral("\"hour\"")),
        [&scope](QSqlQuery& query) { RowReader::bindDays(query, scope); },
        [&sums](const QSqlQuery& row) {
            sums[row.value(0).toLongLong()] += trafficFromRow(row, 1);
        });
}
