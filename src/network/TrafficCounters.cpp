// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/TrafficCounters.h"

#include <utility>

void TrafficCounters::add(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort)
{
    const auto direction = upload ? &NetworkTraffic::upload : &NetworkTraffic::download;
    const std::scoped_lock lock(m_mutex);
    trafficWith(remote).*direction += bytes;
    InterfaceTraffic& crossed = m_interfaces.filling[interfaceIndex];
    crossed.total.*direction += bytes;
    crossed.internet.*direction += internetBytes;
    m_ports.filling[localPort].*direction += bytes;
    remotePorts(type).filling[remotePort].*direction += bytes;
}

PortTraffic TrafficCounters::takePorts()
{
    return take(m_ports);
}

PortTraffic TrafficCounters::takePortsTcp()
{
    return take(m_portsTcp);
}

PortTraffic TrafficCounters::takePortsUdp()
{
    return take(m_portsUdp);
}

PortTraffic TrafficCounters::takePortsOther()
{
    return take(m_portsOther);
}

AddressTraffic TrafficCounters::takeAddresses()
{
    return take(m_addresses);
}

QHash<int, InterfaceTraffic> TrafficCounters::takeInterfaces()
{
    return take(m_interfaces);
}

template <typename Key, typename Value>
QHash<Key, Value> TrafficCounters::take(Accumulator<Key, Value>& accumulator)
{
    {
        const std::scoped_lock lock(m_mutex);
        std::swap(accumulator.filling, accumulator.spare);
    }
    QHash<Key, Value> result = accumulator.spare.toHash();
    accumulator.spare.clear();
    return result;
}

NetworkTraffic& TrafficCounters::trafficWith(const IpAddress& remote)
{
    TrafficTable<IpAddress, NetworkTraffic>& addresses = m_addresses.filling;
    if (addresses.size() < AddressLimit || addresses.contains(remote)) {
        return addresses[remote];
    }
    return addresses[IpAddress()];
}

TrafficCounters::Ports& TrafficCounters::remotePorts(Utils::TrafficType type)
{
    switch (type) {
    case Utils::TrafficType::Tcp:
        return m_portsTcp;
    case Utils::TrafficType::Udp:
        return m_portsUdp;
    default:
        return m_portsOther;
    }
}
