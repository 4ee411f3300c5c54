// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AutoZurging.h"
#include "account/ClientCommunication.h"
#include "account/DataFileDownload.h"
#include "account/ServiceAddresses.h"
#include "account/Uploads.h"
#include "account/WebsiteMessageCheck.h"
#include "account/WindowMessages.h"
#include "app/OnlineBackups.h"

#include <QObject>
#include <QTimer>

#include <functional>

class Database;
class LocalStats;
class ProfileManager;

/// What the client does with the account service and the release server, and when: the requests,
/// the uploads, automatic zurges, backups, and the files that are downloaded. Without an account
/// nothing is sent, and nothing is said of that. Thread: main.
class AccountServices : public QObject
{
    Q_OBJECT

public:
    static constexpr int ApplicationUploadMs = 900'000;
    static constexpr int ProfileUploadMs = 600'000;

    /// All of it outlives this object.
    struct Parts
    {
        Database& database;
        LocalStats& localStats; ///< Set up already.
        ProfileManager& profiles;
        QString dataDirectory;

        /// Whether packets can be captured on this computer.
        std::function<bool()> isNetworkMonitorSupported;
    };

    explicit AccountServices(const Parts& parts, QObject* parent = nullptr);

    /// Fetches, a few seconds from now, the files that are not there yet.
    void fetchMissingFiles();

    void start(); ///< Begins with automatic zurges and the periodic uploads.
    void startUsageStats();

    /// Zurges a few seconds from now, where the setting wants it.
    void zurgeOnStartup();

    /// Every start of this series has the next zurge send the last week's time series again.
    static void repeatLastWeek();

    /// Follows the settings: addresses, thresholds, and the backup that may be due now.
    void applySettings();

    /// Ends what is under way before it returns; nothing is left half done.
    void stop();

    ClientCommunication& communication() { return m_communication; }

    OnlineBackups& backups() { return m_backups; }

    WindowMessages& messages() { return m_messages; }

    const ServiceAddresses& addresses() const { return m_addresses; }

    /// Asks the service what it knows of the account; false where it cannot be asked.
    bool refreshAccountInfo();

    /// An account was linked just now.
    void greetAccount(const QList<OnlineBackup>& backups);

    void signOut();

public Q_SLOTS:
    void performMaintenance(); ///< To be called every quarter of an hour or so.
    void checkForMessagesFromWebsite();

Q_SIGNALS:
    /// Who is signed in, whether the client works offline, or what the service says of the account.
    void changed();
    void accountReplaced();  ///< Another account or computer is linked, or none.
    void accountInfoTaken(); ///< `refreshAccountInfo` has ended, well or not.

    void countryDatabaseReplaced();
    void portDescriptionsReplaced();

private:
    void answerLocalStats();
    void followIdentity();
    void takeAnswer(const QString& requestType, int status, const QMap<QString, QVariant>& data);
    void showArchived();
    QVariantMap computerFacts() const;

    Database& m_database;
    LocalStats& m_localStats;
    std::function<bool()> m_isNetworkMonitorSupported;
    ClientCommunication m_communication;
    OnlineBackups m_backups;
    Uploads m_uploads;
    WindowMessages m_messages;
    WebsiteMessageCheck m_messageCheck;
    AutoZurging m_autoZurging;
    DataFileDownload m_countries;
    DataFileDownload m_ports;
    ServiceAddresses m_addresses;
    AccountIdentity m_identity; ///< As known here.
    QTimer m_applicationUpload;
    QTimer m_profileUpload;
    QTimer m_usageStats;
};
