// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/FileWork.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

class Database;
class QNetworkAccessManager;
class QNetworkReply;
class QSslConfiguration;
class QSslError;
class QThread;
class Settings;

/// Keeps a copy of the database with the account service:
///
///     Idle -> Copying -> Checking -> WaitingForAddress -> Zipping -> Uploading -> Removing -> Idle
///
/// Counting pauses and the database is lent while it is copied, and no longer. Copying, checking,
/// zipping and removing run on a thread. Whatever goes wrong, the database is untouched, counting
/// goes on, and no half a file stays behind. The copy stays in "backups", the archive does not.
///
/// Each backup ends in exactly one of `signalErrorWhilePreparing` and `signalBackupFinished`.
/// Closing the database ends one that is under way. Thread: main.
class DatabaseBackupUtility : public QObject
{
    Q_OBJECT

public:
    enum class Trigger
    {
        WhenDue,
        Now,
    };

    static constexpr int DaysBetweenBackups = 7;

    /// How long an upload may stand still before it is given up.
    static constexpr std::chrono::milliseconds StallTimeout = std::chrono::minutes(2);

    /// Both outlive this object.
    DatabaseBackupUtility(Database& database, Settings& settings, QObject* parent = nullptr,
                          std::chrono::milliseconds stallTimeout = StallTimeout);
    ~DatabaseBackupUtility() override;

    /// Secures uploads, from the next one on, by this instead of Qt's own configuration.
    void setTlsConfiguration(const QSslConfiguration& configuration);

    /// Whether the settings ask for a backup at `now`.
    static bool isDue(const Settings& settings, const QDateTime& now);

    /// Begins now, or only where a backup is due, the database is not lent, and none failed in the
    /// last day: a service that refuses is not to cost a copy of the database every quarter of an
    /// hour.
    void backgroundDatabaseBackup(Trigger trigger);

    void startBackup();

    /// Gives up what is under way, within a moment. The upload ends as a failed one.
    void cancelBackup();

    /// As above, before it returns; an upload is cut off. The client is about to end, so that the
    /// next run may try again at once.
    void abandon();

    bool isInProgress() const { return m_stage != Stage::Idle; }

    qint64 getDatabaseSize() const; ///< Bytes of the copy that was made last; 0 without one.

public Q_SLOTS:
    /// The service's answer to "get_db_backup_upload_url"; others are passed over. Who cannot even
    /// ask answers with a status of 0.
    void processGetDatabaseBackupUploadURL(const QString& requestType, int status,
                                           const QMap<QString, QVariant>& data,
                                           const QString& message);

Q_SIGNALS:
    void signalUpdateStatus(const QString& status);         ///< For the user to read.
    void signalPreparingProgress(int percent);              ///< Of the copying, then the zipping.
    void signalUploadProgress(qint64 sent, qint64 total);   ///< Bytes.
    void signalErrorWhilePreparing(const QString& message); ///< For the user to read.
    void signalBackupFinished(bool successful);

    void signalNeedCountingPaused();
    void signalNeedCountingResumed(); ///< Follows each of the above, once.
    void signalNeedUploadURL();       ///< `processGetDatabaseBackupUploadURL` waits for it.

private:
    enum class Stage
    {
        Idle,
        Copying,
        Checking,
        WaitingForAddress,
        Zipping,
        Uploading,
        Removing,
    };

    using Next = void (DatabaseBackupUtility::*)(const FileWork& work);

    QString pathOf(const QString& fileName) const;
    bool mayStart();
    void copyProductionDatabaseToBackup();
    FileWork copyFile();
    void copied(const FileWork& work);
    bool openDatabaseFile();
    void checkCopy();
    FileWork checkFile();
    void checked(const FileWork& work);
    void zipAndStartBackup();
    FileWork zipFile();
    void zipped(const FileWork& work);
    void startUpload();
    void uploadProgress(qint64 sent, qint64 total);
    void uploadFinished(QNetworkReply* reply);
    void sslErrors(QNetworkReply* reply, const QList<QSslError>& errors);
    void dropUpload();
    void removed(const FileWork& work);
    void failPreparing(const QString& message);

    void runOnThread(std::function<FileWork()> work, Next next);
    void threadEnded();
    bool tell(qint64 done, qint64 total);

    Database& m_database;
    Settings& m_settings;
    const std::chrono::milliseconds m_stallTimeout;
    Stage m_stage = Stage::Idle;
    QElapsedTimer m_copyTimer;
    QTimer m_addressTimer;
    QDeadlineTimer m_automaticPause; ///< Until then no backup begins by itself.
    QUrl m_uploadUrl;
    std::unique_ptr<QSslConfiguration> m_tls;   ///< Null: Qt's own.
    QFile m_archive;                            ///< Open while it is uploaded.
    QNetworkAccessManager* m_manager = nullptr; ///< Null but for an upload.
    QNetworkReply* m_reply = nullptr;           ///< Likewise; the manager's.

    std::unique_ptr<QThread> m_thread;
    Next m_next = nullptr;
    std::atomic<bool> m_abandoned = false;
    int m_percent = -1; ///< Last told, by the thread.
    FileWork m_work;    ///< Read once the thread has ended.
};
