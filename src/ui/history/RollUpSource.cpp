// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpSource.h"

#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

QString ofProfile()
{
    return QStringLiteral(" AND (:profile IS NULL OR profile=:profile)");
}

DayRange range(const HistoryScope& scope)
{
    const QDate first = scope.first.isNull() ? QDate(1, 1, 1) : scope.first;
    return {.first = first.toJulianDay(), .last = scope.last.toJulianDay()};
}

QString groupColumn(TotalsBy by)
{
    switch (by) {
    case TotalsBy::Nothing:
        return QStringLiteral("0");
    case TotalsBy::Day:
        return QStringLiteral("day");
    case TotalsBy::Hour:
        return QStringLiteral("hour");
    case TotalsBy::WeekHour:
        return QStringLiteral("day%7*24+hour");
    }
    return {};
}

QString totalsBy(TotalsBy by)
{
    return QStringLiteral("SELECT %1, SUM(keys), SUM(clicks), SUM(scrolls), SUM(inches), "
                          "SUM(uptime_ms) FROM hours WHERE day BETWEEN :first AND :last")
               .arg(groupColumn(by)) +
           ofProfile() + QStringLiteral(" GROUP BY 1");
}

/// Whole months, and the days before and behind them.
QString countsOf(const CountTableText& table)
{
    const QString things = CountTableTexts::names(table.things);
    const QString columns = things + QStringLiteral(", ") + CountTableTexts::names(table.values);
    QStringList sums;
    for (const QString& value : table.values) {
        sums += QStringLiteral("SUM(%1)").arg(CountTableTexts::names({value}));
    }
    const auto part = [&](const char* period, const char* from, const char* to) {
        return QStringLiteral("SELECT %1 FROM %2_%3s WHERE %3 BETWEEN %4 AND %5")
                   .arg(columns, table.name, QLatin1String(period), QLatin1String(from),
                        QLatin1String(to)) +
               ofProfile();
    };
    const QStringList parts{part("month", ":firstMonth", ":lastMonth"),
                            part("day", ":headFirst", ":headLast"),
                            part("day", ":tailFirst", ":tailLast")};
    return QStringLiteral("SELECT %1, %2 FROM (%3) GROUP BY %1")
        .arg(things, sums.join(QStringLiteral(", ")), parts.join(QStringLiteral(" UNION ALL ")));
}

void bindDays(QSqlQuery& query, const HistoryScope& scope)
{
    const DayRange days = range(scope);
    query.bindValue(QStringLiteral(":first"), days.first);
    query.bindValue(QStringLiteral(":last"), days.last);
}

void bindRange(QSqlQuery& query, const HistoryScope& scope)
{
    bindDays(query, scope);
    RowReader::bindProfile(query, scope.profileId);
}

void bindCut(QSqlQuery& query, const HistoryScope& scope, const MonthRange& months)
{
    const RollUpMonths::Cut cut = RollUpMonths::cut(range(scope), months);
    query.bindValue(QStringLiteral(":firstMonth"), cut.months.first);
    query.bindValue(QStringLiteral(":lastMonth"), cut.months.last);
    query.bindValue(QStringLiteral(":headFirst"), cut.head.first);
    query.bindValue(QStringLiteral(":headLast"), cut.head.last);
    query.bindValue(QStringLiteral(":tailFirst"), cut.tail.first);
    query.bindValue(QStringLiteral(":tailLast"), cut.tail.last);
    RowReader::bindProfile(query, scope.profileId);
}

} // namespace

RollUpSource::RollUpSource(const QSqlDatabase& connection, const MonthRange& months)
    : m_connection(connection)
    , m_months(months)
{
}

bool RollUpSource::addTotals(const HistoryScope& scope, TotalsBy by, TotalsSums& sums)
{
    return RowReader::forEachRow(
        m_connection, totalsBy(by), [&scope](QSqlQuery& query) { bindRange(query, scope); },
        [&sums](const QSqlQuery& row) {
            sums[row.value(0).toLongLong()] += {.keys = row.value(1).toLongLong(),
                                                .clicks = row.value(2).toLongLong(),
                                                .scrolls = row.value(3).toLongLong(),
                                                .inches = row.value(4).toDouble(),
                                                .uptimeMs = row.value(5).toLongLong()};
        });
}

bool RollUpSource::eachCount(CountTable table, const HistoryScope& scope, const TakeRow& take)
{
    return RowReader::forEachRow(
        m_connection, countsOf(CountTableTexts::of(table)),
        [this, &scope](QSqlQuery& query) { bindCut(query, scope, m_months); },
        [&take](const QSqlQuery& row) { take(row, 0); });
}

bool RollUpSource::addApplicationDays(const HistoryScope& scope, const QStringList& paths,
                                      ApplicationDaySums& sums)
{
    const QString statement =
        QStringLiteral(
            "SELECT day, SUM(keys), SUM(clicks), SUM(scrolls), SUM(inches), "
            "SUM(front_seconds) FROM application_days WHERE day BETWEEN :first AND :last "
            "AND path=:path") +
        ofProfile() + QStringLiteral(" GROUP BY day");
    return std::ranges::all_of(paths, [&](const QString& path) {
        return RowReader::forEachRow(
            m_connection, statement,
            [&](QSqlQuery& query) {
                bindRange(query, scope);
                query.bindValue(QStringLiteral(":path"), path);
            },
            [&](const QSqlQuery& row) {
                const QDate day = QDate::fromJulianDay(row.value(0).toLongLong());
                sums[{day, path}] += ApplicationCounts::fromRow(row, 1);
            });
    });
}

bool RollUpSource::addTrafficDays(const HistoryScope& scope, TrafficGroupSums& sums)
{
    return RowReader::forEachRow(
        m_connection,
        QStringLiteral("SELECT day, SUM(download), SUM(upload) FROM interface_days "
                       "WHERE day BETWEEN :first AND :last GROUP BY day"),
        [&scope](QSqlQuery& query) { bindDays(query, scope); },
        [&sums](const QSqlQuery& row) {
            sums[row.value(0).toLongLong()] += trafficFromRow(row, 1);
        });
}
