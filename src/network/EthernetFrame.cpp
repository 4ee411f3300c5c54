// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/EthernetFrame.h"

#include <linux/if_ether.h>

std::optional<IpPacket> ipPacketIn(std::span<const std::uint8_t> frame)
{
    if (frame.size() < ETH_HLEN) {
        return {};
    }
    const std::span<const std::uint8_t> packet = frame.subspan(ETH_HLEN);
    switch (frame[12] << 8 | frame[13]) {
    case ETH_P_IP:
        return IpPacket{4, packet};
    case ETH_P_IPV6:
        return IpPacket{6, packet};
    default:
        return {};
    }
}
