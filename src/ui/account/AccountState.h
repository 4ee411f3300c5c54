// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Authorization.h"
#include "account/OnlineFigures.h"
#include "account/UnzurgedCounts.h"
#include "account/ZurgeRecord.h"
#include "ui/account/ZurgeStatus.h"

#include <QDateTime>
#include <QList>
#include <QString>

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
    OnlineTotals totals; ///< Of the account.
    OnlineRanks ranks;
    UnzurgedCounts unzurged;
    ZurgeFacts zurge;          ///< Says also whether an account is linked.
    QDateTime lastZurge;       ///< Invalid for none.
    QList<ZurgeRecord> zurges; ///< Newest first.
    BackupState backup;
};
