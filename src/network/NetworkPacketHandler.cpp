// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkPacketHandler.h"

#include "network/LocalNetwork.h"
#include "network/NetworkPacketHandlerListener.h"

#include <QtEndian>

#include <optional>

namespace {

using Bytes = std::span<const std::uint8_t>;

/// The transport header is looked for behind the shortest IP header there is, whatever the packet
/// says of options or extension headers.
constexpr std::size_t Ipv4HeaderSize = 20;
constexpr std::size_t Ipv6HeaderSize = 40;
constexpr std::size_t PortsSize = 4; ///< With which the headers of TCP and of UDP begin.

constexpr std::uint32_t IgnoredDestination = 0x0EFF'FFFF; ///< 14.255.255.255
constexpr std::uint8_t Ipv6LocalFirstByte = 0xE0;

/// What one packet says of itself.
struct Packet
{
    IpAddress source;
    IpAddress destination;
    unsigned short sourcePort;
    unsigned short destinationPort;
    Utils::TrafficType type;
};

template <typename Number>
Number numberAt(Bytes bytes, std::size_t offset)
{
    return qFromBigEndian<Number>(&bytes[offset]);
}

/// The numbers are those of IANA's "Assigned Internet Protocol Numbers".
std::optional<Utils::TrafficType> typeOfProtocol(std::uint8_t protocol)
{
    switch (protocol) {
    case 6:
        return Utils::TrafficType::Tcp;
    case 17:
        return Utils::TrafficType::Udp;
    default:
        return {};
    }
}

/// RFC 791, section 3.1.
std::optional<Packet> decodeIpv4(Bytes captured)
{
    if (captured.size() < Ipv4HeaderSize + PortsSize) {
        return {};
    }
    const auto type = typeOfProtocol(captured[9]);
    const auto destination = numberAt<std::uint32_t>(captured, 16);
    if (!type || destination == IgnoredDestination) {
        return {};
    }
    return Packet{IpAddress::fromIpv4(numberAt<std::uint32_t>(captured, 12)),
                  IpAddress::fromIpv4(destination),
                  numberAt<unsigned short>(captured, Ipv4HeaderSize),
                  numberAt<unsigned short>(captured, Ipv4HeaderSize + 2), *type};
}

/// RFC 8200, section 3.
std::optional<Packet> decodeIpv6(Bytes captured)
{
    if (captured.size() < Ipv6HeaderSize + PortsSize) {
        return {};
    }
    const auto type = typeOfProtocol(captured[6]);
    if (!type) {
        return {};
    }
    return Packet{IpAddress::fromIpv6(&captured[8]), IpAddress::fromIpv6(&captured[24]),
                  numberAt<unsigned short>(captured, Ipv6HeaderSize),
                  numberAt<unsigned short>(captured, Ipv6HeaderSize + 2), *type};
}

std::optional<Packet> decode(unsigned char version, Bytes captured)
{
    switch (version) {
    case 4:
        return decodeIpv4(captured);
    case 6:
        return decodeIpv6(captured);
    default:
        return {};
    }
}

bool staysLocal(const IpAddress& remote, unsigned short remotePort)
{
    return remote.isIpv4() ? Utils::GeoIP_is_private_ipnum_v4(remote.ipv4(), remotePort)
                           : remote.bytes.front() == Ipv6LocalFirstByte;
}

} // namespace

void NetworkPacketHandler::handle(unsigned char version, Bytes captured, unsigned short length,
                                  Direction direction, const QSet<IpAddress>& localAddresses,
                                  NetworkPacketHandlerListener& listener, int interfaceIndex)
{
    const std::optional<Packet> packet = decode(version, captured);
    if (!packet) {
        return;
    }
    bool upload = direction == Direction::Outgoing;
    if (direction == Direction::Unknown) {
        upload = localAddresses.contains(packet->source);
        if (!upload && !localAddresses.contains(packet->destination)) {
            return;
        }
    }
    const IpAddress& remote = upload ? packet->destination : packet->source;
    const unsigned short remotePort = upload ? packet->destinationPort : packet->sourcePort;
    const unsigned short localPort = upload ? packet->sourcePort : packet->destinationPort;
    const unsigned int internetBytes = staysLocal(remote, remotePort) ? 0U : length;
    listener.incrementTraffic(upload, remote, localPort, length, internetBytes, interfaceIndex,
                              packet->type, remotePort);
}
