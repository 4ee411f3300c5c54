// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/RingFrame.h"

#include <linux/if_arp.h>
#include <linux/if_packet.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t align(std::size_t size)
{
    return (size + TPACKET_ALIGNMENT - 1) / TPACKET_ALIGNMENT * TPACKET_ALIGNMENT;
}

constexpr std::size_t AddressOffset = align(sizeof(tpacket_hdr));
constexpr std::size_t HeaderSize = AddressOffset + sizeof(sockaddr_ll);
constexpr std::size_t LeastLinkHeader = 16; ///< The room that the kernel leaves for it.

static_assert(RingFrame::NetworkOffset == align(HeaderSize + LeastLinkHeader));

template <typename Value>
Value read(std::span<const std::uint8_t> frame, std::size_t offset)
{
    Value value = {};
    std::memcpy(&value, frame.data() + offset, sizeof value);
    return value;
}

/// Where the captured bytes end within the frame; 0 for offsets that no kernel writes.
std::size_t capturedEnd(const tpacket_hdr& header, std::size_t frameSize)
{
    if (header.tp_mac < HeaderSize || header.tp_mac > frameSize) {
        return 0;
    }
    return header.tp_mac + std::min<std::size_t>(header.tp_snaplen, frameSize - header.tp_mac);
}

} // namespace

// The kernel rounds the network header up to a multiple of 16, at least 16 bytes behind the
// address: to offset 80 for every link-layer header of up to 28 bytes, which is each of Ethernet's,
// tagged or not. Should a frame ever have it elsewhere (`tp_net`), what lies at 80 belongs to
// another header, whose bytes would count as addresses and ports: such a frame does not count.
std::optional<RingFrame> RingFrame::decode(std::span<const std::uint8_t> frame)
{
    if (frame.size() <= NetworkOffset) {
        return std::nullopt;
    }
    const auto header = read<tpacket_hdr>(frame, 0);
    const auto address = read<sockaddr_ll>(frame, AddressOffset);
    const std::size_t end = capturedEnd(header, frame.size());
    if (address.sll_hatype != ARPHRD_ETHER || header.tp_net != NetworkOffset ||
        end <= NetworkOffset) {
        return std::nullopt;
    }
    RingFrame result;
    result.captured = frame.subspan(NetworkOffset, end - NetworkOffset);
    result.version = static_cast<unsigned char>(result.captured.front() >> 4U);
    result.length = static_cast<unsigned short>(header.tp_len);
    result.direction = address.sll_pkttype == PACKET_OUTGOING
                           ? NetworkPacketHandler::Direction::Outgoing
                           : NetworkPacketHandler::Direction::Incoming;
    result.interfaceIndex = address.sll_ifindex;
    return result;
}
