// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AccountServices.h"

#include "account/AccountMarks.h"
#include "account/LocalStats.h"
#include "account/RequestTypes.h"
#include "account/Zurge.h"
#include "base/Log.h"
#include "base/Version.h"
#include "network/CountryDatabase.h"
#include "network/PortDescriptionFile.h"
#include "storage/Settings.h"
#include "system/ComputerFacts.h"

#include <QFile>
#include <QGuiApplication>
#include <QScreen>

#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr auto CountryDatabaseDelay = 10s;
constexpr auto PortDescriptionsDelay = 3s;
constexpr auto StartupZurgeDelay = 10s;
constexpr auto UsageStatsInterval = 1h; ///< Of the question whether a day has passed.

QString countryDatabaseFault(const QString& path)
{
    return CountryDatabase().open(path);
}

QString portDescriptionsFault(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return file.errorString();
    }
    const PortDescriptionFile parsed = PortDescriptionFile::parse(file.readAll());
    const bool isEmpty = parsed.descriptions.tcp.isEmpty() && parsed.descriptions.udp.isEmpty();
    if (isEmpty || parsed.faultCount > parsed.lines / 2) {
        return AccountServices::tr("It is no list of ports.");
    }
    return {};
}

} // namespace

AccountServices::AccountServices(const Parts& parts, QObject* parent)
    : QObject(parent)
    , m_database(parts.database)
    , m_localStats(parts.localStats)
    , m_isNetworkMonitorSupported(parts.isNetworkMonitorSupported)
    , m_backups(m_database, m_communication, m_localStats)
    , m_uploads({m_communication, m_localStats, m_database}, parts.profiles,
                [this] { return computerFacts(); })
    , m_messageCheck(m_communication, m_messages)
    , m_autoZurging(m_localStats)
    , m_countries(DataFileDownload::DataFile::countryDatabase(), parts.dataDirectory,
                  countryDatabaseFault, Settings::instance())
    , m_ports(DataFileDownload::DataFile::portDescriptions(), parts.dataDirectory,
              portDescriptionsFault, Settings::instance())
    , m_identity(m_localStats.identity())
{
    m_localStats.setCommunication(m_communication);
    m_messages.load();
    connect(&m_localStats, &LocalStats::signalIdentityChanged, this,
            &AccountServices::followIdentity);
    answerLocalStats();
    connect(&m_communication, &ClientCommunication::computerArchived, this,
            &AccountServices::showArchived);
    connect(&m_communication, &ClientCommunication::requestDone, this,
            &AccountServices::takeAnswer);
    connect(&m_communication, &ClientCommunication::requestDropped, this,
            [this](const QString& requestType) { takeAnswer(requestType, 0, {}); });
    connect(&m_backups, &OnlineBackups::made, this, &AccountServices::refreshAccountInfo);
    connect(&m_countries, &DataFileDownload::finished, this, [this](const QString&, bool replaced) {
        if (replaced) {
            Q_EMIT countryDatabaseReplaced();
        }
    });
    connect(&m_ports, &DataFileDownload::finished, this, [this](const QString&, bool replaced) {
        if (replaced) {
            Q_EMIT portDescriptionsReplaced();
        }
    });
}

void AccountServices::answerLocalStats()
{
    connect(&m_localStats, &LocalStats::signalNeedComputerInfoUpload, this,
            [this] { m_uploads.uploadComputerInfo(ComputerInfoUpload::When::Now); });
    connect(&m_localStats, &LocalStats::signalNeedPendingMessages, this,
            &AccountServices::checkForMessagesFromWebsite);
}

void AccountServices::fetchMissingFiles()
{
    const auto fetchLater = [this](DataFileDownload& file, std::chrono::milliseconds delay) {
        if (file.isMissing() && !Settings::instance().value(SettingsKeys::WorkOffline)) {
            QTimer::singleShot(delay, this, [&file] {
                file.update(DataFileDownload::Trigger::Now, DataFileDownload::Asker::Client);
            });
        }
    };
    fetchLater(m_countries, CountryDatabaseDelay);
    fetchLater(m_ports, PortDescriptionsDelay);
}

void AccountServices::start()
{
    m_autoZurging.start();
    connect(&m_applicationUpload, &QTimer::timeout, &m_uploads, &Uploads::uploadApplications);
    m_applicationUpload.start(ApplicationUploadMs);
    connect(&m_profileUpload, &QTimer::timeout, &m_uploads, &Uploads::uploadProfiles);
    m_profileUpload.start(ProfileUploadMs);
}

void AccountServices::zurgeOnStartup()
{
    if (Settings::instance().value(SettingsKeys::AutoZurgeOnStartupEnabled)) {
        QTimer::singleShot(StartupZurgeDelay, this,
                           [this] { m_localStats.doZurge(ZurgeStart::Manual); });
        Log::info("Zurging on startup is enabled, zurging in 10 seconds");
    }
}

void AccountServices::repeatLastWeek()
{
    constexpr int overlapDays = 7;
    if (versionString().startsWith(QLatin1String("5.8."))) {
        Settings::instance().setValue(SettingsKeys::TimeSeriesLastSent,
                                      QDateTime::currentDateTime().addDays(-overlapDays));
    }
}

void AccountServices::startUsageStats()
{
    connect(&m_usageStats, &QTimer::timeout, &m_uploads, &Uploads::uploadUsageStats);
    m_usageStats.start(UsageStatsInterval);
    m_uploads.uploadUsageStats();
}

void AccountServices::applySettings()
{
    m_autoZurging.refreshSettings();
    m_addresses =
        ServiceAddresses::from(Settings::instance(), QProcessEnvironment::systemEnvironment());
    m_communication.setClientURL(m_addresses.api.toString());
    m_countries.setReleaseAddress(m_addresses.release);
    m_ports.setReleaseAddress(m_addresses.release);
    // Once the event loop turns: copying lends the database, and the start still works with it.
    QMetaObject::invokeMethod(&m_backups, &OnlineBackups::startIfDue, Qt::QueuedConnection);
    Q_EMIT changed();
}

void AccountServices::performMaintenance()
{
    m_countries.update(DataFileDownload::Trigger::WhenDue, DataFileDownload::Asker::Client);
    m_ports.update(DataFileDownload::Trigger::WhenDue, DataFileDownload::Asker::Client);
    if (m_localStats.isLoggedIn()) {
        m_uploads.uploadComputerInfo(ComputerInfoUpload::When::IfDue);
        m_uploads.uploadHeatmaps();
        m_uploads.uploadApplicationSettings(SettingsUpload::When::IfChanged);
        m_uploads.updateDatabaseSizeTelemetry();
        m_backups.startIfDue();
    }
}

void AccountServices::checkForMessagesFromWebsite()
{
    if (m_localStats.isLoggedIn()) {
        m_messageCheck.checkForMessagesFromWebsite();
    }
}

bool AccountServices::refreshAccountInfo()
{
    return m_localStats.isLoggedIn() && !Settings::instance().value(SettingsKeys::WorkOffline) &&
           m_communication.refreshAccountInfo();
}

void AccountServices::greetAccount(const QList<OnlineBackup>& backups)
{
    m_backups.setKept(backups);
    checkForMessagesFromWebsite();
    Q_EMIT changed();
}

void AccountServices::signOut()
{
    if (!Settings::instance().value(SettingsKeys::WorkOffline)) {
        m_communication.resetToken();
    }
    m_localStats.signOut();
}

void AccountServices::stop()
{
    for (QTimer* timer : {&m_applicationUpload, &m_profileUpload, &m_usageStats}) {
        timer->stop();
    }
    m_backups.stop();
    m_countries.cancel();
    m_ports.cancel();
}

/// Where another account or computer is linked from now on, nothing of the last one must speak for
/// it.
void AccountServices::followIdentity()
{
    const AccountIdentity& identity = m_localStats.identity();
    if (!identity.isSameComputer(m_identity)) {
        m_uploads.forget();
        m_backups.forget();
        AccountMarks::forget(m_database);
        Q_EMIT accountReplaced();
    }
    m_identity = identity;
    Q_EMIT changed();
}

void AccountServices::takeAnswer(const QString& requestType, int status,
                                 const QMap<QString, QVariant>& data)
{
    if (requestType != RequestTypes::RefreshAccountInfo) {
        return;
    }
    if (ResultCodes::isSuccess(status) && m_localStats.isLoggedIn()) {
        m_backups.setKept(parseOnlineBackups(data.value(QStringLiteral("database_backups"))));
    }
    Q_EMIT changed();
    Q_EMIT accountInfoTaken();
}

void AccountServices::showArchived()
{
    m_messages.addUniqueOnTypeWindowMessage(archivedComputerMessage(m_addresses.website));
    Q_EMIT changed();
}

QVariantMap AccountServices::computerFacts() const
{
    QList<MonitorFacts> monitors;
    for (const QScreen* screen : QGuiApplication::screens()) {
        monitors.append(
            {.id = screen->name(), .pixels = screen->size() * screen->devicePixelRatio()});
    }
    const bool isSupported = m_isNetworkMonitorSupported();
    return ComputerFacts(QStringLiteral("/"))
        .read(monitors, isSupported ? ComputerFacts::NetworkMonitor::Supported
                                    : ComputerFacts::NetworkMonitor::Unsupported);
}
