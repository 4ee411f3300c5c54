// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/IntegrityCheck.h"

#include "storage/DSqlQuery.h"
#include "storage/ReadingConnection.h"
#include "storage/SqliteHandle.h"

#include <QSqlError>

#include <sqlite3.h>

namespace {

/// How many instructions of SQLite's machine run between two looks at whether to give up.
constexpr int InstructionsPerLook = 10'000;

int isAbandoned(void* flag)
{
    return static_cast<const std::atomic<bool>*>(flag)->load() ? 1 : 0;
}

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

std::optional<IntegrityCheck> IntegrityCheck::runUntil(const std::atomic<bool>& abandoned,
                                                       const QSqlDatabase& connection, Depth depth)
{
    sqlite3* handle = sqliteHandle(connection);
    if (handle != nullptr) {
        sqlite3_progress_handler(handle, InstructionsPerLook, &isAbandoned,
                                 const_cast<std::atomic<bool>*>(&abandoned));
    }
    const IntegrityCheck check = run(connection, depth);
    if (handle != nullptr) {
        sqlite3_progress_handler(handle, 0, nullptr, nullptr);
    }
    return abandoned ? std::nullopt : std::optional(check);
}

bool IntegrityCheck::isSound(const QString& databaseFile)
{
    const ReadingConnection connection(databaseFile);
    return connection.isOpen() &&
           run(connection.database(), Depth::Quick).verdict == Verdict::Sound;
}

bool IntegrityCheck::canBeAbandoned(const QSqlDatabase& connection)
{
    return sqliteHandle(connection) != nullptr;
}
