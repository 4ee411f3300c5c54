// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/FileDownload.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>

/// Fetches a backup of the database from the account service to "tallyvane-restore.db.zip" in the
/// data directory, where `DatabaseRestore` takes it from. Thread: main.
class BackupDownload : public QObject
{
    Q_OBJECT

public:
    enum class Outcome
    {
        Done,
        Cancelled, ///< By `cancel`.
        Failed,
    };
    Q_ENUM(Outcome)

    explicit BackupDownload(const QString& dataDirectory, QObject* parent = nullptr,
                            std::chrono::milliseconds stallTimeout = FileDownload::StallTimeout);

    /// Begins with the backup that the service calls `fileName`; `finished` tells the end. False,
    /// without that signal, while another is under way.
    bool start(const QString& fileName);
    void cancel();

    bool isRunning() const { return m_stage != Stage::Idle; }

    QString archive() const { return m_archive; } ///< Where the file is after a `Done`.

public Q_SLOTS:
    /// The service's answer to "get_db_backup_download_url"; others are passed over. One to each
    /// request, in their order.
    void processGetDatabaseBackupDownloadURL(const QString& requestType, int status,
                                             const QMap<QString, QVariant>& data,
                                             const QString& message);

    /// The service cannot be asked, for the reason that `message` gives: no answer will come.
    void refuse(const QString& message);

Q_SIGNALS:
    /// `processGetDatabaseBackupDownloadURL` waits for the answer, unless `refuse` is called.
    void signalNeedDownloadURL(const QString& fileName);

    void progress(qint64 received, qint64 total); ///< Bytes; total -1: unknown.
    void finished(BackupDownload::Outcome outcome, const QString& message); ///< For the user.

private:
    enum class Stage
    {
        Idle,
        WaitingForAddress,
        Downloading,
    };

    void giveUpAddress(Outcome outcome, const QString& message);
    void takeEnd(FileDownload::Result result, const QString& message);
    void end(Outcome outcome, const QString& message);

    const QString m_directory;
    const QString m_archive;
    Stage m_stage = Stage::Idle;
    QTimer m_addressTimer;
    int m_unwantedAnswers = 0; ///< Still to come, for other backups than the present one.
    FileDownload m_download;
};
