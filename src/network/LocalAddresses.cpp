// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/LocalAddresses.h"

#include <QHostAddress>
#include <QNetworkInterface>

QSet<IpAddress> localAddresses()
{
    QSet<IpAddress> result;
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol) {
            result.insert(IpAddress::fromIpv4(address.toIPv4Address()));
        } else {
            const Q_IPV6ADDR ipv6 = address.toIPv6Address();
            result.insert(IpAddress::fromIpv6(ipv6.c));
        }
    }
    return result;
}
