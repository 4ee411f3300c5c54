// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/MousePointPruning.h"

#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

MousePointPruning::MousePointPruning(Database& database, Settings& settings)
    : m_database(database)
    , m_settings(settings)
{
}

void MousePointPruning::start(const QDateTime& now)
{
    m_lastPruning = m_settings.value(SettingsKeys::LastPruneMousepoints);
    if (!m_lastPruning.isValid()) {
        setLastPruning(now);
    }
}

bool MousePointPruning::pruneMousePoints(const QDateTime& now)
{
    constexpr qint64 lastSecondOfTheDay = 86'399;
    if (m_database.isLent() || m_lastPruning.secsTo(now) <= lastSecondOfTheDay) {
        return false;
    }
    DSqlQuery query(&m_database);
    query.exec(QStringLiteral("DELETE FROM mousepoints WHERE \"day\" < date('now', '-3 months')"));
    query.exec(QStringLiteral(
        "DELETE FROM mouseclicks_frequency WHERE \"day\" < date('now', '-3 months')"));
    setLastPruning(now);
    return true;
}

void MousePointPruning::setLastPruning(const QDateTime& time)
{
    m_lastPruning = time;
    m_settings.setValue(SettingsKeys::LastPruneMousepoints, time);
}
