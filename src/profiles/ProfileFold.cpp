// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileFold.h"

#include "storage/DSqlQuery.h"

#include <algorithm>

namespace {

ProfileFold::Table table(const QString& name, const QString& keys, const QString& values)
{
    return {name, keys.split(QLatin1Char(' ')), values.split(QLatin1Char(' '))};
}

bool execFor(const QSqlDatabase& connection, const QString& statement, int profileId)
{
    DSqlQuery query(connection);
    if (!query.prepare(statement)) {
        return false;
    }
    query.bindValue(0, profileId);
    return query.exec();
}

/// Rows whose key the default profile does not have change hands as they are. That is nearly all of
/// them, and for these nothing is looked up and no row is written anew.
QString moveStatement(const ProfileFold::Table& table)
{
    return QStringLiteral("UPDATE OR IGNORE %1 SET profile_id = 0 WHERE profile_id = ?")
        .arg(table.name);
}

/// The remaining rows take up the default profile's values and replace its rows.
QString mergeStatement(const ProfileFold::Table& table)
{
    QStringList sameKey;
    for (const QString& key : table.keys) {
        sameKey += QStringLiteral("%1 = k.%1").arg(key);
    }
    QStringList sums;
    for (const QString& value : table.values) {
        sums += QStringLiteral("%1 = k.%1 + (SELECT %1 FROM %2 WHERE %3 AND profile_id = 0)")
                    .arg(value, table.name, sameKey.join(QStringLiteral(" AND ")));
    }
    return QStringLiteral("UPDATE OR REPLACE %1 AS k SET profile_id = 0, %2 WHERE profile_id = ?")
        .arg(table.name, sums.join(QStringLiteral(", ")));
}

} // namespace

const QList<ProfileFold::Table>& ProfileFold::tables()
{
    static const QList<Table> all = [] {
        const QString day = QStringLiteral("day hour");
        const QString count = QStringLiteral("count");
        return QList<Table>{
            table(QStringLiteral("keypresses"), day, count),
            table(QStringLiteral("keypress_frequency"), day + QStringLiteral(" key"), count),
            table(QStringLiteral("keypress_frequency_application"),
                  day + QStringLiteral(" key path"), count),
            table(QStringLiteral("keycombo_frequency"), day + QStringLiteral(" combo"), count),
            table(QStringLiteral("keycombo_frequency_application"),
                  day + QStringLiteral(" combo path"), count),
            table(QStringLiteral("mouseclicks"), day, count),
            table(QStringLiteral("mouseclicks_frequency"), day + QStringLiteral(" button"), count),
            table(QStringLiteral("mouseclicks_frequency_application"),
                  day + QStringLiteral(" button path"), count),
            table(QStringLiteral("mousedistance"), day, QStringLiteral("distance_inches")),
            table(QStringLiteral("mousescrolls"), day + QStringLiteral(" direction"), count),
            table(QStringLiteral("uptime_hour"), day, QStringLiteral("msec_active")),
            table(QStringLiteral("application_active_hour"), day + QStringLiteral(" path"),
                  QStringLiteral("seconds_active")),
            table(QStringLiteral("application_uptime"), QStringLiteral("path"),
                  QStringLiteral("time")),
            table(QStringLiteral("network_protocol_bandwidth"),
                  day + QStringLiteral(" protocol port_number"), QStringLiteral("download upload")),
            table(QStringLiteral("input_per_application"), day + QStringLiteral(" path"),
                  QStringLiteral("keys clicks distance_inches scrolls")),
        };
    }();
    return all;
}

bool ProfileFold::apply(const QSqlDatabase& connection, int profileId)
{
    return std::all_of(tables().cbegin(), tables().cend(), [&](const Table& table) {
        return execFor(connection, moveStatement(table), profileId) &&
               execFor(connection, mergeStatement(table), profileId);
    });
}
