// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/DroppedPackets.h"

#include "base/Log.h"

#include <utility>

DroppedPackets::DroppedPackets(std::chrono::milliseconds pause)
    : m_warning(pause)
{
}

void DroppedPackets::add(quint64 packets)
{
    m_unreported += packets;
    if (m_unreported > 0 && m_warning.isDue()) {
        report();
    }
}

void DroppedPackets::report()
{
    if (m_unreported > 0) {
        Log::warn("Packets dropped by the kernel: {}", std::exchange(m_unreported, 0));
    }
}
