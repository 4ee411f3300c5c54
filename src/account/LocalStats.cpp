// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"

#include "account/UnzurgedTables.h"
#include "base/Log.h"
#include "storage/Database.h"

#include <algorithm>

namespace {

LocalStats* s_instance = nullptr;

quint64 amount(qint64 count)
{
    return static_cast<quint64>(std::max<qint64>(count, 0));
}

} // namespace

LocalStats::LocalStats(QObject* parent, MachineIdSource machineId)
    : QObject(parent)
    , m_machineId(std::move(machineId))
{
    s_instance = this;
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
    m_state = {};
    openDatabaseCopy();
    if (m_tables != nullptr) {
        m_state = m_tables->load();
    }
    m_file = std::make_unique<TvwFile>(dataDirectory, m_machineId);
    std::optional<UnzurgedState> saved = m_file->load();
    m_savedGeneration = saved ? std::optional(saved->generation) : std::nullopt;
    const bool fileIsNewer = saved && saved->generation >= m_state.generation;
    if (fileIsNewer) {
        m_state = *std::move(saved);
    }
    m_changed = false;
    Log::info("Unzurged counts come from the {}, generation {}", fileIsNewer ? "file" : "database",
              m_state.generation);
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
    if (m_savedGeneration == m_state.generation && m_file->exists()) {
        return true;
    }
    if (!m_file->save(m_state)) {
        return false;
    }
    m_savedGeneration = m_state.generation;
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
    constexpr qint64 msecsPerSecond = 1'000;
    increaseApp(path, &UnzurgedCounts::uptime, amount(seconds * msecsPerSecond));
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
    m_identity = identity;
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
