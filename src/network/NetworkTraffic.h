// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// Bytes that crossed one port, address or interface since the last take. Plain value.
struct NetworkTraffic
{
    quint64 download = 0; ///< Bytes towards this machine, as captured on the wire.
    quint64 upload = 0;   ///< Bytes from this machine.

    NetworkTraffic& operator+=(const NetworkTraffic& other)
    {
        download += other.download;
        upload += other.upload;
        return *this;
    }
};
