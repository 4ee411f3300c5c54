// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SetupHost.h"

#include "account/ClientCommunication.h"
#include "account/EarlierTotals.h"
#include "account/LocalStats.h"
#include "account/SettingsRestore.h"
#include "app/AccountServices.h"
#include "app/CountingSwitch.h"
#include "base/Log.h"
#include "network/CaptureState.h"
#include "profiles/Milestones.h"
#include "storage/Database.h"
#include "storage/Settings.h"
#include "system/CommonSystem.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace {

/// Whether `identity`'s computer has never been linked to this database; then it is from now on.
bool noteLinked(const AccountIdentity& identity)
{
    Settings& settings = Settings::instance();
    const QString computer = QStringLiteral("%1/%2").arg(identity.userId).arg(identity.computerId);
    QStringList linked = settings.value(SettingsKeys::OnlineLinkedComputers)
                             .split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (linked.contains(computer)) {
        return false;
    }
    linked.append(computer);
    settings.setValue(SettingsKeys::OnlineLinkedComputers, linked.join(QLatin1Char(',')));
    return true;
}

} // namespace

SetupHost::SetupHost(const Parts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_download(std::make_unique<BackupDownload>(parts.dataDirectory))
    , m_restore(std::make_unique<DatabaseRestore>(parts.dataDirectory))
{
    m_wait.setSingleShot(true);
    m_wait.setInterval(LongestWaitMs);
    connect(&m_wait, &QTimer::timeout, this, &SetupHost::showWanted);
    connect(&m_parts.services, &AccountServices::accountInfoTaken, this, &SetupHost::showWanted);
    followDownload();
    followRestore();
}

SetupHost::~SetupHost() = default;

void SetupHost::noteFirstStart()
{
    Settings& settings = Settings::instance();
    if (!settings.has(SettingsKeys::ClientVersion) && !settings.has(SettingsKeys::FirstStepsDue)) {
        settings.setValue(SettingsKeys::FirstStepsDue, true);
    }
}

void SetupHost::offer()
{
    Settings& settings = Settings::instance();
    // One that cannot be written would never learn that they were shown.
    if (settings.value(SettingsKeys::FirstStepsDue) &&
        m_parts.database.state() == Database::State::Open) {
        settings.setValue(SettingsKeys::FirstStepsDue, false);
        open(SetupWizard::Start::Welcome);
    }
}

void SetupHost::open(SetupWizard::Start start)
{
    if (m_wizard) {
        m_wizard->show();
        m_wizard->raise();
        m_wizard->activateWindow();
        return;
    }
    m_wanted = start;
    if (m_parts.services.backups().isKnown() || !m_parts.services.refreshAccountInfo()) {
        showWanted();
    } else {
        m_wait.start();
    }
}

void SetupHost::showWanted()
{
    m_wait.stop();
    if (const auto start = std::exchange(m_wanted, std::nullopt)) {
        show(*start);
    }
}

void SetupHost::show(SetupWizard::Start start)
{
    const SetupFacts facts{.databaseFile = m_parts.database.getDatabaseFileName(),
                           .userName = m_parts.localStats.isLoggedIn()
                                           ? m_parts.localStats.identity().userName
                                           : QString(),
                           .backups = m_parts.services.backups().kept()};
    m_wizard = std::make_unique<SetupWizard>(facts, start);
    follow(*m_wizard);
    showPermissions();
    m_wizard->show();
    m_wizard->raise();
    m_wizard->activateWindow();
}

void SetupHost::follow(const SetupWizard& wizard)
{
    connect(&wizard, &SetupWizard::permissionCheckRequested, this, &SetupHost::showPermissions);
    connect(&wizard, &SetupWizard::linkRequested, this, &SetupHost::beginLink);
    connect(&wizard, &SetupWizard::linkCancelled, this, [this] {
        if (m_authorization) {
            m_authorization->cancel();
        }
    });
    connect(&wizard, &SetupWizard::restoreRequested, this, &SetupHost::restoreBackup);
    connect(&wizard, &SetupWizard::restoreFromFileRequested, this, &SetupHost::restoreFile);
    connect(&wizard, &SetupWizard::restoreCancelled, this, [this] {
        m_download->cancel();
        m_restore->cancel();
    });
    connect(&wizard, &SetupWizard::settingsRestoreRequested, this, &SetupHost::restoreSettings);
    connect(&wizard, &SetupWizard::finished, this, &SetupHost::closeWizard);
}

void SetupHost::followDownload()
{
    ClientCommunication& communication = m_parts.services.communication();
    BackupDownload* download = m_download.get();
    connect(&communication, &ClientCommunication::requestDone, download,
            &BackupDownload::processGetDatabaseBackupDownloadURL);
    connect(&communication, &ClientCommunication::requestDropped, download,
            [download](const QString& requestType) {
                download->processGetDatabaseBackupDownloadURL(
                    requestType, 0, {}, tr("The account service did not answer."));
            });
    connect(download, &BackupDownload::signalNeedDownloadURL, this, &SetupHost::askForAddress);
    connect(download, &BackupDownload::finished, this, &SetupHost::takeDownload);
    connect(download, &BackupDownload::progress, this, [this](qint64 received, qint64 total) {
        if (m_wizard) {
            m_wizard->showRestoreFetching(received, total);
        }
    });
}

void SetupHost::followRestore()
{
    connect(m_restore.get(), &DatabaseRestore::progress, this, [this](int percent) {
        if (m_wizard) {
            m_wizard->showRestoreUnpacking(percent);
        }
    });
    connect(m_restore.get(), &DatabaseRestore::checking, this, [this] {
        if (m_wizard) {
            m_wizard->showRestoreChecking();
        }
    });
    connect(m_restore.get(), &DatabaseRestore::finished, this, &SetupHost::takeRestore);
}

void SetupHost::stop()
{
    m_wait.stop();
    m_wanted.reset();
    m_authorization.reset();
    m_download.reset();
    m_restore.reset();
}

/// The window is closing, so it goes once that is over.
void SetupHost::closeWizard()
{
    m_clientSettings.clear();
    m_wizard.release()->deleteLater();
}

void SetupHost::showPermissions()
{
    const bool isWatched = Settings::instance().value(SettingsKeys::StatsNetEnable);
    m_wizard->setPermissions(m_parts.counting.inputState(),
                             isWatched ? std::optional(m_parts.system.captureState())
                                       : std::nullopt);
}

void SetupHost::beginLink()
{
    if (Settings::instance().value(SettingsKeys::WorkOffline)) {
        askToGoOnline();
    } else {
        link();
    }
}

void SetupHost::askToGoOnline()
{
    auto* box = new QMessageBox(QMessageBox::Question, tr("Go online?"),
                                tr("Tallyvane works offline. Linking an account needs it to go "
                                   "online, and to stay so."),
                                QMessageBox::Cancel, m_wizard.get());
    box->setObjectName(QStringLiteral("goOnline"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    const auto* accept = box->addButton(tr("Go online"), QMessageBox::AcceptRole);
    connect(accept, &QPushButton::clicked, this, [this] {
        Settings::instance().setValue(SettingsKeys::WorkOffline, false);
        Q_EMIT settingsChanged();
        link();
    });
    connect(box, &QMessageBox::rejected, this, [this] {
        if (m_wizard) {
            m_wizard->showLinkFailed(tr("Tallyvane works offline, so nothing is sent."));
        }
    });
    box->open();
}

void SetupHost::link()
{
    const QUrl website = m_parts.services.addresses().website;
    if (!m_authorization || m_website != website) {
        m_website = website;
        m_authorization =
            std::make_unique<BrowserAuthorization>(m_parts.services.communication(), website);
        connect(m_authorization.get(), &BrowserAuthorization::browserNeeded, this,
                &SetupHost::openPage);
        connect(m_authorization.get(), &BrowserAuthorization::failed, this,
                [this](const QString& text) {
                    if (m_wizard) {
                        m_wizard->showLinkFailed(text);
                    }
                });
        connect(m_authorization.get(), &BrowserAuthorization::authorized, this,
                &SetupHost::takeAuthorization);
    }
    m_authorization->begin();
}

void SetupHost::openPage(const QUrl& page)
{
    if (m_wizard) {
        m_wizard->showBrowserPage(page);
    }
    if (!QDesktopServices::openUrl(page)) {
        Log::warn("No browser could be opened; the user is shown the address");
    }
}

void SetupHost::takeAuthorization(const Authorization& authorization)
{
    m_parts.localStats.signIn(authorization);
    importEarlierTotals(authorization);
    m_clientSettings = authorization.clientSettings;
    m_parts.services.greetAccount(authorization.backups);
    if (m_wizard) {
        m_wizard->showAuthorized(authorization);
    }
}

/// A database that was linked to this computer before has counted itself what the service would
/// tell it.
void SetupHost::importEarlierTotals(const Authorization& authorization)
{
    const bool isNew = noteLinked(authorization.identity);
    const auto totals = EarlierTotals::from(authorization.computerStats);
    if (isNew && totals) {
        withDatabase([this, totals] {
            m_parts.milestones.whileChangingTotals(
                [this, &totals] { totals->store(m_parts.database); });
        });
    }
}

void SetupHost::restoreSettings()
{
    withDatabase([this, settings = m_clientSettings] {
        SettingsRestore::restore(settings, m_parts.database, m_parts.milestones);
        m_parts.system.reloadExclusions();
        Q_EMIT settingsChanged();
    });
}

void SetupHost::withDatabase(const std::function<void()>& work)
{
    if (m_parts.database.isLent()) {
        connect(&m_parts.database, &Database::takenBack, this, work, Qt::SingleShotConnection);
    } else {
        work();
    }
}

void SetupHost::restoreBackup(const OnlineBackup& backup)
{
    // One that was cancelled, with the window closed, may take a moment to end.
    if (m_restore->isRunning() || !m_download->start(backup.fileName)) {
        m_wizard->showRestoreFailed(tr("Another backup is being restored."));
    }
}

void SetupHost::askForAddress(const QString& fileName)
{
    if (!m_parts.services.communication().getDatabaseBackupDownloadURL(fileName)) {
        m_download->refuse(tr("The account service could not be asked."));
    }
}

void SetupHost::takeDownload(BackupDownload::Outcome outcome, const QString& message)
{
    if (outcome == BackupDownload::Outcome::Done) {
        restoreFile(m_download->archive());
    } else if (m_wizard && outcome == BackupDownload::Outcome::Cancelled) {
        m_wizard->showRestoreCancelled();
    } else if (m_wizard) {
        m_wizard->showRestoreFailed(message);
    }
}

void SetupHost::restoreFile(const QString& path)
{
    if (!m_restore->start(path) && m_wizard) {
        m_wizard->showRestoreFailed(tr("Another backup is being restored."));
    }
}

void SetupHost::takeRestore(DatabaseRestore::Outcome outcome, const QString& text)
{
    if (!m_wizard) {
        return;
    }
    switch (outcome) {
    case DatabaseRestore::Outcome::Staged:
        m_wizard->showRestoreStaged();
        break;
    case DatabaseRestore::Outcome::Cancelled:
        m_wizard->showRestoreCancelled();
        break;
    case DatabaseRestore::Outcome::Refused:
    case DatabaseRestore::Outcome::Failed:
        m_wizard->showRestoreFailed(text);
        break;
    }
}
