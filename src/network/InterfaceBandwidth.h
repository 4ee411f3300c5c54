// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/Interface.h"
#include "network/NetworkTraffic.h"

/// What crossed one network interface since the last take. Plain value.
struct InterfaceBandwidth
{
    Interface interface;
    NetworkTraffic total;    ///< Everything on the wire.
    NetworkTraffic internet; ///< The part whose remote end lies outside the local networks.
};
