// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/IpAddress.h"

namespace Utils {

/// True when an IPv4 remote end belongs to the local network: 10.0.0.0/8, 169.254.0.0/16,
/// 172.16.0.0/12, 192.168.0.0/16 (RFC 1918, RFC 3927) or 127.0.0.0/8. The proxy at `setLocalProxy`
/// does not: what passes it goes on to the internet. `ipnum` is in the host's byte order. Any
/// thread.
bool GeoIP_is_private_ipnum_v4(unsigned long ipnum, unsigned int port);

/// The proxy in use, an IPv4 address in the host's byte order and a port; both 0 for none. Any
/// thread.
void setLocalProxy(unsigned long ipnum, unsigned int port);

} // namespace Utils

/// True where the other end of traffic is this machine's own neighbourhood and no country: private,
/// link-local, loopback, multicast and broadcast addresses of both families (RFC 1918, RFC 3927,
/// RFC 4193, RFC 4291, RFC 5771). An IPv4 address mapped into IPv6 is judged as itself. Not local
/// are 100.64.0.0/10, which is the provider's network and not the user's (RFC 6598), and 0.0.0.0,
/// under which `TrafficCounters` files what it cannot tell apart. Any thread.
bool isLocalOrMulticast(const IpAddress& address);
