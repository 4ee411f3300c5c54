// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/InterfaceBandwidth.h"
#include "network/TrafficCounters.h"

#include <QList>

/// One way to learn what crosses the network. Every getter takes: it returns what accumulated since
/// its last call, and resets it. Thread: main.
class NetworkTrafficMonitor
{
public:
    NetworkTrafficMonitor() = default;
    NetworkTrafficMonitor(const NetworkTrafficMonitor&) = delete;
    NetworkTrafficMonitor& operator=(const NetworkTrafficMonitor&) = delete;
    virtual ~NetworkTrafficMonitor() = default;

    virtual void start() = 0;
    virtual void stop() = 0; ///< Returns when every thread of this has ended.
    virtual bool isRunning() const = 0;
    virtual bool isSupported() const = 0; ///< Decided at construction, for the process's life.

    /// Follows interfaces that came or went, and addresses that changed.
    virtual void updateNetworkDevices() = 0;
    virtual int countThreads() const = 0; ///< Threads that are capturing now.

    virtual PortTraffic getPortsBandwidth() = 0;      ///< By local port.
    virtual PortTraffic getPortsBandwidthTCP() = 0;   ///< By remote port.
    virtual PortTraffic getPortsBandwidthUDP() = 0;   ///< By remote port.
    virtual PortTraffic getPortsBandwidthOther() = 0; ///< By remote port.
    virtual AddressTraffic getIpBandwidth() = 0;
    virtual QList<InterfaceBandwidth> getInterfacesBandwidth() = 0;

    /// From the kernel's own counters, which cannot tell what went to the internet: `internet` is
    /// the whole.
    virtual QList<InterfaceBandwidth> getInterfacesCounters() = 0;
};
