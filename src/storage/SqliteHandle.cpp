// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SqliteHandle.h"

#include "storage/DSqlQuery.h"

#include <QSqlDriver>

#include <sqlite3.h>

sqlite3* sqliteHandle(const QSqlDatabase& connection)
{
    DSqlQuery query(connection);
    if (!query.exec(QStringLiteral("SELECT sqlite_source_id()")) || !query.next() ||
        query.value(0).toString() != QLatin1String(sqlite3_sourceid())) {
        return nullptr;
    }
    const QVariant handle = connection.driver()->handle();
    return qstrcmp(handle.typeName(), "sqlite3*") == 0
               ? *static_cast<sqlite3* const*>(handle.data())
               : nullptr;
}
