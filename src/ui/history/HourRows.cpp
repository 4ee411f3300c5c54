// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/HourRows.h"

#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

/// Counts of one slot, those of the same thing side by side.
struct Parts
{
    qint64 keys[3] = {};
    qint64 clicks[3] = {};
    qint64 scrolls = 0;
    double inches = 0;
    qint64 uptimeMs = 0;
};

using HourParts = std::map<CountedHour, Parts>;

QString slotRows(const QString& values, const QString& table)
{
    return RowReader::scoped(QStringLiteral("SELECT \"day\", \"hour\", \"profile_id\", ") + values +
                                 QStringLiteral(" FROM ") + table,
                             QStringLiteral("GROUP BY \"day\", \"hour\", \"profile_id\""));
}

constexpr int FirstValue = 3; ///< Behind day, hour and profile.

/// Hands the parts of each slot that `table` has rows for to `take`, with its row.
template <typename Take>
bool readTable(const QSqlDatabase& connection, const HistoryScope& scope, const QString& values,
               const QString& table, HourParts& parts, Take take)
{
    return RowReader::forEachScopedRow(
        connection, slotRows(values, table), scope, [&parts, take](const QSqlQuery& row) {
            const QDate day = QDate::fromString(row.value(0).toString(), Qt::ISODate);
            if (day.isValid()) {
                take(parts[{.julianDay = day.toJulianDay(),
                            .hour = row.value(1).toInt(),
                            .profileId = row.value(2).toInt()}],
                     row);
            }
        });
}

bool readKeys(const QSqlDatabase& connection, const HistoryScope& scope, HourParts& parts)
{
    const QString count = QStringLiteral("SUM(\"count\")");
    return readTable(connection, scope, count, QStringLiteral("keypresses"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.keys[0] = row.value(FirstValue).toLongLong();
                     }) &&
           readTable(connection, scope, count, QStringLiteral("keypress_frequency"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.keys[1] = row.value(FirstValue).toLongLong();
                     });
}

bool readClicks(const QSqlDatabase& connection, const HistoryScope& scope, HourParts& parts)
{
    const QString count = QStringLiteral("SUM(\"count\")");
    return readTable(connection, scope, count, QStringLiteral("mouseclicks"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.clicks[0] = row.value(FirstValue).toLongLong();
                     }) &&
           readTable(connection, scope, count, QStringLiteral("mouseclicks_frequency"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.clicks[1] = row.value(FirstValue).toLongLong();
                     });
}

bool readApplications(const QSqlDatabase& connection, const HistoryScope& scope, HourParts& parts)
{
    return readTable(connection, scope, QStringLiteral("SUM(\"keys\"), SUM(\"clicks\")"),
                     QStringLiteral("input_per_application"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.keys[2] = row.value(FirstValue).toLongLong();
                         part.clicks[2] = row.value(FirstValue + 1).toLongLong();
                     });
}

bool readRest(const QSqlDatabase& connection, const HistoryScope& scope, HourParts& parts)
{
    return readTable(connection, scope, QStringLiteral("SUM(\"count\")"),
                     QStringLiteral("mousescrolls"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.scrolls = row.value(FirstValue).toLongLong();
                     }) &&
           readTable(connection, scope, QStringLiteral("SUM(\"distance_inches\")"),
                     QStringLiteral("mousedistance"), parts,
                     [](Parts& part, const QSqlQuery& row) {
                         part.inches = row.value(FirstValue).toDouble();
                     }) &&
           readTable(connection, scope, QStringLiteral("SUM(\"msec_active\")"),
                     QStringLiteral("uptime_hour"), parts, [](Parts& part, const QSqlQuery& row) {
                         part.uptimeMs = row.value(FirstValue).toLongLong();
                     });
}

} // namespace

bool HourRows::read(const QSqlDatabase& connection, const HistoryScope& scope, HourSums& sums)
{
    HourParts parts;
    if (!readKeys(connection, scope, parts) || !readClicks(connection, scope, parts) ||
        !readApplications(connection, scope, parts) || !readRest(connection, scope, parts)) {
        return false;
    }
    for (const auto& [slot, part] : parts) {
        const Totals totals{.keys = std::ranges::max(part.keys),
                            .clicks = std::ranges::max(part.clicks),
                            .scrolls = part.scrolls,
                            .inches = part.inches,
                            .uptimeMs = part.uptimeMs};
        if (!totals.isEmpty()) {
            sums[slot] += totals;
        }
    }
    return true;
}

std::optional<qint64> HourRows::keys(const QSqlDatabase& connection, const HistoryScope& scope)
{
    HourParts parts;
    if (!readKeys(connection, scope, parts) || !readApplications(connection, scope, parts)) {
        return std::nullopt;
    }
    qint64 sum = 0;
    for (const auto& [slot, part] : parts) {
        sum += std::ranges::max(part.keys);
    }
    return sum;
}
