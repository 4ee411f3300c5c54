// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/IntegrityCheck.h"

#include "storage/DSqlQuery.h"

#include <QSqlError>

#include <sqlite3.h>

namespace {

/// Whether an error of the check itself is the file's fault: a damage to the first pages or a file
/// cut short ends the statement with an error, in place of a result that names it.
bool isDamage(int sqliteCode)
{
    constexpr int primaryMask = 0xff;
    switch (sqliteCode & primaryMask) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return true;
    default:
        return sqliteCode == SQLITE_IOERR_READ || sqliteCode == SQLITE_IOERR_SHORT_READ ||
               sqliteCode == SQLITE_IOERR_CORRUPTFS || sqliteCode == SQLITE_IOERR_DATA;
    }
}

} // namespace

IntegrityCheck IntegrityCheck::run(const QSqlDatabase& connection, Depth depth)
{
    DSqlQuery query(connection);
    const QString statement = depth == Depth::Quick ? QStringLiteral("PRAGMA quick_check;")
                                                    : QStringLiteral("PRAGMA integrity_check;");
    if (query.exec(statement) && query.next()) {
        const QString text = query.value(0).toString();
        return {text == QLatin1String("ok") ? Verdict::Sound : Verdict::Damaged, text};
    }
    const QSqlError error = query.lastError();
    const Verdict verdict =
        isDamage(error.nativeErrorCode().toInt()) ? Verdict::Damaged : Verdict::Unknown;
    return {verdict, error.databaseText()};
}
