// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PortDescriptions.h"

QString PortDescriptions::description(int port, Utils::TrafficType type) const
{
    switch (type) {
    case Utils::TrafficType::Tcp:
        return tcp.value(port);
    case Utils::TrafficType::Udp:
        return udp.value(port);
    case Utils::TrafficType::Other:
        break;
    }
    return {};
}

bool PortDescriptions::isKnown(int port, Utils::TrafficType type) const
{
    return !description(port, type).isEmpty();
}

PortDescriptions PortDescriptions::overlaidBy(const PortDescriptions& winning) const
{
    PortDescriptions result = *this;
    result.tcp.insert(winning.tcp);
    result.udp.insert(winning.udp);
    return result;
}
