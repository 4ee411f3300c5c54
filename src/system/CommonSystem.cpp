// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/CommonSystem.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "system/LinuxSystem.h"

namespace {

/// Counts one holder less; true where that was the last one.
bool releasesLast(int& holders, const char* what)
{
    if (holders == 0) {
        // After `stop`, the holders that were left release what they no longer hold.
        Log::debug("The {} was released by no holder", what);
        return false;
    }
    return --holders == 0;
}

} // namespace

std::unique_ptr<CommonSystem>
CommonSystem::createPlatformSpecificSystem(Database* database, AbstractSystemListener* listener,
                                           const SystemPlaces& places)
{
    auto system = std::make_unique<LinuxSystem>(database, places);
    system->setSystemListener(listener);
    return system;
}

CommonSystem::CommonSystem(Database* database)
    : m_database(database)
    , m_excludedApplications(database, ExclusionList::Kind::Applications)
    , m_excludedInterfaces(database, ExclusionList::Kind::Interfaces)
{
}

void CommonSystem::setSystemListener(AbstractSystemListener* listener)
{
    m_listener = listener;
}

AbstractSystemListener* CommonSystem::systemListener() const
{
    return m_listener;
}

void CommonSystem::reloadExclusions()
{
    m_excludedApplications.reload();
    m_excludedInterfaces.reload();
}

QList<KnownApplication> CommonSystem::getApplicationDatabase()
{
    QList<KnownApplication> known;
    if (!m_database) {
        return known;
    }
    DSqlQuery query(m_database);
    query.exec(QStringLiteral("SELECT \"path\", \"name\" FROM applications ORDER BY \"path\""));
    while (query.next()) {
        known.append({query.value(0).toString(), query.value(1).toString()});
    }
    return known;
}

void CommonSystem::stop()
{
    if (m_inputHolders > 0) {
        m_inputHolders = 0;
        stopInputMonitor();
    }
    if (m_networkHolders > 0) {
        m_networkHolders = 0;
        stopNetworkTrafficMonitor();
    }
}

void CommonSystem::acquireNetworkTrafficMonitor()
{
    if (m_networkHolders++ == 0) {
        startNetworkTrafficMonitor();
    }
}

void CommonSystem::releaseNetworkTrafficMonitor()
{
    if (releasesLast(m_networkHolders, "network traffic monitor")) {
        stopNetworkTrafficMonitor();
    }
}

void CommonSystem::acquireInputMonitor()
{
    if (m_inputHolders++ == 0) {
        startInputMonitor();
    }
}

void CommonSystem::releaseInputMonitor()
{
    if (releasesLast(m_inputHolders, "input monitor")) {
        stopInputMonitor();
    }
}

QStringList CommonSystem::excludedApplications() const
{
    return m_excludedApplications.items();
}

QStringList CommonSystem::excludedInterfaces() const
{
    return m_excludedInterfaces.items();
}

bool CommonSystem::shouldExcludeApplicationForStats(QString path)
{
    return m_excludedApplications.contains(path);
}

void CommonSystem::addExcludedApplicationForStats(QString path)
{
    m_excludedApplications.add(path);
}

void CommonSystem::deleteExcludedApplicationForStats(QString path)
{
    m_excludedApplications.remove(path);
}

bool CommonSystem::shouldExcludeNICForStats(QString macAddress)
{
    return m_excludedInterfaces.contains(macAddress);
}

void CommonSystem::addExcludedNICForStats(QString macAddress)
{
    m_excludedInterfaces.add(macAddress);
}

void CommonSystem::deleteExcludedNICForStats(QString macAddress)
{
    m_excludedInterfaces.remove(macAddress);
}
