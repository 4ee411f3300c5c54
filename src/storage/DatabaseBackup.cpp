// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseBackup.h"

#include "base/Log.h"
#include "storage/DatabaseFiles.h"
#include "storage/IntegrityCheck.h"
#include "storage/ReadingConnection.h"
#include "storage/SqliteHandle.h"

#include <QFile>
#include <QThread>

#include <sqlite3.h>

#include <chrono>

namespace {

using namespace std::chrono_literals;

/// 256 KiB at SQLite's default page size: a fraction of a millisecond, some 25 MB a second.
constexpr int PagesPerStep = 64;
constexpr auto StepInterval = 10ms;

} // namespace

void DatabaseBackup::CloseDatabase::operator()(sqlite3* database) const
{
    sqlite3_close(database);
}

void DatabaseBackup::FinishBackup::operator()(sqlite3_backup* backup) const
{
    sqlite3_backup_finish(backup);
}

DatabaseBackup::DatabaseBackup(const QSqlDatabase& source, const QString& target, QObject* parent)
    : QObject(parent)
    , m_source(source)
    , m_target(target)
    , m_part(target + QStringLiteral(".part"))
{
    m_timer.setInterval(StepInterval);
    QObject::connect(&m_timer, &QTimer::timeout, this, &DatabaseBackup::copySomePages);
}

DatabaseBackup::~DatabaseBackup()
{
    m_abandoned = true;
    const bool unfinished = isRunning();
    if (m_checking) {
        m_checking->wait();
    }
    m_backup.reset();
    m_copy.reset();
    if (unfinished) {
        QFile::remove(m_part);
    }
}

bool DatabaseBackup::start()
{
    sqlite3* source = sqliteHandle(m_source);
    if (source == nullptr) {
        Log::warn("Unable to back up the database: its SQLite library is another one");
        return false;
    }
    if (!openTarget()) {
        return false;
    }
    m_backup.reset(sqlite3_backup_init(m_copy.get(), "main", source, "main"));
    if (!m_backup) {
        Log::error("Unable to back up the database: {}", sqlite3_errmsg(m_copy.get()));
        return false;
    }
    m_timer.start();
    return true;
}

bool DatabaseBackup::isRunning() const
{
    return m_copy || m_checking;
}

bool DatabaseBackup::openTarget()
{
    if (!DatabaseFiles::createEmpty(m_part)) {
        Log::error("Unable to create database backup: {}", m_part);
        return false;
    }
    sqlite3* copy = nullptr;
    const int result = sqlite3_open_v2(QFile::encodeName(m_part).constData(), &copy,
                                       SQLITE_OPEN_READWRITE, nullptr);
    m_copy.reset(copy);
    // The file counts only once it is whole, so it needs neither a journal nor SQLite's own syncs.
    if (result != SQLITE_OK ||
        sqlite3_exec(copy, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;", nullptr, nullptr,
                     nullptr) != SQLITE_OK) {
        Log::error("Unable to open database backup {}: {}", m_part, sqlite3_errmsg(copy));
        return false;
    }
    return true;
}

void DatabaseBackup::copySomePages()
{
    switch (const int result = sqlite3_backup_step(m_backup.get(), PagesPerStep)) {
    case SQLITE_OK:
    case SQLITE_BUSY:   // Another connection writes,
    case SQLITE_LOCKED: // or this one is inside a transaction: the next turn of the timer goes on.
        return;
    case SQLITE_DONE:
        m_timer.stop();
        checkCopy();
        return;
    default:
        m_timer.stop();
        Log::error("Unable to back up the database: {}", sqlite3_errstr(result));
        end(false);
    }
}

void DatabaseBackup::checkCopy()
{
    m_backup.reset();
    m_copy.reset();
    m_checking.reset(QThread::create(
        [this] { m_sound = isCopySound() && DatabaseFiles::replace(m_part, m_target); }));
    QObject::connect(m_checking.get(), &QThread::finished, this, [this] {
        m_checking->wait();
        m_checking.reset();
        end(m_sound);
    });
    m_checking->start(QThread::LowPriority);
}

bool DatabaseBackup::isCopySound()
{
    const ReadingConnection connection(m_part);
    const std::optional<IntegrityCheck> check =
        IntegrityCheck::runUntil(m_abandoned, connection.database(), IntegrityCheck::Depth::Full);
    if (!check) {
        return false;
    }
    Log::info("Database integrity check: {}", check->text);
    return check->verdict == IntegrityCheck::Verdict::Sound;
}

void DatabaseBackup::end(bool replaced)
{
    m_backup.reset();
    m_copy.reset();
    if (replaced) {
        Log::info("Refreshed database backup: {}", m_target);
    } else {
        QFile::remove(m_part);
        Log::error("Database backup was not refreshed: {}", m_target);
    }
    Q_EMIT finished(replaced);
}
