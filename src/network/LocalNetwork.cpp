// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/LocalNetwork.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <atomic>
#include <span>

namespace {

/// The addresses that equal `network` in their first `prefixLength` bits.
struct Network
{
    std::uint32_t network;
    int prefixLength;

    constexpr bool contains(std::uint32_t address) const
    {
        return (address ^ network) >> (32 - prefixLength) == 0;
    }
};

constexpr std::array<Network, 5> PrivateNetworks{{
    {0x0A00'0000, 8},  // 10.0.0.0
    {0xA9FE'0000, 16}, // 169.254.0.0
    {0xAC10'0000, 12}, // 172.16.0.0
    {0xC0A8'0000, 16}, // 192.168.0.0
    {0x7F00'0000, 8},  // 127.0.0.0
}};

constexpr Network Ipv4Multicast{0xE000'0000, 4};
constexpr std::uint32_t Ipv4Broadcast = 0xFFFF'FFFF;

/// The address in the upper half and the port in the lower one, so that no reader ever sees the one
/// of an old proxy beside the other of a new one.
std::atomic<std::uint64_t> localProxy = 0;

constexpr std::uint64_t endpoint(unsigned long ipnum, unsigned int port)
{
    return std::uint64_t{ipnum} << 32 | port;
}

bool isPrivate(std::uint32_t address)
{
    return std::any_of(PrivateNetworks.begin(), PrivateNetworks.end(),
                       [address](const Network& network) { return network.contains(address); });
}

bool isLocalOrMulticastIpv4(std::uint32_t address)
{
    return isPrivate(address) || Ipv4Multicast.contains(address) || address == Ipv4Broadcast;
}

bool isLocalOrMulticastIpv6(std::span<const std::uint8_t, 16> bytes)
{
    const bool linkLocal = bytes[0] == 0xFE && (bytes[1] & 0xC0) == 0x80; // fe80::/10
    const bool uniqueLocal = (bytes[0] & 0xFE) == 0xFC;                   // fc00::/7
    const bool multicast = bytes[0] == 0xFF;                              // ff00::/8
    if (linkLocal || uniqueLocal || multicast) {
        return true;
    }
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    if (!std::all_of(bytes.begin(), bytes.begin() + 10, isZero)) {
        return false;
    }
    if (bytes[10] == 0xFF && bytes[11] == 0xFF) { // ::ffff:0:0/96, an IPv4 address in IPv6 clothes
        return isLocalOrMulticastIpv4(qFromBigEndian<std::uint32_t>(&bytes[12]));
    }
    const bool loopbackOrUnspecified = bytes[15] <= 1; // ::1 and ::
    return loopbackOrUnspecified && std::all_of(bytes.begin() + 10, bytes.end() - 1, isZero);
}

} // namespace

bool Utils::GeoIP_is_private_ipnum_v4(unsigned long ipnum, unsigned int port)
{
    if (endpoint(ipnum, port) == localProxy.load(std::memory_order_relaxed)) {
        return false;
    }
    return isPrivate(static_cast<std::uint32_t>(ipnum));
}

void Utils::setLocalProxy(unsigned long ipnum, unsigned int port)
{
    localProxy.store(endpoint(ipnum, port), std::memory_order_relaxed);
}

bool isLocalOrMulticast(const IpAddress& address)
{
    return address.isIpv4() ? isLocalOrMulticastIpv4(address.ipv4())
                            : isLocalOrMulticastIpv6(address.bytes);
}
