// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"
#include "network/CountingTable.h"
#include "network/IpAddress.h"
#include "network/NetworkTraffic.h"

#include <QHash>

#include <mutex>

using PortTraffic = QHash<unsigned short, NetworkTraffic>;
using AddressTraffic = QHash<IpAddress, NetworkTraffic>;

/// The bytes that crossed one interface since the last take. Plain value.
struct InterfaceTraffic
{
    NetworkTraffic total;
    NetworkTraffic internet;
};

/// What one capture thread accumulates. The capture thread adds, the main thread takes: each take
/// swaps one table for the emptied one that the take before it left, so that the lock is held for a
/// few instructions and adding allocates nothing once the traffic is steady.
///
/// A flood of invented addresses does not fill the memory: beyond `AddressLimit` addresses between
/// two takes, further ones are counted together under the default `IpAddress`.
class TrafficCounters final
{
public:
    static constexpr qsizetype AddressLimit = 262'144;

    /// The lock that `add` takes by itself; held over a batch of packets it is taken only once.
    std::recursive_mutex& mutex() { return m_mutex; }

    void add(bool upload, const IpAddress& remote, unsigned short localPort, unsigned int bytes,
             unsigned int internetBytes, int interfaceIndex, Utils::TrafficType type,
             unsigned short remotePort);

    PortTraffic takePorts();      ///< By local port.
    PortTraffic takePortsTcp();   ///< By remote port.
    PortTraffic takePortsUdp();   ///< By remote port.
    PortTraffic takePortsOther(); ///< By remote port.
    AddressTraffic takeAddresses();
    QHash<int, InterfaceTraffic> takeInterfaces(); ///< By the kernel's interface index.

private:
    template <typename Key, typename Value>
    struct Accumulator
    {
        CountingTable<Key, Value> filling; ///< Guarded by the mutex.
        CountingTable<Key, Value> spare;   ///< Empty between two takes. Thread: main.
    };

    using Ports = Accumulator<unsigned short, NetworkTraffic>;

    template <typename Key, typename Value>
    QHash<Key, Value> take(Accumulator<Key, Value>& accumulator);

    NetworkTraffic& trafficWith(const IpAddress& remote);
    Ports& remotePorts(Utils::TrafficType type);

    std::recursive_mutex m_mutex;
    Ports m_ports;
    Ports m_portsTcp;
    Ports m_portsUdp;
    Ports m_portsOther;
    Accumulator<IpAddress, NetworkTraffic> m_addresses;
    Accumulator<int, InterfaceTraffic> m_interfaces;
};
