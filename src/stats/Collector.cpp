// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/Collector.h"

#include "account/LocalStats.h"
#include "base/Log.h"
#include "profiles/ProfileManager.h"
#include "stats/Stat.h"
#include "stats/TimeGuard.h"
#include "storage/Database.h"

#include <QCoreApplication>
#include <QSqlError>

#include <utility>

namespace {

constexpr int TickMs = 500;
constexpr int SaveMs = 600'000;
constexpr qint64 CopyMs = 60'000;
constexpr qint64 FailureReportMs = 60'000;

QSqlDatabase openConnection()
{
    return QSqlDatabase::database(Database::ConnectionName, false);
}

} // namespace

Collector::Collector(QObject* parent)
    : QThread(parent)
    , m_database(openConnection())
{
    m_updateTimer.setInterval(TickMs);
    connect(&m_updateTimer, &QTimer::timeout, this, qOverload<>(&Collector::update));
    m_saveTimer.setInterval(SaveMs);
    connect(&m_saveTimer, &QTimer::timeout, this, &Collector::saveLocal);
    m_saveTimer.start();

    if (const Database* database = Database::instance()) {
        connect(database, &Database::aboutToClose, this, [this] { m_database = QSqlDatabase(); });
    }
}

Collector::~Collector()
{
    quit();
    wait();
}

void Collector::addStat(Stat* stat)
{
    m_stats.insert(QString::fromLatin1(stat->metaObject()->className()), stat);
}

void Collector::removeStat(Stat* stat)
{
    m_stats.removeIf([stat](const auto& entry) { return entry.value() == stat; });
}

void Collector::removeStat(const QString& className)
{
    m_stats.remove(className);
}

void Collector::setUiModeSource(std::function<bool()> isUiMode)
{
    m_isUiMode = std::move(isUiMode);
}

bool Collector::isCollecting() const
{
    return m_running;
}

void Collector::startCollector()
{
    QMetaObject::invokeMethod(this, &Collector::startCollectorInternal, Qt::QueuedConnection);
}

void Collector::pauseCollector()
{
    QMetaObject::invokeMethod(this, &Collector::pauseCollectorInternal, Qt::QueuedConnection);
}

void Collector::stopCollector()
{
    QMetaObject::invokeMethod(this, &Collector::stopCollectorInternal, Qt::QueuedConnection);
}

void Collector::flush()
{
    flushStats(QDateTime::currentDateTime());
}

void Collector::finish()
{
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    quit();
    wait();
}

void Collector::run()
{
    exec();
}

void Collector::startCollectorInternal()
{
    // Asked here, and not when the call was made: a pause may have been waiting before it.
    if (m_running) {
        return;
    }
    Log::info("Starting collector");
    m_updateTimer.start();
    m_saveTimer.start();
    m_running = true;
}

void Collector::pauseCollectorInternal()
{
    Log::info("Pausing collector");
    m_updateTimer.stop();
    m_saveTimer.stop();
    m_running = false;
}

void Collector::stopCollectorInternal()
{
    Log::info("Stopping collector");
    flush();
    for (Stat* stat : std::as_const(m_stats)) {
        stat->setEnabled(false);
    }
    m_updateTimer.stop();
    m_saveTimer.stop();
    m_running = false;
}

void Collector::saveLocal()
{
    Log::info("Saving local stats into tvw.");
    LocalStats::instance()->saveSettings();
}

void Collector::update()
{
    update(QDateTime::currentDateTime());
}

void Collector::update(const QDateTime& now)
{
    if (m_inTransaction || !isWritable() || !begin()) {
        return;
    }
    TimeGuard& guard = TimeGuard::instance();
    guard.update(now);
    if (guard.wasClockSetBack()) {
        restartIntervals();
    }
    bool copied = false;
    if (!guard.isBlocked()) {
        updateStats(now);
        copied = copyTotals(now);
    }
    if (commit() && copied) {
        m_lastCopy = now;
    }
}

void Collector::updateStats(const QDateTime& now)
{
    for (Stat* stat : preparedStats()) {
        stat->update(now);
    }
}

/// Takes and writes what the statistics still hold, while the clock is waited for too: counts filed
/// under a time a few seconds off are better than none. A tick that is under way ends with it.
void Collector::flushStats(const QDateTime& now)
{
    if (!isWritable() || (!m_inTransaction && !begin())) {
        return;
    }
    for (Stat* stat : preparedStats()) {
        stat->flush(now);
    }
    LocalStats::instance()->writeDatabaseCopy();
    commit();
}

/// The enabled statistics, told the window's and the profile's state.
QList<Stat*> Collector::preparedStats()
{
    const bool uiMode = m_isUiMode && m_isUiMode();
    const int profileId = ProfileManager::instance()->getActiveStatsProfileId();
    QList<Stat*> enabled;
    for (Stat* stat : std::as_const(m_stats)) {
        if (stat->isEnabled()) {
            stat->setUiMode(uiMode);
            stat->setStatsProfileId(profileId);
            enabled.append(stat);
        }
    }
    return enabled;
}

void Collector::restartIntervals()
{
    for (Stat* stat : std::as_const(m_stats)) {
        stat->restartIntervals();
    }
    m_lastCopy = {};
}

/// True where a minute has passed and the copy was written.
bool Collector::copyTotals(const QDateTime& now)
{
    if (m_lastCopy.isValid() && m_lastCopy.msecsTo(now) < CopyMs) {
        return false;
    }
    LocalStats::instance()->writeDatabaseCopy();
    return true;
}

bool Collector::isWritable()
{
    const Database* database = Database::instance();
    if (database == nullptr || database->state() != Database::State::Open || database->isLent()) {
        return false;
    }
    if (!m_database.isOpen()) {
        m_database = openConnection(); // It may have been closed and opened again.
    }
    return m_database.isOpen();
}

bool Collector::begin()
{
    m_inTransaction = m_database.transaction();
    if (!m_inTransaction) {
        reportFailure("begin");
    }
    return m_inTransaction;
}

bool Collector::commit()
{
    if (!m_inTransaction) {
        return false;
    }
    m_inTransaction = false;
    if (m_database.commit()) {
        return true;
    }
    reportFailure("commit");
    m_database.rollback();
    TimeGuard::instance().rolledBack();
    return false;
}

void Collector::reportFailure(const char* operation)
{
    ++m_unreportedFailures;
    if (m_lastFailureReport.isValid() && !m_lastFailureReport.hasExpired(FailureReportMs)) {
        return;
    }
    Log::error("Unable to {} the collector's transaction: {} (failures since the last report: {})",
               operation, m_database.lastError().databaseText(), m_unreportedFailures);
    m_unreportedFailures = 0;
    m_lastFailureReport.start();
}
