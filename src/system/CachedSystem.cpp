// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/CachedSystem.h"

#include <chrono>
#include <utility>

namespace {

/// The answer of `ask`, which cannot change while the client runs, asked once.
template <typename T, typename Ask>
T once(std::optional<T>& place, Ask ask)
{
    if (!place) {
        place = ask();
    }
    return *place;
}

} // namespace

CachedSystem::CachedSystem(std::unique_ptr<AbstractSystem> system, Clock clock)
    : m_system(std::move(system))
    , m_clock(std::move(clock))
{
    Q_ASSERT(m_system);
}

qint64 CachedSystem::steadyClock()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

template <typename T, typename Ask>
T CachedSystem::kept(std::optional<Kept<T>>& place, qint64 lifeMs, Ask ask)
{
    const qint64 now = m_clock();
    if (!place || now - place->since >= lifeMs) {
        place = Kept<T>{ask(), now};
    }
    return place->value;
}

template <typename T, typename Ask>
T CachedSystem::kept(QCache<QString, Kept<T>>& places, const QString& key, Ask ask)
{
    const qint64 now = m_clock();
    if (const Kept<T>* found = places.object(key); found && now - found->since < NamesMs) {
        return found->value;
    }
    T value = ask();
    places.insert(key, new Kept<T>{value, now}); // The cache owns it.
    return value;
}

QString CachedSystem::getHostName()
{
    return m_system->getHostName();
}

QString CachedSystem::getScreenResolution()
{
    return m_system->getScreenResolution();
}

QString CachedSystem::getPublicIp()
{
    return m_system->getPublicIp();
}

bool CachedSystem::isInternetAvailable()
{
    return m_system->isInternetAvailable();
}

bool CachedSystem::testingInternetAvailable()
{
    return m_system->testingInternetAvailable();
}

QString CachedSystem::getOperatingSystem()
{
    return once(m_operatingSystem, [this] { return m_system->getOperatingSystem(); });
}

QDateTime CachedSystem::getBootTime()
{
    return once(m_bootTime, [this] { return m_system->getBootTime(); });
}

int CachedSystem::getTcpConnectionCount()
{
    return m_system->getTcpConnectionCount();
}

QList<Qt::Key> CachedSystem::retrieveIncrementalKeyPresses()
{
    return m_system->retrieveIncrementalKeyPresses();
}

QList<KeyCombination> CachedSystem::retrieveIncrementalKeyCombinations()
{
    return m_system->retrieveIncrementalKeyCombinations();
}

QList<unsigned short> CachedSystem::retrieveIncrementalMouseClicks()
{
    return m_system->retrieveIncrementalMouseClicks();
}

QList<QPointF> CachedSystem::retrieveIncrementalMousePoints()
{
    return m_system->retrieveIncrementalMousePoints();
}

int CachedSystem::retrieveIncrementalMouseScrolls(Utils::ScrollDirection direction)
{
    return m_system->retrieveIncrementalMouseScrolls(direction);
}

float CachedSystem::retrieveIncrementalMouseDistanceInches()
{
    return m_system->retrieveIncrementalMouseDistanceInches();
}

bool CachedSystem::hasInputListeners()
{
    return m_system->hasInputListeners();
}

QList<Interface> CachedSystem::getNetworkInterfaces()
{
    return kept(m_interfaces, InterfacesMs, [this] { return m_system->getNetworkInterfaces(); });
}

QStringList CachedSystem::getRunningDesktopApplications()
{
    return m_system->getRunningDesktopApplications();
}

QIcon CachedSystem::getApplicationIcon(const QString& path)
{
    return kept(m_icons, path, [&] { return m_system->getApplicationIcon(path); });
}

QString CachedSystem::getApplicationName(const QString& path)
{
    return m_system->getApplicationName(path);
}

QString CachedSystem::getApplicationNameCached(const QString& path)
{
    return kept(m_names, path, [&] { return m_system->getApplicationName(path); });
}

QHash<unsigned short, QString> CachedSystem::getApplicationPorts(QSet<unsigned short> ports)
{
    return m_system->getApplicationPorts(std::move(ports));
}

QString CachedSystem::getActiveApplicationPath()
{
    return kept(m_activePath, FrontWindowMs,
                [this] { return m_system->getActiveApplicationPath(); });
}

QString CachedSystem::getProcessorName()
{
    return once(m_processor, [this] { return m_system->getProcessorName(); });
}

QString CachedSystem::getMemoryInfo()
{
    return once(m_memory, [this] { return m_system->getMemoryInfo(); });
}

QString CachedSystem::getVideocardName()
{
    return once(m_videocard, [this] { return m_system->getVideocardName(); });
}

QString CachedSystem::getKeyboardHardware()
{
    return m_system->getKeyboardHardware();
}

QString CachedSystem::getMouseHardware()
{
    return m_system->getMouseHardware();
}

QString CachedSystem::getTrackpadHardware()
{
    return m_system->getTrackpadHardware();
}

QString CachedSystem::getPlatform()
{
    return once(m_platform, [this] { return m_system->getPlatform(); });
}

QString CachedSystem::getComputerModel(bool withVendor)
{
    auto found = m_computerModels.constFind(withVendor);
    if (found == m_computerModels.constEnd()) {
        found = m_computerModels.insert(withVendor, m_system->getComputerModel(withVendor));
    }
    return *found;
}

bool CachedSystem::isFullscreenApplicationActive()
{
    return kept(m_fullscreen, FrontWindowMs,
                [this] { return m_system->isFullscreenApplicationActive(); });
}

QList<KnownApplication> CachedSystem::getApplicationDatabase()
{
    return m_system->getApplicationDatabase();
}

QHash<unsigned short, NetworkTraffic> CachedSystem::getPortsBandwidth()
{
    return m_system->getPortsBandwidth();
}

QHash<unsigned short, NetworkTraffic> CachedSystem::getPortsBandwidthTCP()
{
    return m_system->getPortsBandwidthTCP();
}

QHash<unsigned short, NetworkTraffic> CachedSystem::getPortsBandwidthUDP()
{
    return m_system->getPortsBandwidthUDP();
}

QHash<unsigned short, NetworkTraffic> CachedSystem::getPortsBandwidthOther()
{
    return m_system->getPortsBandwidthOther();
}

QHash<IpAddress, NetworkTraffic> CachedSystem::getIpBandwidth()
{
    return m_system->getIpBandwidth();
}

QList<InterfaceBandwidth> CachedSystem::getInterfacesBandwidth()
{
    return m_system->getInterfacesBandwidth();
}

QList<InterfaceBandwidth> CachedSystem::getInterfacesCounters()
{
    return m_system->getInterfacesCounters();
}

bool CachedSystem::isNetworkTrafficMonitorSupported()
{
    return m_system->isNetworkTrafficMonitorSupported();
}

void CachedSystem::refreshNetworkInterfaces()
{
    m_interfaces.reset();
    m_system->refreshNetworkInterfaces();
}

void CachedSystem::onSystemSuspend()
{
    m_system->onSystemSuspend();
}

void CachedSystem::onSystemResume()
{
    m_activePath.reset();
    m_fullscreen.reset();
    m_interfaces.reset();
    m_names.clear();
    m_icons.clear();
    m_system->onSystemResume();
}

void CachedSystem::stop()
{
    m_system->stop();
}

void CachedSystem::acquireNetworkTrafficMonitor()
{
    m_system->acquireNetworkTrafficMonitor();
}

void CachedSystem::releaseNetworkTrafficMonitor()
{
    m_system->releaseNetworkTrafficMonitor();
}

void CachedSystem::acquireInputMonitor()
{
    m_system->acquireInputMonitor();
}

void CachedSystem::releaseInputMonitor()
{
    m_system->releaseInputMonitor();
}

bool CachedSystem::shouldExcludeApplicationForStats(QString path)
{
    return m_system->shouldExcludeApplicationForStats(std::move(path));
}

void CachedSystem::addExcludedApplicationForStats(QString path)
{
    m_system->addExcludedApplicationForStats(std::move(path));
}

void CachedSystem::deleteExcludedApplicationForStats(QString path)
{
    m_system->deleteExcludedApplicationForStats(std::move(path));
}

bool CachedSystem::shouldExcludeNICForStats(QString macAddress)
{
    return m_system->shouldExcludeNICForStats(std::move(macAddress));
}

void CachedSystem::addExcludedNICForStats(QString macAddress)
{
    m_system->addExcludedNICForStats(std::move(macAddress));
}

void CachedSystem::deleteExcludedNICForStats(QString macAddress)
{
    m_system->deleteExcludedNICForStats(std::move(macAddress));
}

QString CachedSystem::getNetworkPortDescription(int port, Utils::TrafficType type)
{
    return m_system->getNetworkPortDescription(port, type);
}

void CachedSystem::initNetworkPortDescriptions()
{
    m_system->initNetworkPortDescriptions();
}

bool CachedSystem::isKnownNetworkPort(int port, Utils::TrafficType type)
{
    return m_system->isKnownNetworkPort(port, type);
}
