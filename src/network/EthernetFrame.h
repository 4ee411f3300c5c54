// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

/// An IP packet as far as it was captured. View of the frame's bytes.
struct IpPacket
{
    unsigned char version = 4; ///< 4 or 6.
    std::span<const std::uint8_t> captured;
};

/// The packet that an Ethernet frame (IEEE 802.3, type II) carries directly; nothing where it
/// carries something else, a VLAN tag among them, or ends before its own header does.
std::optional<IpPacket> ipPacketIn(std::span<const std::uint8_t> frame);
