// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/EarlierTotals.h"

#include "account/OnlineFigures.h"
#include "account/UnzurgedCounts.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/HistoryStamp.h"

#include <QSqlError>

#include <array>

namespace {

/// The end of the year 9999, beyond which SQLite knows no date.
constexpr qint64 LongestUptime = 253'402'300'799;
constexpr qint64 MostMiB = static_cast<qint64>(CounterLimit / BytesPerMiB);

const QString Day = QStringLiteral("0000-00-00");
const QString FirstMoment = QStringLiteral("1970-01-01 00:00:00");
const QString PseudoInterface = QStringLiteral("00:00:00:00:00:00");

bool run(Database& database, const QString& statement, const QVariantList& values)
{
    DSqlQuery query(&database, statement, false);
    for (int i = 0; i < values.size(); ++i) {
        query.bindValue(i, values.at(i));
    }
    return query.exec();
}

bool replaceCount(Database& database, const QString& statement, qint64 count)
{
    return run(database, statement, {Day, count});
}

} // namespace

std::optional<EarlierTotals> EarlierTotals::from(const QMap<QString, QVariant>& computerStats)
{
    struct Field
    {
        const char* name = nullptr;
        qint64 EarlierTotals::*value = nullptr;
        qint64 most = CounterLimit;
    };

    static constexpr std::array<Field, 7> fields{{
        {"keys", &EarlierTotals::m_keys},
        {"clicks", &EarlierTotals::m_clicks},
        {"download", &EarlierTotals::m_downloadMiB, MostMiB},
        {"upload", &EarlierTotals::m_uploadMiB, MostMiB},
        {"uptime", &EarlierTotals::m_uptimeSeconds, LongestUptime},
        {"scrolls", &EarlierTotals::m_scrolls},
        {"distance_inches", &EarlierTotals::m_distanceInches},
    }};
    if (computerStats.isEmpty()) {
        return std::nullopt;
    }
    EarlierTotals totals;
    for (const auto& [name, value, most] : fields) {
        const auto number = OnlineFigures::wholeNumber(computerStats.value(QLatin1String(name)));
        if (!number || *number > most) {
            Log::warn("The computer's earlier totals are not imported: {} is no usable number",
                      name);
            return std::nullopt;
        }
        totals.*value = *number;
    }
    return totals;
}

bool EarlierTotals::store(Database& database) const
{
    QSqlDatabase connection = database.connection();
    if (!connection.transaction()) {
        Log::error("Unable to import the computer's earlier totals: {}",
                   connection.lastError().text());
        return false;
    }
    // Sums of the days before are kept elsewhere, which the stamp renews.
    if (storeCounts(database) && storeBandwidth(database) && HistoryStamp::renew(connection) &&
        connection.commit()) {
        Log::info("Imported the computer's earlier totals");
        return true;
    }
    Log::error("Unable to import the computer's earlier totals: {}", connection.lastError().text());
    connection.rollback();
    return false;
}

bool EarlierTotals::storeCounts(Database& database) const
{
    return replaceCount(database,
                        QStringLiteral("REPLACE INTO keypresses (\"day\", \"hour\", \"count\", "
                                       "\"profile_id\") VALUES (?, 0, ?, 0)"),
                        m_keys) &&
           replaceCount(database,
                        QStringLiteral("REPLACE INTO mouseclicks (\"day\", \"hour\", \"count\", "
                                       "\"profile_id\") VALUES (?, 0, ?, 0)"),
                        m_clicks) &&
           replaceCount(database,
                        QStringLiteral("REPLACE INTO mousedistance (\"day\", \"hour\", "
                                       "\"distance_inches\", \"profile_id\") VALUES (?, 0, ?, 0)"),
                        m_distanceInches) &&
           replaceCount(database,
                        QStringLiteral("REPLACE INTO mousescrolls (\"day\", \"hour\", "
                                       "\"direction\", \"count\", \"profile_id\") "
                                       "VALUES (?, 0, 0, ?, 0)"),
                        m_scrolls) &&
           run(database,
               QStringLiteral("REPLACE INTO uptimes (\"boot_time\", \"end_time\") "
                              "VALUES (?, datetime(?, 'unixepoch'))"),
               {FirstMoment, m_uptimeSeconds});
}

bool EarlierTotals::storeBandwidth(Database& database) const
{
    constexpr auto bytesPerMiB = static_cast<qint64>(BytesPerMiB);
    // Last seen long ago: it is no interface that this computer has now.
    return run(database,
               QStringLiteral("REPLACE INTO network_interfaces (\"mac_address\", "
                              "\"description\", \"last_update\") VALUES (?, ?, ?)"),
               {PseudoInterface, QStringLiteral("Imported Data"), FirstMoment}) &&
           run(database,
               QStringLiteral("REPLACE INTO network_interface_bandwidth (\"day\", \"hour\", "
                              "\"download\", \"upload\", \"mac_address\") "
                              "VALUES (?, 0, ?, ?, ?)"),
               {Day, m_downloadMiB * bytesPerMiB, m_uploadMiB * bytesPerMiB, PseudoInterface});
}
