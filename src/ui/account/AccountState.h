// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/BrowserAuthorization.h"
#include "account/UnzurgedCounts.h"
#include "ui/account/ZurgeStatus.h"

#include <QDateTime>
#include <QList>
#include <QString>

/// What the account service last said of the account: the sums of all its computers, and where they
/// stand among all accounts. Plain value; all 0 where it has said nothing yet.
struct OnlineFigures
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 scrolls = 0;
    double distanceMiles = 0;
    qint64 downloadMiB = 0;
    qint64 uploadMiB = 0;
    qint64 uptimeSeconds = 0;

    qint64 keysRank = 0; ///< From 1; 0 for none.
    qint64 clicksRank = 0;
    qint64 scrollsRank = 0;
    qint64 distanceRank = 0;
    qint64 downloadRank = 0;
    qint64 uploadRank = 0;
    qint64 uptimeRank = 0;

    /// As the settings hold them.
    static OnlineFigures stored();

    friend bool operator==(const OnlineFigures&, const OnlineFigures&) = default;
};

/// One zurge and what came of it. Plain value.
struct ZurgeRecord
{
    enum class Origin
    {
        ByHand,
        Automatic,
    };

    enum class Outcome
    {
        Sent,
        Failed,
        Unanswered, ///< Whether the service took it is not known yet.
    };

    QDateTime time;
    Origin origin = Origin::ByHand;
    Outcome outcome = Outcome::Sent;
    quint64 keys = 0;
    quint64 clicks = 0;
    QString message = {}; ///< Why it failed, for the user to read.
};

/// The backups of the database at the service. Plain value.
struct BackupState
{
    bool isRunning = false;
    QString step = {};             ///< What is being done, while it runs.
    int percent = -1;              ///< Of that; -1 where it is not known.
    qint64 sentBytes = 0;          ///< Of the upload.
    qint64 totalBytes = 0;         ///< 0 but for the upload.
    QDateTime lastTried = {};      ///< The setting `online_backup_last`.
    QString failure = {};          ///< Why the last one failed; empty where it did not.
    bool isAutomatic = true;       ///< The setting `online_backup_enabled`.
    QList<OnlineBackup> kept = {}; ///< Newest first.
};

/// All that the account view shows. Plain value.
struct AccountState
{
    QString userName;
    QString email;
    QString computer;
    OnlineFigures online;
    UnzurgedCounts unzurged;
    ZurgeFacts zurge;          ///< Says also whether an account is linked.
    QDateTime lastZurge;       ///< Invalid for none.
    QList<ZurgeRecord> zurges; ///< Newest first.
    BackupState backup;
};
