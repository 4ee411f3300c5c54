// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"
#include "network/IpAddress.h"

/// Is told of each packet that counts. Thread: the one that captured it.
class NetworkPacketHandlerListener
{
public:
    NetworkPacketHandlerListener() = default;
    NetworkPacketHandlerListener(const NetworkPacketHandlerListener&) = delete;
    NetworkPacketHandlerListener& operator=(const NetworkPacketHandlerListener&) = delete;
    virtual ~NetworkPacketHandlerListener() = default;

    /// `upload`: sent by this machine. `bytes` is the packet's length on the wire; `internetBytes`
    /// is the same, or 0 where the remote end lies in a local network. `interfaceIndex` is the
    /// kernel's. Must not allocate in the steady state.
    virtual void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                                  unsigned int bytes, unsigned int internetBytes,
                                  int interfaceIndex, Utils::TrafficType type,
                                  unsigned short remotePort) = 0;
};
