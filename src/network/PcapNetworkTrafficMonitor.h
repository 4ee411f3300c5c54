// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/NetworkTrafficMonitor.h"
#include "network/PcapLibrary.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QReadWriteLock>
#include <QTimer>

#include <memory>
#include <vector>

class PCapInterfaceThread;
struct CaptureDevice;

/// Captures every TCP and UDP packet through libpcap, with one thread for each network interface
/// that is up. Looks every five minutes which interfaces there are, and whenever it is told to.
class PcapNetworkTrafficMonitor final : public QObject, public NetworkTrafficMonitor
{
    Q_OBJECT

public:
    /// Loads the library, whose name is without prefix and version.
    explicit PcapNetworkTrafficMonitor(const QString& library = QStringLiteral("pcap"),
                                       QObject* parent = nullptr);
    ~PcapNetworkTrafficMonitor() override;

    /// Forgets what an earlier run left untaken.
    void start() override;

    /// What was captured until then can still be taken.
    void stop() override;

    bool isRunning() const override { return m_isRunning; }

    bool isSupported() const override { return m_isSupported; }

    /// Ends the threads of interfaces that went, were switched off or replaced, and starts those of
    /// interfaces that came or whose thread has failed. Only while running.
    void updateNetworkDevices() override;
    int countThreads() const override;

    PortTraffic getPortsBandwidth() override;
    PortTraffic getPortsBandwidthTCP() override;
    PortTraffic getPortsBandwidthUDP() override;
    PortTraffic getPortsBandwidthOther() override;
    AddressTraffic getIpBandwidth() override;

    /// One for each thread, also where nothing crossed its interface.
    QList<InterfaceBandwidth> getInterfacesBandwidth() override;

    /// Empty.
    QList<InterfaceBandwidth> getInterfacesCounters() override { return {}; }

private:
    /// What threads that are gone had counted and nobody had taken yet.
    struct Untaken
    {
        PortTraffic ports;
        PortTraffic portsTcp;
        PortTraffic portsUdp;
        PortTraffic portsOther;
        AddressTraffic addresses;
        QMap<int, InterfaceBandwidth> interfaces; ///< By index.
    };

    enum class Sighting
    {
        First,
        Again,
    };

    void refresh();
    void follow(const CaptureDevice& device, Sighting sighting,
                const QSet<IpAddress>& localAddresses);
    void startThread(const Interface& interface, const QSet<IpAddress>& localAddresses);
    void removeIdleThreads();
    void stopThread(const QString& name);
    void stopAllThreads();
    PCapInterfaceThread* threadOf(const QString& name) const;
    template <typename Predicate>
    void endThreads(Predicate isOver);
    void keepUntaken();
    QMap<int, InterfaceBandwidth> takeInterfaces();
    template <typename Traffic>
    Traffic take(Traffic& untaken, Traffic (TrafficCounters::*taking)());

    PcapLibrary m_library;
    bool m_isSupported = false;
    bool m_isRunning = false;
    QTimer m_refreshTimer;
    mutable QReadWriteLock m_lock; ///< Guards the list of threads.
    std::vector<std::unique_ptr<PCapInterfaceThread>> m_threads;
    QHash<QString, Interface> m_interfaces; ///< Those found last, by name.
    Untaken m_untaken;
};
