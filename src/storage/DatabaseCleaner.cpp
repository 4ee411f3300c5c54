// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseCleaner.h"

#include "storage/DSqlQuery.h"
#include "storage/HistoryStamp.h"

#include <algorithm>

namespace {

const QStringList& statisticsTables()
{
    static const QStringList tables{
        QStringLiteral("keypresses"),
        QStringLiteral("mouseclicks"),
        QStringLiteral("mouseclicks_frequency"),
        QStringLiteral("mousepoints"),
        QStringLiteral("keypress_frequency"),
        QStringLiteral("keycombo_frequency"),
        QStringLiteral("input_per_application"),
        QStringLiteral("network_interfaces"),
        QStringLiteral("network_interface_bandwidth"),
        QStringLiteral("network_interface_bandwidth_second"),
        QStringLiteral("network_protocol_bandwidth"),
        QStringLiteral("application_bandwidth_second"),
        QStringLiteral("application_bandwidth"),
        QStringLiteral("country_bandwidth"),
        QStringLiteral("application_active_hour"),
        QStringLiteral("application_uptime"),
        QStringLiteral("uptimes"),
        QStringLiteral("unzurged_stats"),
        QStringLiteral("application_ignore"),
        QStringLiteral("pending_applications_stats"),
        QStringLiteral("applications"),
        QStringLiteral("geekwindow_labels"),
    };
    return tables;
}

/// What else the client has recorded of the user or received for them.
const QStringList& furtherTables()
{
    static const QStringList tables{
        QStringLiteral("keypress_frequency_application"),
        QStringLiteral("keycombo_frequency_application"),
        QStringLiteral("mouseclicks_frequency_application"),
        QStringLiteral("mousescrolls"),
        QStringLiteral("mousedistance"),
        QStringLiteral("uptime_hour"),
        QStringLiteral("applications_upgrades"),
        QStringLiteral("computer_info"),
        QStringLiteral("milestones_log"),
        QStringLiteral("usage_stats_time"),
        QStringLiteral("usage_stats_events"),
        QStringLiteral("website_pending_messages"),
    };
    return tables;
}

} // namespace

DatabaseCleaner::DatabaseCleaner(const QSqlDatabase& connection)
    : m_connection(connection)
{
}

bool DatabaseCleaner::cleanStatistics()
{
    return clean(statisticsTables());
}

bool DatabaseCleaner::cleanEverythingCounted()
{
    return clean(statisticsTables() + furtherTables());
}

bool DatabaseCleaner::clean(const QStringList& tables)
{
    if (!m_connection.transaction()) {
        return false;
    }
    if (deleteRows(tables) && startTodayAtZero() && HistoryStamp::renew(m_connection) &&
        m_connection.commit()) {
        return true;
    }
    m_connection.rollback();
    return false;
}

bool DatabaseCleaner::deleteRows(const QStringList& tables)
{
    return std::all_of(tables.begin(), tables.end(), [this](const QString& table) {
        return DSqlQuery(m_connection).exec(QStringLiteral("DELETE FROM ") + table);
    });
}

bool DatabaseCleaner::startTodayAtZero()
{
    DSqlQuery query(m_connection);
    return query.exec(QStringLiteral("INSERT OR IGNORE INTO keypresses (\"day\", \"count\") "
                                     "VALUES(date('now', 'localtime'), 0);")) &&
           query.exec(QStringLiteral("INSERT OR IGNORE INTO mouseclicks (\"day\", \"count\") "
                                     "VALUES(date('now', 'localtime'), 0);"));
}
