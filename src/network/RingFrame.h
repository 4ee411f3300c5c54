// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/NetworkPacketHandler.h"

#include <cstdint>
#include <optional>
#include <span>

/// What one frame of a packet ring tells of the IP packet in it. Plain value; `captured` lies
/// within the frame.
struct RingFrame
{
    /// Where the ring's frames keep their network header, from the frame's first byte.
    static constexpr std::size_t NetworkOffset = 80;

    unsigned char version = 0;              ///< The first four bits of the network header.
    std::span<const std::uint8_t> captured; ///< From the network header on, as far as kept.
    unsigned short length = 0;              ///< On the wire, the link-layer header included.
    NetworkPacketHandler::Direction direction = NetworkPacketHandler::Direction::Unknown;
    int interfaceIndex = 0;

    /// Reads a frame as the kernel fills it (`struct tpacket_hdr` of linux/if_packet.h, the
    /// sender's `struct sockaddr_ll` and the bytes on the wire), all of it checked against the
    /// frame's size. Nothing for a frame of another hardware than Ethernet, and where no byte at
    /// `NetworkOffset` was captured.
    static std::optional<RingFrame> decode(std::span<const std::uint8_t> frame);
};
