// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/RestoreCheck.h"

#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/DatabaseFiles.h"
#include "storage/IntegrityCheck.h"
#include "storage/ReadingConnection.h"

#include <optional>

namespace {

/// The number that `query` selects; null where that fails.
std::optional<int> count(const QSqlDatabase& connection, const QString& query)
{
    DSqlQuery select(connection);
    return select.exec(query) && select.next() ? std::optional(select.value(0).toInt())
                                               : std::nullopt;
}

/// Tables that every version had. What runs by itself, none ever had: a trigger in a file from
/// elsewhere would run with the client's own statements.
std::optional<bool> isOurs(const QSqlDatabase& connection)
{
    constexpr int ownTables = 4;
    const std::optional<int> own = count(
        connection, QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND "
                                   "name IN ('applications', 'input_per_application', "
                                   "'keypresses', 'mouseclicks')"));
    const std::optional<int> strange =
        count(connection, QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE "
                                         "type NOT IN ('table', 'index') OR "
                                         "sql LIKE 'CREATE VIRTUAL%'"));
    return own && strange ? std::optional(*own == ownTables && *strange == 0) : std::nullopt;
}

} // namespace

RestoreCheck RestoreCheck::run(const QString& file, const std::atomic<bool>& abandoned)
{
    const std::optional<int> version = DatabaseFiles(file).storedVersion();
    if (!version) {
        return {Verdict::NoDatabase, {}};
    }
    // Without locks, it opens whatever journal mode the file is in, and creates nothing beside it.
    const ReadingConnection connection(file, ReadingConnection::Locking::None);
    const std::optional<bool> ours = isOurs(connection.database());
    if (ours && (!*ours || *version < 1)) {
        return {Verdict::Foreign, {}};
    }
    if (ours && *version > Database::SchemaVersion) {
        return {Verdict::Newer, {}};
    }
    const std::optional<IntegrityCheck> check =
        IntegrityCheck::runUntil(abandoned, connection.database(), IntegrityCheck::Depth::Full);
    if (!check) {
        return {Verdict::Abandoned, {}};
    }
    return {ours && check->verdict == IntegrityCheck::Verdict::Sound ? Verdict::Fit
                                                                     : Verdict::Damaged,
            check->text};
}
