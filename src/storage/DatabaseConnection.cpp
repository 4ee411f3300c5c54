// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseConnection.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"

QSqlDatabase DatabaseConnection::named(const QString& name)
{
    if (QSqlDatabase::contains(name)) {
        Log::info("Re-using existing db connection with name: {}", name);
        return QSqlDatabase::database(name, false);
    }
    Log::info("Creating db connection with name: {}", name);
    return QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
}

QString DatabaseConnection::options(DatabaseFiles::Access access)
{
    const QString options = QStringLiteral(";QSQLITE_BUSY_TIMEOUT=%1").arg(BusyTimeoutMs);
    return access == DatabaseFiles::Access::ReadOnly
               ? options + QStringLiteral(";QSQLITE_OPEN_READONLY")
               : options;
}

void DatabaseConnection::tune(const QSqlDatabase& connection)
{
    for (const QString& pragma : {
             QStringLiteral("PRAGMA secure_delete = false;"),
             QStringLiteral("PRAGMA journal_mode = TRUNCATE"),
             QStringLiteral("PRAGMA temp_store   = MEMORY;"),
             QStringLiteral("PRAGMA synchronous  = NORMAL;"),
             QStringLiteral("PRAGMA cache_size = -30720;"),
         }) {
        DSqlQuery(connection).exec(pragma);
    }
    limitMemory(connection);
}

void DatabaseConnection::limitMemory(const QSqlDatabase& connection)
{
    DSqlQuery(connection).exec(QStringLiteral("PRAGMA soft_heap_limit = 36700160;"));
}
