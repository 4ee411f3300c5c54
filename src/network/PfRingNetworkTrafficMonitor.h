// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/DroppedPackets.h"
#include "network/NetworkTrafficMonitor.h"
#include "network/TrafficCounters.h"

#include <QHash>
#include <QNetworkInformation>
#include <QObject>
#include <QSet>
#include <QString>

#include <memory>

class NetworkChanges;
class PfRingThread;

/// Counts every packet of every Ethernet interface through one packet ring. Needs the right to open
/// packet sockets (capabilities(7), CAP_NET_RAW). Bytes are those of whole frames, the link-layer
/// header included.
///
/// While it runs, interfaces may come and go: an interface that is gone keeps its record until its
/// last bytes are taken. What was counted before a stop stays to be taken.
class PfRingNetworkTrafficMonitor final : public QObject, public NetworkTrafficMonitor
{
    Q_OBJECT

public:
    /// `root` is where "sys" lies.
    explicit PfRingNetworkTrafficMonitor(const QString& root = QStringLiteral("/"),
                                         QObject* parent = nullptr);
    ~PfRingNetworkTrafficMonitor() override;

    void start() override;
    void stop() override;
    bool isRunning() const override;

    bool isSupported() const override { return m_isSupported; }

    void updateNetworkDevices() override;
    int countThreads() const override;

    PortTraffic getPortsBandwidth() override;
    PortTraffic getPortsBandwidthTCP() override;
    PortTraffic getPortsBandwidthUDP() override;
    PortTraffic getPortsBandwidthOther() override;
    AddressTraffic getIpBandwidth() override;
    QList<InterfaceBandwidth> getInterfacesBandwidth() override;

    QList<InterfaceBandwidth> getInterfacesCounters() override { return {}; }

public Q_SLOTS:
    void networkTranportMediumChanged(QNetworkInformation::TransportMedium medium);

private:
    void watchNetwork();
    void readInterfaces();
    void forgetSilent(const QHash<int, InterfaceTraffic>& traffic);
    void countDropped();

    QString m_sysClassNet;
    bool m_isSupported;
    QHash<int, Interface> m_interfaces; ///< By index; those that are gone as well.
    QSet<int> m_goneInterfaces;         ///< Indexes of those that wait for their last take.
    DroppedPackets m_dropped;
    TrafficCounters m_counters;                ///< Outlives the thread, which adds to it.
    std::unique_ptr<PfRingThread> m_thread;    ///< Exists while this runs.
    std::unique_ptr<NetworkChanges> m_changes; ///< Likewise.
};
