// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/OnlineBackups.h"

#include "account/ClientCommunication.h"
#include "account/LocalStats.h"
#include "account/RequestTypes.h"
#include "account/TlsTrust.h"
#include "storage/Settings.h"

#include <utility>

OnlineBackups::OnlineBackups(Database& database, ClientCommunication& communication,
                             const LocalStats& localStats, QObject* parent)
    : QObject(parent)
    , m_communication(communication)
    , m_localStats(localStats)
    , m_utility(database, Settings::instance())
{
    const DatabaseBackupUtility* utility = &m_utility;
    connect(utility, &DatabaseBackupUtility::signalNeedCountingPaused, this,
            &OnlineBackups::countingPauseNeeded);
    connect(utility, &DatabaseBackupUtility::signalNeedCountingResumed, this,
            &OnlineBackups::countingResumptionNeeded);
    connect(utility, &DatabaseBackupUtility::signalNeedUploadURL, this,
            &OnlineBackups::askForAddress);
    connect(utility, &DatabaseBackupUtility::signalUpdateStatus, this, &OnlineBackups::takeStatus);
    connect(utility, &DatabaseBackupUtility::signalPreparingProgress, this, [this](int percent) {
        m_progress.percent = percent;
        Q_EMIT changed();
    });
    connect(utility, &DatabaseBackupUtility::signalUploadProgress, this,
            &OnlineBackups::takeUploadProgress);
    connect(utility, &DatabaseBackupUtility::signalErrorWhilePreparing, this, &OnlineBackups::fail);
    connect(utility, &DatabaseBackupUtility::signalBackupFinished, this, &OnlineBackups::takeEnd);
    connect(&m_communication, &ClientCommunication::requestDone, this, &OnlineBackups::takeAnswer);
    connect(&m_communication, &ClientCommunication::requestDropped, this,
            [this](const QString& requestType) {
                takeAnswer(requestType, 0, {}, tr("The account service did not answer."));
            });
}

BackupState OnlineBackups::state() const
{
    BackupState state = m_progress;
    // The setting begins with the first start, so that the first backup comes a week later.
    const bool isNone = m_isKnown && m_kept.isEmpty() && state.failure.isEmpty();
    state.lastTried =
        isNone ? QDateTime() : Settings::instance().value(SettingsKeys::OnlineBackupLast);
    state.isAutomatic = Settings::instance().value(SettingsKeys::OnlineBackupEnabled);
    state.kept = m_kept;
    return state;
}

void OnlineBackups::setKept(const QList<OnlineBackup>& backups)
{
    m_kept = backups;
    m_isKnown = true;
    Q_EMIT changed();
}

void OnlineBackups::forget()
{
    cancel();
    m_kept.clear();
    m_isKnown = false;
    m_progress.failure.clear();
    Q_EMIT changed();
}

/// Why there cannot be a backup; empty where there can.
QString OnlineBackups::obstacle() const
{
    if (!m_localStats.isLoggedIn()) {
        return tr("No account is linked to this computer.");
    }
    if (Settings::instance().value(SettingsKeys::WorkOffline)) {
        return tr("Tallyvane works offline, so nothing is sent.");
    }
    return {};
}

void OnlineBackups::startIfDue()
{
    if (obstacle().isEmpty()) {
        m_utility.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::WhenDue);
    }
}

void OnlineBackups::start()
{
    if (const QString reason = obstacle(); !reason.isEmpty()) {
        fail(reason);
        return;
    }
    m_utility.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::Now);
}

void OnlineBackups::cancel()
{
    if (m_utility.isInProgress()) {
        m_isCancelled = true;
        m_utility.cancelBackup();
    }
}

void OnlineBackups::stop()
{
    m_isCancelled = true;
    m_utility.abandon();
}

void OnlineBackups::askForAddress()
{
    // Not before: reading the certificates for it takes its time.
    m_utility.setTlsConfiguration(TlsTrust::configuration());
    if (!m_communication.getDatabaseBackupUploadURL()) {
        takeAnswer(RequestTypes::BackupUploadUrl, 0, {},
                   tr("The account service could not be asked."));
    }
}

void OnlineBackups::takeAnswer(const QString& requestType, int status,
                               const QMap<QString, QVariant>& data, const QString& message)
{
    m_utility.processGetDatabaseBackupUploadURL(requestType, status, data, message);
}

void OnlineBackups::takeStatus(const QString& status)
{
    m_progress = {.isRunning = true, .step = status};
    Q_EMIT changed();
}

void OnlineBackups::takeUploadProgress(qint64 sent, qint64 total)
{
    constexpr qint64 whole = 100;
    m_progress.sentBytes = sent;
    m_progress.totalBytes = total;
    m_progress.percent = static_cast<int>(sent * whole / total);
    Q_EMIT changed();
}

void OnlineBackups::takeEnd(bool successful)
{
    if (!successful) {
        const QString lastStatus = m_progress.step; // It says why.
        fail(lastStatus);
        return;
    }
    m_isCancelled = false;
    m_progress = {};
    Q_EMIT changed();
    Q_EMIT made();
}

void OnlineBackups::fail(const QString& reason)
{
    const bool isCancelled = std::exchange(m_isCancelled, false);
    m_progress = {.failure = isCancelled ? QString() : reason};
    Q_EMIT changed();
    if (!isCancelled) {
        Q_EMIT failed(reason);
    }
}
