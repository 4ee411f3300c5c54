// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/History.h"

#include "storage/ReadingConnection.h"
#include "ui/TodayQuery.h"

Totals& Totals::operator+=(const Totals& other)
{
    keys += other.keys;
    clicks += other.clicks;
    scrolls += other.scrolls;
    inches += other.inches;
    uptimeMs += other.uptimeMs;
    return *this;
}

History::History(const QString& databaseFile)
    : m_databaseFile(databaseFile)
{
}

History::~History() = default;

const QSqlDatabase& History::connection()
{
    if (!m_connection || !m_connection->isOpen()) {
        m_connection = std::make_unique<ReadingConnection>(m_databaseFile);
    }
    return m_connection->database();
}

std::optional<qint64> History::version()
{
    return TodayQuery::dataVersion(connection());
}

double History::preparedShare() const
{
    return 1;
}
