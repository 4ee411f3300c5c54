// SPDX-License-Identifier: GPL-3.0-or-later
// A packet of any version, length and content, after a direction and a local address.
#include "network/LocalNetwork.h"
#include "network/NetworkPacketHandler.h"
#include "network/NetworkPacketHandlerListener.h"
#include "network/TrafficCounters.h"

#include <cstdlib>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr int InterfaceIndex = 300;
constexpr unsigned short Length = 1500;

/// Ends the program unless there was one event at most, of a packet that can carry one.
class StrictListener final : public NetworkPacketHandlerListener
{
public:
    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override
    {
        const bool knownType = type == Utils::TrafficType::Tcp || type == Utils::TrafficType::Udp;
        const bool soundBytes = bytes == Length && (internetBytes == 0 || internetBytes == Length);
        if (m_told || !knownType || !soundBytes || interfaceIndex != InterfaceIndex) {
            std::abort();
        }
        m_told = true;
        isLocalOrMulticast(remote);
        TrafficCounters counters;
        counters.add(upload, remote, localPort, bytes, internetBytes, interfaceIndex, type,
                     remotePort);
        if (counters.takeAddresses().count(remote) != 1) {
            std::abort();
        }
    }

private:
    bool m_told = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t headSize = 3;
    if (size < headSize) {
        return 0;
    }
    const QSet<IpAddress> localAddresses = {IpAddress::fromIpv4(0x0A00'0000U | data[2])};
    StrictListener listener;
    const auto direction = static_cast<NetworkPacketHandler::Direction>(data[1] % 4);
    NetworkPacketHandler::handle(data[0], Bytes(data, size).subspan(headSize), Length, direction,
                                 localAddresses, listener, InterfaceIndex);
    return 0;
}
