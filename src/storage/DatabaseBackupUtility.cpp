// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseBackupUtility.h"

#include "base/Log.h"
#include "storage/Database.h"
#include "storage/DatabaseArchive.h"
#include "storage/DatabaseCopy.h"
#include "storage/IntegrityCheck.h"
#include "storage/ReadingConnection.h"
#include "storage/Settings.h"
#include "storage/ThreadPriority.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QSslError>
#include <QThread>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto AutomaticPause = 24h;

/// The service answers within seconds, or not at all; without a limit, an answer that got lost
/// would bar every later backup.
constexpr auto LongestWaitForAddress = 5min;

} // namespace

DatabaseBackupUtility::DatabaseBackupUtility(Database& database, Settings& settings,
                                             QObject* parent,
                                             std::chrono::milliseconds stallTimeout)
    : QObject(parent)
    , m_database(database)
    , m_settings(settings)
    , m_stallTimeout(stallTimeout)
{
    m_addressTimer.setSingleShot(true);
    m_addressTimer.setInterval(LongestWaitForAddress);
    connect(&m_addressTimer, &QTimer::timeout, this,
            [this] { failPreparing(tr("The account service did not answer.")); });
    connect(&m_database, &Database::aboutToClose, this, &DatabaseBackupUtility::abandon);
}

DatabaseBackupUtility::~DatabaseBackupUtility()
{
    abandon();
}

void DatabaseBackupUtility::setTlsConfiguration(const QSslConfiguration& configuration)
{
    m_tls = std::make_unique<QSslConfiguration>(configuration);
}

bool DatabaseBackupUtility::isDue(const Settings& settings, const QDateTime& now)
{
    return settings.value(SettingsKeys::OnlineBackupEnabled) &&
           settings.value(SettingsKeys::OnlineBackupLast).daysTo(now) >= DaysBetweenBackups;
}

void DatabaseBackupUtility::backgroundDatabaseBackup(Trigger trigger)
{
    if (trigger == Trigger::Now || (m_automaticPause.hasExpired() && !m_database.isLent() &&
                                    isDue(m_settings, QDateTime::currentDateTime()))) {
        startBackup();
    }
}

void DatabaseBackupUtility::startBackup()
{
    if (isInProgress()) {
        Log::info("Backup already in progress, skipping request.");
        return;
    }
    Log::info("Starting online backup..");
    if (!mayStart()) {
        return;
    }
    m_abandoned = false;
    m_stage = Stage::Copying;
    Q_EMIT signalNeedCountingPaused();
    Q_EMIT signalUpdateStatus(tr("Copying database.."));
    copyProductionDatabaseToBackup();
}

/// Where someone else has borrowed the database, the next try may well succeed: nothing is put off.
bool DatabaseBackupUtility::mayStart()
{
    const Database::State state = m_database.state();
    const bool isOpen = state == Database::State::Open || state == Database::State::ReadOnly;
    if (isOpen && !m_database.isLent()) {
        return true;
    }
    Log::warn("The database cannot be backed up now: it is {}", isOpen ? "lent" : "not open");
    Q_EMIT signalErrorWhilePreparing(
        tr("The database is busy with something else. Please try again later."));
    return false;
}

QString DatabaseBackupUtility::pathOf(const QString& fileName) const
{
    return QFileInfo(m_database.getDatabaseFileName()).absolutePath() +
           QStringLiteral("/backups/") + fileName;
}

qint64 DatabaseBackupUtility::getDatabaseSize() const
{
    return QFileInfo(pathOf(DatabaseFiles::Name)).size();
}

void DatabaseBackupUtility::cancelBackup()
{
    m_abandoned = true;
    if (m_stage == Stage::WaitingForAddress) {
        failPreparing({});
    } else if (m_stage == Stage::Uploading) {
        m_reply->abort();
    }
}

/// The database is lent as well, since more than the collector writes: the settings, for one.
void DatabaseBackupUtility::copyProductionDatabaseToBackup()
{
    m_copyTimer.start();
    m_database.lend();
    runOnThread([this] { return copyFile(); }, &DatabaseBackupUtility::copied);
}

/// On the thread.
FileWork DatabaseBackupUtility::copyFile()
{
    const QString source = m_database.getDatabaseFileName();
    const QString target = pathOf(DatabaseFiles::Name);
    if (!QDir().mkpath(pathOf(QString()))) {
        Log::error("Failed to create the 'backups' directory.");
        return FileWork::failed(tr("Failed to create the 'backups' directory."));
    }
    if (QFile::remove(target)) {
        Log::info("Removed old backup file: {}", target);
    }
    if (!QFileInfo::exists(source)) {
        Log::error("File '{}' doesn't exist?!", source);
        return FileWork::failed(tr("The database file does not exist."));
    }
    FileWork work = DatabaseCopy::copy(
        source, target, [this](qint64 done, qint64 total) { return tell(done, total); });
    if (work.isDone()) {
        Log::info("Copied database file for backup: {} to: {}", source, target);
    } else if (work.end == FileWork::End::Failed) {
        Log::error("Failed to create a backup of the database file. {}", work.reason);
        work.reason = tr("Failed to create a backup of the database file: %1.").arg(work.reason);
    }
    return work;
}

void DatabaseBackupUtility::copied(const FileWork& work)
{
    m_database.takeBack();
    bool opened = false;
    if (work.isDone()) {
        Log::info("Copied data from production database ({}) to backup database ({}) in {} ms",
                  m_database.getDatabaseFileName(), pathOf(DatabaseFiles::Name),
                  m_copyTimer.elapsed());
        opened = openDatabaseFile();
    }
    Q_EMIT signalNeedCountingResumed();
    if (!work.isDone()) {
        failPreparing(work.reason);
    } else if (!opened) {
        failPreparing(tr("The copy of the database cannot be read."));
    } else {
        checkCopy();
    }
}

bool DatabaseBackupUtility::openDatabaseFile()
{
    const QString copy = pathOf(DatabaseFiles::Name);
    Log::info("Opening database file for backup: {}", copy);
    QFile file(copy);
    return file.open(QIODevice::ReadOnly);
}

void DatabaseBackupUtility::checkCopy()
{
    m_stage = Stage::Checking;
    Q_EMIT signalUpdateStatus(tr("Checking database.."));
    runOnThread([this] { return checkFile(); }, &DatabaseBackupUtility::checked);
}

/// On the thread. A damaged database must not take the place of a sound one at the service.
FileWork DatabaseBackupUtility::checkFile()
{
    ThreadPriority::stepBack();
    const QString copy = pathOf(DatabaseFiles::Name);
    std::optional<IntegrityCheck> check;
    {
        const ReadingConnection connection(copy, ReadingConnection::Locking::None);
        check = IntegrityCheck::runUntil(m_abandoned, connection.database(),
                                         IntegrityCheck::Depth::Full);
    }
    if (!check) {
        return FileWork::abandoned();
    }
    Log::info("Database integrity check: {}", check->text);
    if (check->verdict == IntegrityCheck::Verdict::Sound) {
        return FileWork::done();
    }
    QFile::remove(copy);
    return FileWork::failed(
        tr("The database is damaged and was not backed up: %1").arg(check->text));
}

void DatabaseBackupUtility::checked(const FileWork& work)
{
    if (!work.isDone()) {
        failPreparing(work.reason);
        return;
    }
    m_stage = Stage::WaitingForAddress;
    m_addressTimer.start();
    Q_EMIT signalNeedUploadURL();
}

void DatabaseBackupUtility::processGetDatabaseBackupUploadURL(const QString& requestType,
                                                              int status,
                                                              const QMap<QString, QVariant>& data,
                                                              const QString& message)
{
    constexpr int ok = 200;
    if (requestType != QLatin1String("get_db_backup_upload_url") ||
        m_stage != Stage::WaitingForAddress) {
        return;
    }
    if (status != ok) {
        failPreparing(message);
        return;
    }
    m_uploadUrl = QUrl(data.value(QStringLiteral("url")).toString(), QUrl::StrictMode);
    // What follows the path may be a right to write, which is nobody else's.
    Log::info("Retrieved database upload URL from website: {}",
              m_uploadUrl.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery));
    const QString scheme = m_uploadUrl.scheme();
    if (m_uploadUrl.host().isEmpty() ||
        (scheme != QLatin1String("https") && scheme != QLatin1String("http"))) {
        failPreparing(tr("The account service gave no address to upload the backup to."));
        return;
    }
    zipAndStartBackup();
}

void DatabaseBackupUtility::zipAndStartBackup()
{
    m_addressTimer.stop();
    m_stage = Stage::Zipping;
    Q_EMIT signalUpdateStatus(tr("Zipping database.."));
    runOnThread([this] { return zipFile(); }, &DatabaseBackupUtility::zipped);
}

/// On the thread.
FileWork DatabaseBackupUtility::zipFile()
{
    ThreadPriority::stepBack();
    const QString copy = pathOf(DatabaseFiles::Name);
    const QString archive = pathOf(DatabaseFiles::ArchiveName);
    if (QFileInfo::exists(archive)) {
        Log::info("Removing old backup file: {}", archive);
        QFile::remove(archive);
    }
    Log::info("Compressing {} into {}", copy, archive);
    return DatabaseArchive::pack(copy, archive, DatabaseFiles::Name,
                                 [this](qint64 done, qint64 total) { return tell(done, total); });
}

void DatabaseBackupUtility::zipped(const FileWork& work)
{
    if (work.isDone()) {
        startUpload();
        return;
    }
    if (work.end == FileWork::End::Failed) {
        Log::error("Online backup: failed to create zip from database!");
        Log::error("{}", work.reason);
    }
    QFile::remove(pathOf(DatabaseFiles::ArchiveName));
    failPreparing(work.reason);
}

void DatabaseBackupUtility::startUpload()
{
    m_archive.setFileName(pathOf(DatabaseFiles::ArchiveName));
    Q_EMIT signalUpdateStatus(tr("Starting upload.."));
    Log::info("Starting upload of {}", m_archive.fileName());
    if (!m_archive.open(QIODevice::ReadOnly)) {
        failPreparing(m_archive.errorString());
        return;
    }
    m_stage = Stage::Uploading;
    m_manager = new QNetworkAccessManager(this);
    connect(m_manager, &QNetworkAccessManager::finished, this,
            &DatabaseBackupUtility::uploadFinished);
    connect(m_manager, &QNetworkAccessManager::sslErrors, this, &DatabaseBackupUtility::sslErrors);
    QNetworkRequest request(m_uploadUrl);
    if (m_tls) {
        request.setSslConfiguration(*m_tls);
    }
    request.setTransferTimeout(static_cast<int>(m_stallTimeout.count()));
    // Wherever else the archive was sent, it would not be where the service looks for it.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    m_reply = m_manager->put(request, &m_archive);
    connect(m_reply, &QNetworkReply::uploadProgress, this, &DatabaseBackupUtility::uploadProgress);
}

void DatabaseBackupUtility::uploadProgress(qint64 sent, qint64 total)
{
    // Qt says 0 of 0 in the end.
    if (total > 0) {
        Q_EMIT signalUploadProgress(sent, total);
    }
}

void DatabaseBackupUtility::sslErrors(QNetworkReply* /*reply*/, const QList<QSslError>& errors)
{
    for (const QSslError& error : errors) {
        Log::error("TLS error while uploading the backup: {}", error.errorString());
    }
}

void DatabaseBackupUtility::uploadFinished(QNetworkReply* reply)
{
    m_settings.setValue(SettingsKeys::OnlineBackupLast, QDateTime::currentDateTime());
    constexpr int firstSuccess = 200;
    constexpr int firstNoSuccess = 300;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool accepted = status >= firstSuccess && status < firstNoSuccess;
    const bool successful = accepted && reply->error() == QNetworkReply::NoError;
    if (!successful) {
        // Of a refusal Qt's text quotes the whole address, with the right to write in it.
        const QString reason = status == 0 || accepted
                                   ? reply->errorString()
                                   : tr("the server answered with the status %1").arg(status);
        Log::error("The backup was not uploaded: {}", reason);
        Q_EMIT signalUpdateStatus(tr("The backup was not uploaded: %1").arg(reason));
    }
    dropUpload();
    m_stage = Stage::Removing;
    // A file of hundreds of megabytes takes its time to go.
    const QString archive = pathOf(DatabaseFiles::ArchiveName);
    runOnThread(
        [archive, successful] {
            QFile::remove(archive);
            return successful ? FileWork::done() : FileWork::failed({});
        },
        &DatabaseBackupUtility::removed);
}

void DatabaseBackupUtility::dropUpload()
{
    m_archive.close();
    std::exchange(m_manager, nullptr)->deleteLater();
    m_reply = nullptr;
}

void DatabaseBackupUtility::removed(const FileWork& work)
{
    Q_EMIT signalBackupFinished(work.isDone());
    if (work.isDone()) {
        Log::info("Successfully completed database backup!");
    } else {
        Log::error("Errors while completing database backup, see above logs for hints.");
    }
    m_stage = Stage::Idle;
}

void DatabaseBackupUtility::failPreparing(const QString& message)
{
    m_addressTimer.stop();
    m_automaticPause.setRemainingTime(AutomaticPause);
    const QString text = m_abandoned ? tr("The backup was cancelled.") : message;
    Log::log(m_abandoned ? Log::Level::Info : Log::Level::Error,
             "The online backup ended early: {}", text);
    m_stage = Stage::Idle;
    Q_EMIT signalErrorWhilePreparing(text);
}

void DatabaseBackupUtility::abandon()
{
    m_abandoned = true;
    if (m_thread) {
        m_thread->wait();
        threadEnded();
    }
    if (m_stage == Stage::Uploading) {
        m_manager->disconnect(this);
        m_reply->disconnect(this);
        m_reply->abort();
        dropUpload();
        m_archive.remove();
        m_stage = Stage::Idle;
        Q_EMIT signalBackupFinished(false);
    } else if (m_stage == Stage::WaitingForAddress) {
        failPreparing({});
    }
}

void DatabaseBackupUtility::runOnThread(std::function<FileWork()> work, Next next)
{
    m_percent = -1;
    m_next = next;
    m_thread.reset(QThread::create([this, work = std::move(work)] { m_work = work(); }));
    connect(m_thread.get(), &QThread::finished, this, &DatabaseBackupUtility::threadEnded);
    m_thread->start();
}

/// The thread's signal may arrive when it was waited for, or even the next one has begun.
void DatabaseBackupUtility::threadEnded()
{
    if (!m_thread || !m_thread->isFinished()) {
        return;
    }
    m_thread->wait();
    m_thread.reset();
    FileWork work = std::exchange(m_work, {});
    // Whatever was done by the time it heard of that.
    if (m_abandoned && m_stage != Stage::Removing) {
        work = FileWork::abandoned();
    }
    (this->*m_next)(work);
}

/// On the thread.
bool DatabaseBackupUtility::tell(qint64 done, qint64 total)
{
    constexpr qint64 whole = 100;
    const int percent = total > 0 ? static_cast<int>(done * whole / total) : 0;
    if (percent > m_percent) {
        m_percent = percent;
        QMetaObject::invokeMethod(
            this, [this, percent] { Q_EMIT signalPreparingProgress(percent); },
            Qt::QueuedConnection);
    }
    return !m_abandoned;
}
