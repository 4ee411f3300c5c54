// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DatabaseBackupUtility.h"
#include "ui/account/AccountState.h"

#include <QObject>

class ClientCommunication;
class LocalStats;

/// The backups of the database at the account service: makes them when they are due or wanted, and
/// knows which ones the service keeps. Thread: main.
class OnlineBackups : public QObject
{
    Q_OBJECT

public:
    /// All of these outlive this object.
    OnlineBackups(Database& database, ClientCommunication& communication,
                  const LocalStats& localStats, QObject* parent = nullptr);

    /// As the account view shows it.
    BackupState state() const;

    const QList<OnlineBackup>& kept() const { return m_kept; }

    /// Whether the service has said in this run which backups it keeps.
    bool isKnown() const { return m_isKnown; }

    void setKept(const QList<OnlineBackup>& backups);

    /// The account is another one: ends what is under way, and forgets what the last one kept.
    void forget();

    void startIfDue();

    void stop(); ///< Ends what is under way before it returns, and says nothing of that.

public Q_SLOTS:
    void start();
    void cancel();

Q_SIGNALS:
    void changed();

    /// A backup has failed, other than by the user's wish; for the user to read.
    void failed(const QString& text);

    /// A new one is at the service: what it keeps is to be asked for.
    void made();

    /// Each pause is followed by one resumption.
    void countingPauseNeeded();
    void countingResumptionNeeded();

private:
    QString obstacle() const;
    void askForAddress();
    void takeStatus(const QString& status);
    void takeUploadProgress(qint64 sent, qint64 total);
    void takeEnd(bool successful);
    void fail(const QString& reason);
    void takeAnswer(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                    const QString& message);

    ClientCommunication& m_communication;
    const LocalStats& m_localStats;
    DatabaseBackupUtility m_utility;
    BackupState m_progress; ///< The part of it that this object follows.
    QList<OnlineBackup> m_kept;
    bool m_isKnown = false;
    bool m_isCancelled = false;
};
