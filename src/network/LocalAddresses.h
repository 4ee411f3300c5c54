// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/IpAddress.h"

#include <QSet>

/// Every address of every interface of this machine, IPv4 and IPv6, as of now. Any thread.
QSet<IpAddress> localAddresses();
