// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"

#include "account/Authorization.h"
#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "account/UnzurgedTables.h"
#include "account/Zurge.h"
#include "account/ZurgeAnswer.h"
#include "account/ZurgeGenerateTimeSeries.h"
#include "account/ZurgeService.h"
#include "base/Log.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QUuid>

#include <algorithm>
#include <utility>

namespace {

LocalStats* s_instance = nullptr;

quint64 amount(qint64 count)
{
    return static_cast<quint64>(std::max<qint64>(count, 0));
}

/// Whether the counts saved in the file are the ones to go on with.
bool isNewer(const UnzurgedState& saved, const UnzurgedState& copied)
{
    const bool related =
        saved.lineage.isEmpty() || copied.lineage.isEmpty() || saved.lineage == copied.lineage;
    return !related || saved.generation >= copied.generation;
}

} // namespace

LocalStats::LocalStats(QObject* parent, MachineIdSource machineId, std::function<QDateTime()> now)
    : QObject(parent)
    , m_machineId(std::move(machineId))
    , m_zurge(std::make_unique<Zurge>(*this, std::move(now)))
{
    s_instance = this;
    forwardZurgeSignals();
}

void LocalStats::forwardZurgeSignals()
{
    const Zurge* zurge = m_zurge.get();
    connect(zurge, &Zurge::buttonChanged, this, &LocalStats::signalNeedZurgeButtonUpdated);
    connect(zurge, &Zurge::finished, this, &LocalStats::signalZurgeFinishedSuccessfully);
    connect(zurge, &Zurge::recorded, this, &LocalStats::signalZurgeRecorded);
    connect(zurge, &Zurge::trayMessage, this, &LocalStats::signalNeedTrayIconMessage);
    connect(zurge, &Zurge::messageBox, this, &LocalStats::signalNeedMessageBox);
    connect(zurge, &Zurge::computerInfoWanted, this, &LocalStats::signalNeedComputerInfoUpload);
    connect(zurge, &Zurge::pendingMessagesWanted, this, &LocalStats::signalNeedPendingMessages);
}

LocalStats::~LocalStats()
{
    s_instance = nullptr;
}

LocalStats* LocalStats::instance()
{
    return s_instance;
}

void LocalStats::setup(const QString& dataDirectory)
{
    closeDatabaseCopy();
    m_file = std::make_unique<TvwFile>(dataDirectory, m_machineId);
    load();
    reportInFlight(QStringLiteral("The last run ended before the service answered to a zurge"));
    storeIdentitySettings();
}

void LocalStats::load()
{
    openDatabaseCopy();
    m_state = m_tables != nullptr ? m_tables->load() : UnzurgedState();
    std::optional<TvwContent> saved = m_file->load();
    m_savedGeneration = saved ? std::optional(saved->counts.generation) : std::nullopt;
    const bool fileIsNewer = saved && isNewer(saved->counts, m_state);
    m_account = saved ? std::move(saved->account) : AccountRecord();
    if (fileIsNewer) {
        m_state = std::move(saved->counts);
    } else if (saved && m_state.settled > saved->counts.settled) {
        // Taken off the counts already, though the file could not be told.
        m_account.inFlight.reset();
    }
    m_accountChanged = false;
    m_changed = m_state.lineage.isEmpty();
    if (m_changed) {
        m_state.lineage = QUuid::createUuid().toString(QUuid::WithoutBraces);
    }
    Log::info("Unzurged counts come from the {}, generation {}", fileIsNewer ? "file" : "database",
              m_state.generation);
}

void LocalStats::reportInFlight(const QString& what) const
{
    if (const std::optional<ZurgeInFlight>& sent = m_account.inFlight) {
        Log::warn("{}: sent at {}, it is uncertain whether the service has taken {}, of {} "
                  "applications",
                  what, sent->time.toString(Qt::ISODate), ZurgeAmounts::describe(sent->totals),
                  sent->applications.size());
    }
}

void LocalStats::openDatabaseCopy()
{
    Database* database = Database::instance();
    if (m_tables == nullptr && database != nullptr && database->connection().isOpen()) {
        connect(database, &Database::aboutToClose, this, &LocalStats::closeDatabaseCopy,
                Qt::UniqueConnection);
        m_tables = std::make_unique<UnzurgedTables>(database);
    }
}

void LocalStats::closeDatabaseCopy()
{
    m_tables.reset();
    m_copiedGeneration.reset();
    m_changedApplications.clear();
}

void LocalStats::numberChanges()
{
    if (m_changed) {
        ++m_state.generation;
        m_changed = false;
    }
}

bool LocalStats::saveSettings()
{
    numberChanges();
    if (m_file == nullptr) {
        Log::error("Local stats are saved before they were loaded");
        return false;
    }
    if (m_savedGeneration == m_state.generation && !m_accountChanged && m_file->exists()) {
        return true;
    }
    if (!m_file->save({m_state, m_account})) {
        return false;
    }
    m_savedGeneration = m_state.generation;
    m_accountChanged = false;
    return true;
}

void LocalStats::writeDatabaseCopy()
{
    openDatabaseCopy();
    if (m_tables == nullptr || Database::instance()->state() != Database::State::Open) {
        return;
    }
    numberChanges();
    const bool copyIsKnown = m_copiedGeneration && m_tables->generation() == m_copiedGeneration;
    if (copyIsKnown && m_copiedGeneration == m_state.generation) {
        return;
    }
    const bool ok = copyIsKnown ? m_tables->writeChanges(m_state, m_changedApplications)
                                : m_tables->writeAll(m_state);
    m_copiedGeneration = ok ? std::optional(m_state.generation) : std::nullopt;
    m_changedApplications.clear();
}

void LocalStats::increaseKeys(int count)
{
    increase(&UnzurgedCounts::keys, amount(count));
}

void LocalStats::increaseAppKeys(const QString& path, int count)
{
    increaseApp(path, &UnzurgedCounts::keys, amount(count));
}

void LocalStats::increaseClicks(int count)
{
    increase(&UnzurgedCounts::clicks, amount(count));
}

void LocalStats::increaseAppClicks(const QString& path, int count)
{
    increaseApp(path, &UnzurgedCounts::clicks, amount(count));
}

void LocalStats::increaseScrolls(int steps)
{
    increase(&UnzurgedCounts::scrolls, amount(steps));
}

void LocalStats::increaseAppScrolls(const QString& path, int steps)
{
    increaseApp(path, &UnzurgedCounts::scrolls, amount(steps));
}

void LocalStats::increaseDistanceInches(quint64 inches)
{
    increase(&UnzurgedCounts::distanceInches, inches);
}

void LocalStats::increaseAppDistanceInches(const QString& path, quint64 inches)
{
    increaseApp(path, &UnzurgedCounts::distanceInches, inches);
}

void LocalStats::increaseUptime(qint64 msecs)
{
    increase(&UnzurgedCounts::uptime, amount(msecs));
}

void LocalStats::increaseAppUptime(const QString& path, int seconds, const QDateTime&)
{
    increaseApp(path, &UnzurgedCounts::uptime, amount(seconds) * MsecsPerSecond);
}

void LocalStats::increaseBandwidth(quint64 download, quint64 upload)
{
    increase(&UnzurgedCounts::download, download);
    increase(&UnzurgedCounts::upload, upload);
}

void LocalStats::increaseAppBandwidth(const QString& path, quint64 download, quint64 upload)
{
    increaseApp(path, &UnzurgedCounts::download, download);
    increaseApp(path, &UnzurgedCounts::upload, upload);
}

void LocalStats::setIdentity(const AccountIdentity& identity)
{
    if (!identity.isSameComputer(m_account.identity)) {
        reportInFlight(QStringLiteral("The account changes before it answered to a zurge"));
        AccountRecord account;
        account.inFlight = std::move(m_account.inFlight);
        m_account = std::move(account);
        m_zurge->forget();
    }
    m_account.identity = identity;
    noteAccountChange();
    storeIdentitySettings();
    Q_EMIT signalIdentityChanged();
}

void LocalStats::signIn(const Authorization& authorization)
{
    setIdentity(authorization.identity);
    const QDateTime& last = authorization.lastZurge;
    if (last.isValid() && (!m_account.lastZurge.isValid() || last > m_account.lastZurge)) {
        setLastZurge(last);
    }
    m_zurge->takeAccountInfo(AccountInfo::from({{QStringLiteral("token"), authorization.zurgeToken},
                                                {QStringLiteral("totals"), authorization.totals},
                                                {QStringLiteral("ranks"), authorization.ranks}}));
}

void LocalStats::signOut()
{
    setIdentity({});
}

void LocalStats::noteAccountChange()
{
    m_accountChanged = true;
    saveSettings();
}

void LocalStats::storeIdentitySettings() const
{
    Settings& settings = Settings::instance();
    const AccountIdentity& identity = m_account.identity;
    if (settings.value(SettingsKeys::OnlineEmail) != identity.email) {
        settings.setValue(SettingsKeys::OnlineEmail, identity.email);
    }
    if (settings.value(SettingsKeys::OnlineUserid) != identity.userId) {
        settings.setValue(SettingsKeys::OnlineUserid, identity.userId);
    }
}

void LocalStats::setCommunication(ClientCommunication& communication)
{
    const auto signIn = [this, &communication] { communication.setIdentity(m_account.identity); };
    signIn();
    connect(this, &LocalStats::signalIdentityChanged, &communication, signIn);
    connect(&communication, &ClientCommunication::requestDone, this, &LocalStats::takeOutcome);
    connect(&communication, &ClientCommunication::requestDropped, this,
            [this](const QString& requestType) {
                takeOutcome(requestType, 0, {}, tr("The service did not answer."));
            });
    const auto send = [&communication](const ClientCommunication::ZurgeRequest& zurge) {
        return communication.doZurge(zurge);
    };
    setZurgeService(
        {.send = send,
         .askAccountInfo = [&communication] { return communication.refreshAccountInfo(); },
         .timeSeries = [] { return ZurgeGenerateTimeSeries().getTimeSeries(); }});
    connect(&communication, &QObject::destroyed, this, [this] { setZurgeService({}); });
}

void LocalStats::takeOutcome(const QString& requestType, int status,
                             const QMap<QString, QVariant>& data, const QString& message)
{
    if (requestType == RequestTypes::Zurge) {
        processZurgeResponse(status, data, message);
    } else if (requestType == RequestTypes::RefreshAccountInfo) {
        processAccountInfo(status, data, message);
    }
}

void LocalStats::setZurgeService(ZurgeService service)
{
    m_zurge->setService(std::move(service));
}

bool LocalStats::doZurge(ZurgeStart start, const ZurgeWish& wish)
{
    return m_zurge->begin(start, wish);
}

bool LocalStats::isZurging() const
{
    return m_zurge->isInProgress();
}

QDateTime LocalStats::automaticSuspendedUntil() const
{
    return m_zurge->suspendedUntil();
}

void LocalStats::resetZurgeButton()
{
    m_zurge->resetZurgeButton();
}

void LocalStats::processZurgeResponse(int status, const QMap<QString, QVariant>& data,
                                      const QString& message)
{
    m_zurge->takeAnswer(status, data, message);
}

void LocalStats::processAccountInfo(int status, const QMap<QString, QVariant>& data,
                                    const QString& message)
{
    m_zurge->takeAccountInfo(status, data, message);
}

bool LocalStats::recordInFlight(const ZurgeInFlight& amounts)
{
    if (m_account.ownInFlight() == nullptr) {
        reportInFlight(QStringLiteral("Another account zurges before the last one answered"));
    }
    std::optional<ZurgeInFlight> before = std::exchange(m_account.inFlight, amounts);
    noteAccountChange();
    if (m_accountChanged) {
        m_account.inFlight = std::move(before);
        return false;
    }
    return true;
}

void LocalStats::forgetInFlight()
{
    m_account.inFlight.reset();
    noteAccountChange();
}

void LocalStats::settleInFlight(const QString& token)
{
    const ZurgeInFlight sent =
        std::exchange(m_account.inFlight, std::nullopt).value_or(ZurgeInFlight());
    m_state.totals = ZurgeAmounts::subtract(m_state.totals, sent.totals);
    for (auto it = sent.applications.cbegin(); it != sent.applications.cend(); ++it) {
        UnzurgedCounts& counts = m_state.applications[it.key()];
        counts = ZurgeAmounts::subtract(counts, it.value());
        m_changedApplications.insert(it.key());
    }
    m_changed = true;
    ++m_state.settled;
    if (!token.isEmpty()) {
        m_account.zurgeToken = token;
    }
    noteAccountChange();
}

void LocalStats::setZurgeToken(const QString& token)
{
    if (m_account.zurgeToken != token) {
        m_account.zurgeToken = token;
        noteAccountChange();
    }
}

void LocalStats::setLastZurge(const QDateTime& time)
{
    m_account.lastZurge = time;
    m_accountChanged = true;
}

const UnzurgedCounts& LocalStats::unzurged() const
{
    return m_state.totals;
}

const QHash<QString, UnzurgedCounts>& LocalStats::unzurgedPerApplication() const
{
    return m_state.applications;
}

void LocalStats::increase(quint64 UnzurgedCounts::*counter, quint64 amount)
{
    if (amount > 0) {
        m_state.totals.*counter = saturatingSum(m_state.totals.*counter, amount);
        m_changed = true;
    }
}

void LocalStats::increaseApp(const QString& path, quint64 UnzurgedCounts::*counter, quint64 amount)
{
    if (amount > 0) {
        UnzurgedCounts& counts = m_state.applications[path];
        counts.*counter = saturatingSum(counts.*counter, amount);
        m_changed = true;
        m_changedApplications.insert(path);
    }
}
