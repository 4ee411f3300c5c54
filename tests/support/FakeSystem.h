// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/AbstractSystem.h"

#include <set>
#include <utility>

/// A machine that a test sets up: what is put into its public members comes out of its operations,
/// and what is taken is taken once. What no test has needed yet answers nothing.
class FakeSystem : public AbstractSystem
{
public:
    QList<Qt::Key> keys;
    QList<KeyCombination> combinations;
    QList<unsigned short> clicks;
    QList<QPointF> points;
    QHash<Utils::ScrollDirection, int> scrolls;
    float distanceInches = 0;
    QString activeApplication;
    QStringList runningApplications;
    QSet<QString> excludedApplications;
    QSet<QString> excludedInterfaces; ///< By MAC address.
    QDateTime bootTime;
    bool fullscreen = false;
    int inputHolders = 0; ///< Acquired and not yet released.
    int networkHolders = 0;
    QHash<unsigned short, NetworkTraffic> localPorts;
    QHash<Utils::TrafficType, QHash<unsigned short, NetworkTraffic>> remotePorts;
    QHash<IpAddress, NetworkTraffic> addresses;
    QList<InterfaceBandwidth> interfaces;
    QList<InterfaceBandwidth> counters;
    QHash<unsigned short, QString> portOwners;
    QList<QSet<unsigned short>> askedPorts; ///< For whose owners it was asked.
    std::set<std::pair<int, Utils::TrafficType>> knownPorts;

    QString getHostName() override { return {}; }

    QString getScreenResolution() override { return {}; }

    QString getPublicIp() override { return {}; }

    bool isInternetAvailable() override { return false; }

    bool testingInternetAvailable() override { return false; }

    QString getOperatingSystem() override { return {}; }

    QDateTime getBootTime() override { return bootTime; }

    int getTcpConnectionCount() override { return 0; }

    QList<Qt::Key> retrieveIncrementalKeyPresses() override { return std::exchange(keys, {}); }

    QList<KeyCombination> retrieveIncrementalKeyCombinations() override
    {
        return std::exchange(combinations, {});
    }

    QList<unsigned short> retrieveIncrementalMouseClicks() override
    {
        return std::exchange(clicks, {});
    }

    QList<QPointF> retrieveIncrementalMousePoints() override { return std::exchange(points, {}); }

    int retrieveIncrementalMouseScrolls(Utils::ScrollDirection direction) override
    {
        return scrolls.take(direction);
    }

    float retrieveIncrementalMouseDistanceInches() override
    {
        return std::exchange(distanceInches, 0.0F);
    }

    bool hasInputListeners() override { return inputHolders > 0; }

    QList<Interface> getNetworkInterfaces() override { return {}; }

    QStringList getRunningDesktopApplications() override { return runningApplications; }

    QIcon getApplicationIcon(const QString&) override { return {}; }

    QString getApplicationName(const QString& path) override { return path.section(u'/', -1); }

    QString getApplicationNameCached(const QString& path) override
    {
        return getApplicationName(path);
    }

    QHash<unsigned short, QString> getApplicationPorts(QSet<unsigned short> ports) override
    {
        askedPorts << ports;
        QHash<unsigned short, QString> owners = portOwners;
        owners.removeIf([&ports](const auto& owner) { return !ports.contains(owner.key()); });
        return owners;
    }

    QString getActiveApplicationPath() override { return activeApplication; }

    QString getProcessorName() override { return {}; }

    QString getMemoryInfo() override { return {}; }

    QString getVideocardName() override { return {}; }

    QString getKeyboardHardware() override { return {}; }

    QString getMouseHardware() override { return {}; }

    QString getTrackpadHardware() override { return {}; }

    QString getPlatform() override { return {}; }

    QString getComputerModel(bool) override { return {}; }

    bool isFullscreenApplicationActive() override { return fullscreen; }

    QList<KnownApplication> getApplicationDatabase() override { return {}; }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidth() override
    {
        return std::exchange(localPorts, {});
    }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthTCP() override
    {
        return remotePorts.take(Utils::TrafficType::Tcp);
    }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthUDP() override
    {
        return remotePorts.take(Utils::TrafficType::Udp);
    }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthOther() override
    {
        return remotePorts.take(Utils::TrafficType::Other);
    }

    QHash<IpAddress, NetworkTraffic> getIpBandwidth() override
    {
        return std::exchange(addresses, {});
    }

    QList<InterfaceBandwidth> getInterfacesBandwidth() override
    {
        return std::exchange(interfaces, {});
    }

    QList<InterfaceBandwidth> getInterfacesCounters() override
    {
        return std::exchange(counters, {});
    }

    bool isNetworkTrafficMonitorSupported() override { return false; }

    void refreshNetworkInterfaces() override {}

    void onSystemSuspend() override {}

    void onSystemResume() override {}

    void stop() override {}

    void acquireNetworkTrafficMonitor() override { ++networkHolders; }

    void releaseNetworkTrafficMonitor() override { --networkHolders; }

    void acquireInputMonitor() override { ++inputHolders; }

    void releaseInputMonitor() override { --inputHolders; }

    bool shouldExcludeApplicationForStats(QString path) override
    {
        return excludedApplications.contains(path);
    }

    void addExcludedApplicationForStats(QString path) override
    {
        excludedApplications.insert(path);
    }

    void deleteExcludedApplicationForStats(QString path) override
    {
        excludedApplications.remove(path);
    }

    bool shouldExcludeNICForStats(QString macAddress) override
    {
        return excludedInterfaces.contains(macAddress);
    }

    void addExcludedNICForStats(QString) override {}

    void deleteExcludedNICForStats(QString) override {}

    QString getNetworkPortDescription(int, Utils::TrafficType) override { return {}; }

    void initNetworkPortDescriptions() override {}

    bool isKnownNetworkPort(int port, Utils::TrafficType type) override
    {
        return knownPorts.contains({port, type});
    }
};
