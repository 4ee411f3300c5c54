// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/IpAddress.h"

#include <QSet>

#include <cstdint>
#include <span>

class NetworkPacketHandlerListener;

/// Turns one captured IP packet into at most one accounting event: which end is this machine, which
/// way the packet goes, its ports and transport, and whether it left the local network.
namespace NetworkPacketHandler {

enum class Direction
{
    Unknown = 0, ///< Decided by the local addresses.
    Outgoing = 1,
    Incoming = 2,
};

/// Tells `listener` of the packet, once, or of nothing where it does not count: another IP version
/// than 4 and 6, another protocol than TCP and UDP, two foreign ends, or fewer captured bytes than
/// its headers need.
///
/// The ports are read at a fixed offset, behind the shortest header of each version. A fragment is
/// no exception: its bytes count for its addresses, and the first four of its data pass for the
/// ports.
///
/// `version` is 4 or 6. `captured` begins at the IP header and may end before the packet does;
/// `length` is what counts, the packet's size on the wire in bytes. Allocates nothing and keeps
/// nothing between calls. Any thread.
void handle(unsigned char version, std::span<const std::uint8_t> captured, unsigned short length,
            Direction direction, const QSet<IpAddress>& localAddresses,
            NetworkPacketHandlerListener& listener, int interfaceIndex);

} // namespace NetworkPacketHandler
