// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseCopy.h"

#include "storage/DatabaseFiles.h"
#include "storage/DiskSpace.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <memory>

namespace {

/// 4 MiB at SQLite's default page size: between two steps the copy can be given up.
constexpr int PagesPerStep = 1024;

/// For a transaction that another program has open. The client's own connections hold none.
constexpr int BusyTimeoutMs = 10'000;

struct CloseDatabase
{
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

struct FinishBackup
{
    void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;
using BackupHandle = std::unique_ptr<sqlite3_backup, FinishBackup>;

/// Opens a file that is there, and runs `statements` on it. Null, and the reason, where one of both
/// fails.
DatabaseHandle open(const QString& path, int flags, const char* statements, QString& reason)
{
    sqlite3* opened = nullptr;
    int result = sqlite3_open_v2(QFile::encodeName(path).constData(), &opened, flags, nullptr);
    DatabaseHandle database(opened);
    if (result == SQLITE_OK) {
        sqlite3_busy_timeout(opened, BusyTimeoutMs);
        result = sqlite3_exec(opened, statements, nullptr, nullptr, nullptr);
    }
    if (result == SQLITE_OK) {
        return database;
    }
    reason = QString::fromUtf8(opened != nullptr ? sqlite3_errmsg(opened) : sqlite3_errstr(result));
    return nullptr;
}

FileWork copyPages(sqlite3* source, sqlite3* target, const FileProgress& progress)
{
    const BackupHandle backup(sqlite3_backup_init(target, "main", source, "main"));
    if (!backup) {
        return FileWork::failed(QString::fromUtf8(sqlite3_errmsg(target)));
    }
    while (true) {
        const int result = sqlite3_backup_step(backup.get(), PagesPerStep);
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            return FileWork::failed(QString::fromUtf8(sqlite3_errstr(result)));
        }
        const int pages = sqlite3_backup_pagecount(backup.get());
        if (!progress(pages - sqlite3_backup_remaining(backup.get()), pages)) {
            return FileWork::abandoned();
        }
        if (result == SQLITE_DONE) {
            return FileWork::done();
        }
    }
}

FileWork copyThroughSqlite(const QString& source, const QString& target,
                           const FileProgress& progress)
{
    QString reason;
    // The transaction keeps the right to read between two steps; without it, a writer in between
    // would make the copying start over.
    const DatabaseHandle from =
        open(source, SQLITE_OPEN_READONLY, "BEGIN; SELECT COUNT(*) FROM sqlite_master;", reason);
    if (!from) {
        return FileWork::failed(reason);
    }
    if (!DatabaseFiles::createEmpty(target)) {
        return FileWork::failed(
            QCoreApplication::translate("DatabaseCopy", "%1 cannot be written").arg(target));
    }
    // The file counts only once it is whole, so it needs neither a journal nor SQLite's own syncs.
    const DatabaseHandle to = open(target, SQLITE_OPEN_READWRITE,
                                   "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;", reason);
    return to ? copyPages(from.get(), to.get(), progress) : FileWork::failed(reason);
}

} // namespace

FileWork DatabaseCopy::copy(const QString& source, const QString& target,
                            const FileProgress& progress)
{
    if (QFileInfo(source).size() > DiskSpace::usable(QFileInfo(target).absolutePath())) {
        return FileWork::failed(
            QCoreApplication::translate("DatabaseCopy", "there is not enough free disk space"));
    }
    FileWork work = copyThroughSqlite(source, target, progress);
    if (!work.isDone()) {
        QFile::remove(target);
    }
    return work;
}
