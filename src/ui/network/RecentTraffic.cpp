// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/RecentTraffic.h"

#include "ui/history/RowReader.h"

#include <QDateTime>

namespace {

using Rows = QList<SecondTraffic>;

constexpr qint64 SecondsKept = qint64{2} * LiveTraffic::SecondsPerMinute;

/// Sums over the first letters of the times, with the rest of a time behind them; of rows whose
/// times compare so with :from. An hour of five interfaces takes some 12 ms.
QString statement(const char* compare, int timeLength, const char* timeRest)
{
    const QString group = QStringLiteral("substr(\"time\", 1, %1)").arg(timeLength);
    return QStringLiteral(
               "SELECT strftime('%s', %1 || '%2'), \"mac_address\", "
               "SUM(\"download\"), SUM(\"upload\") FROM network_interface_bandwidth_second "
               "WHERE \"time\"%3:from GROUP BY %1, \"mac_address\"")
        .arg(group, QLatin1String(timeRest), QLatin1String(compare));
}

const QString& seconds()
{
    constexpr int wholeTime = 19;
    static const QString text = statement(">=", wholeTime, "");
    return text;
}

const QString& minutes()
{
    constexpr int timeWithoutSeconds = 16;
    static const QString text = statement("<", timeWithoutSeconds, ":00");
    return text;
}

bool readRows(const QSqlDatabase& counting, const QString& statement, qint64 from, Rows& rows)
{
    const QString time = Format::isoDateTime(QDateTime::fromSecsSinceEpoch(from, Qt::UTC));
    return RowReader::forEachRow(
        counting, statement,
        [&time](QSqlQuery& query) { query.bindValue(QStringLiteral(":from"), time); },
        [&rows](const QSqlQuery& row) {
            rows.append({.second = row.value(0).toLongLong(),
                         .macAddress = row.value(1).toString(),
                         .traffic = {.download = row.value(2).toLongLong(),
                                     .upload = row.value(3).toLongLong()}});
        });
}

} // namespace

std::optional<QList<SecondTraffic>> RecentTraffic::read(const QSqlDatabase& counting,
                                                        std::optional<qint64> since)
{
    Rows rows;
    if (since) {
        return readRows(counting, seconds(), *since, rows) ? std::optional(rows) : std::nullopt;
    }
    const qint64 recent = QDateTime::currentSecsSinceEpoch() - SecondsKept;
    const qint64 wholeMinute = recent - recent % LiveTraffic::SecondsPerMinute;
    const bool isRead = readRows(counting, minutes(), wholeMinute, rows) &&
                        readRows(counting, seconds(), wholeMinute, rows);
    return isRead ? std::optional(rows) : std::nullopt;
}
