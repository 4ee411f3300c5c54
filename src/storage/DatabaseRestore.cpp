// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseRestore.h"

#include "base/Log.h"
#include "storage/DatabaseArchive.h"
#include "storage/DatabaseCopy.h"
#include "storage/DatabaseFiles.h"
#include "storage/DiskSpace.h"
#include "storage/RestoreCheck.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace {

enum class Content
{
    Unreadable,
    Database,
    Archive,
    Other,
};

/// What the file's first bytes say, which its name may not.
Content contentOf(const QString& path)
{
    constexpr qint64 magicBytes = 16;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return Content::Unreadable;
    }
    const QByteArray start = file.read(magicBytes);
    if (start.startsWith("SQLite format 3")) {
        return Content::Database;
    }
    return start.startsWith("PK") ? Content::Archive : Content::Other;
}

} // namespace

DatabaseRestore::DatabaseRestore(const QString& dataDirectory, QObject* parent)
    : QObject(parent)
    , m_directory(dataDirectory)
    , m_part(dataDirectory + QLatin1Char('/') + DatabaseFiles::RestoreName +
             QStringLiteral(".part"))
{
}

DatabaseRestore::~DatabaseRestore()
{
    cancel();
    if (m_thread) {
        m_thread->wait();
    }
}

bool DatabaseRestore::start(const QString& source)
{
    if (isRunning()) {
        return false;
    }
    Log::info("Preparing to restore the database from: {}", source);
    m_cancelled = false;
    m_percent = -1;
    m_thread.reset(QThread::create([this, source] { m_end = stage(source); }));
    connect(m_thread.get(), &QThread::finished, this, &DatabaseRestore::end);
    m_thread->start();
    return true;
}

void DatabaseRestore::cancel()
{
    m_cancelled = true;
}

DatabaseRestore::End DatabaseRestore::stage(const QString& source)
{
    End end = fetch(source);
    if (end.outcome == Outcome::Staged) {
        end = check();
    }
    if (end.outcome == Outcome::Staged) {
        end = putInPlace();
    }
    if (end.outcome != Outcome::Staged) {
        QFile::remove(m_part);
    }
    const QString downloaded = m_directory + QLatin1Char('/') + DatabaseFiles::RestoreArchiveName;
    if (QFileInfo(source) == QFileInfo(downloaded)) {
        QFile::remove(downloaded);
    }
    return end;
}

DatabaseRestore::End DatabaseRestore::fetch(const QString& source)
{
    // Reading the open database past SQLite would drop its locks on it.
    if (QFileInfo(source) == QFileInfo(m_directory + QLatin1Char('/') + DatabaseFiles::Name)) {
        return {Outcome::Refused, tr("This is the database that is in use.")};
    }
    switch (contentOf(source)) {
    case Content::Database:
        return copy(source);
    case Content::Archive:
        return unpack(source);
    case Content::Unreadable:
        return {Outcome::Failed, tr("The file cannot be read.")};
    case Content::Other:
        break;
    }
    return {Outcome::Refused, tr("The file is neither a database nor a zip archive of one.")};
}

DatabaseRestore::End DatabaseRestore::copy(const QString& source)
{
    const FileWork work = DatabaseCopy::copy(
        source, m_part, [this](qint64 done, qint64 total) { return tell(done, total); });
    switch (work.end) {
    case FileWork::End::Done:
        return {Outcome::Staged};
    case FileWork::End::Abandoned:
        return {Outcome::Cancelled};
    case FileWork::End::Failed:
        break;
    }
    return {Outcome::Failed, tr("The database could not be copied: %1.").arg(work.reason)};
}

DatabaseRestore::End DatabaseRestore::unpack(const QString& archive)
{
    using DatabaseArchive::Unpacked;
    const Unpacked unpacked =
        DatabaseArchive::unpack(archive, m_part, DiskSpace::usable(m_directory),
                                [this](qint64 done, qint64 total) { return tell(done, total); });
    switch (unpacked) {
    case Unpacked::Done:
        return {Outcome::Staged};
    case Unpacked::Abandoned:
        return {Outcome::Cancelled};
    case Unpacked::NoArchive:
    case Unpacked::Damaged:
        return {Outcome::Refused, tr("The archive is damaged.")};
    case Unpacked::NotOneFile:
        return {Outcome::Refused, tr("The archive does not hold one database and nothing else.")};
    case Unpacked::Unsupported:
        return {Outcome::Refused, tr("The archive is encrypted.")};
    case Unpacked::Suspicious:
        return {Outcome::Refused,
                tr("The archive would unpack to far more than a database could.")};
    case Unpacked::NoSpace:
        return {Outcome::Failed, tr("There is not enough free disk space to unpack the archive.")};
    case Unpacked::WriteFailed:
        break;
    }
    return {Outcome::Failed, tr("The database could not be written to %1.").arg(m_directory)};
}

DatabaseRestore::End DatabaseRestore::check()
{
    QMetaObject::invokeMethod(this, &DatabaseRestore::checking, Qt::QueuedConnection);
    const RestoreCheck check = RestoreCheck::run(m_part, m_cancelled);
    switch (check.verdict) {
    case RestoreCheck::Verdict::Fit:
        return {Outcome::Staged};
    case RestoreCheck::Verdict::Abandoned:
        return {Outcome::Cancelled};
    case RestoreCheck::Verdict::NoDatabase:
        return {Outcome::Refused, tr("The file does not hold a database.")};
    case RestoreCheck::Verdict::Foreign:
        return {Outcome::Refused, tr("The database is not one of Tallyvane's.")};
    case RestoreCheck::Verdict::Newer:
        return {Outcome::Refused, tr("The database comes from a newer version of Tallyvane. Please "
                                     "install the latest version and try again.")};
    case RestoreCheck::Verdict::Damaged:
        break;
    }
    Log::warn("The database to be restored is damaged: {}", check.text);
    return {Outcome::Refused, tr("The database is damaged.")};
}

DatabaseRestore::End DatabaseRestore::putInPlace()
{
    const QString staged = m_directory + QLatin1Char('/') + DatabaseFiles::RestoreName;
    // On a slow disk this takes long enough for a change of mind; what follows does not.
    const bool isSynced = DatabaseFiles::syncToDisk(m_part);
    if (m_cancelled) {
        return {Outcome::Cancelled};
    }
    if (isSynced) {
        // A start that was cut short may have left a journal beside one that waited there.
        DatabaseFiles(staged).remove();
    }
    if (!isSynced || !DatabaseFiles::replace(m_part, staged)) {
        return {Outcome::Failed, tr("The database could not be written to %1.").arg(m_directory)};
    }
    return {Outcome::Staged};
}

bool DatabaseRestore::tell(qint64 done, qint64 total)
{
    constexpr qint64 whole = 100;
    const int percent = total > 0 ? static_cast<int>(done * whole / total) : 0;
    if (percent > m_percent) {
        m_percent = percent;
        QMetaObject::invokeMethod(
            this, [this, percent] { Q_EMIT progress(percent); }, Qt::QueuedConnection);
    }
    return !m_cancelled;
}

/// The thread's signal may arrive when the next one is under way.
void DatabaseRestore::end()
{
    if (!m_thread || !m_thread->isFinished()) {
        return;
    }
    m_thread->wait();
    m_thread.reset();
    const End end = m_end;
    switch (end.outcome) {
    case Outcome::Staged:
        Log::info("The restored database takes its place at the next start.");
        break;
    case Outcome::Cancelled:
        Log::info("Restoring the database was cancelled.");
        break;
    case Outcome::Refused:
    case Outcome::Failed:
        Log::error("Unable to restore the database: {}", end.text);
    }
    Q_EMIT finished(end.outcome, end.text);
}
