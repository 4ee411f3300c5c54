// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/WritingConnection.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/DatabaseConnection.h"

#include <QSqlError>

#include <malloc.h>

WritingConnection::WritingConnection(const QString& fileName)
    : m_connection(DatabaseConnection::named(Database::ConnectionName + QStringLiteral("-writing")))
{
    m_connection.setDatabaseName(fileName);
    m_connection.setConnectOptions(DatabaseConnection::options(DatabaseFiles::Access::ReadWrite));
    if (!m_connection.open()) {
        Log::error("Unable to open database: {}", m_connection.lastError().text());
        return;
    }
    DatabaseConnection::tune(m_connection);
    // The limit of the heap counts for the cache as well: beyond it, SQLite writes changed pages to
    // the file however large the cache may be. Who holds the file for longer than this is another
    // program, for which the user need not wait five minutes.
    for (const QString& pragma : {QStringLiteral("PRAGMA cache_size = -262144"),
                                  QStringLiteral("PRAGMA soft_heap_limit = 402653184"),
                                  QStringLiteral("PRAGMA busy_timeout = 10000")}) {
        DSqlQuery(m_connection).exec(pragma);
    }
}

WritingConnection::~WritingConnection()
{
    const QString name = m_connection.connectionName();
    if (m_connection.isOpen()) {
        DatabaseConnection::limitMemory(m_connection);
    }
    m_connection = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
    ::malloc_trim(0);
}

bool WritingConnection::isOpen() const
{
    return m_connection.isOpen();
}

const QSqlDatabase& WritingConnection::database() const
{
    return m_connection;
}
