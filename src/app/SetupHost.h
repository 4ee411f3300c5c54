// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Authorization.h"
#include "account/BackupDownload.h"
#include "account/BrowserAuthorization.h"
#include "storage/DatabaseRestore.h"
#include "ui/wizard/SetupWizard.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class AccountServices;
class CommonSystem;
class CountingSwitch;
class Database;
class LocalStats;
class Milestones;

/// Shows the first steps when they are due or wanted, and fulfils their wishes: links an account,
/// takes over what it holds, stages a backup. Thread: main.
class SetupHost : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives this object.
    struct Parts
    {
        AccountServices& services;
        LocalStats& localStats;
        CountingSwitch& counting;
        CommonSystem& system;
        Milestones& milestones;
        Database& database;
        QString dataDirectory;
    };

    /// How long the first steps wait for the list of backups before they are shown without it.
    static constexpr int LongestWaitMs = 3'000;

    explicit SetupHost(const Parts& parts, QObject* parent = nullptr);
    ~SetupHost() override;

    /// To be called before this run has left its mark: notes whether it is the first on this
    /// database.
    static void noteFirstStart();

    /// Shows the first steps where that has never been done, and never again by itself.
    void offer();

    void open(SetupWizard::Start start);

    /// Ends what is under way before it returns, and leaves the window as it is.
    void stop();

Q_SIGNALS:
    void settingsChanged(); ///< They are to be applied.

private:
    void show(SetupWizard::Start start);
    void showWanted();
    void follow(const SetupWizard& wizard);
    void followDownload();
    void followRestore();
    void closeWizard();
    void showPermissions();
    void beginLink();
    void askToGoOnline();
    void link();
    void openPage(const QUrl& page);
    void takeAuthorization(const Authorization& authorization);
    void importEarlierTotals(const Authorization& authorization);
    void restoreSettings();
    void restoreBackup(const OnlineBackup& backup);
    void restoreFile(const QString& path);
    void askForAddress(const QString& fileName);
    void takeDownload(BackupDownload::Outcome outcome, const QString& message);
    void takeRestore(DatabaseRestore::Outcome outcome, const QString& text);

    /// Runs `work` now, or once whoever has borrowed the database gives it back.
    void withDatabase(const std::function<void()>& work);

    Parts m_parts;
    std::unique_ptr<SetupWizard> m_wizard; ///< Null while it is closed.
    std::optional<SetupWizard::Start> m_wanted;
    QTimer m_wait; ///< Runs until what is wanted is shown.
    QUrl m_website;
    std::unique_ptr<BrowserAuthorization> m_authorization; ///< At `m_website`; null before use.
    std::unique_ptr<BackupDownload> m_download;            ///< Null after `stop`.
    std::unique_ptr<DatabaseRestore> m_restore;            ///< Likewise.
    QMap<QString, QVariant> m_clientSettings;              ///< Of the account linked last.
};
