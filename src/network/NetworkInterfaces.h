// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/Interface.h"

#include <QList>
#include <QString>

/// The network interfaces that exist now, the loopback interface left out, in the kernel's order.
///
/// `sysClassNet` is the directory with one entry per interface ("/sys/class/net"), which tells the
/// wireless ones by their "wireless" or "phy80211" entry. Any thread.
QList<Interface> networkInterfaces(const QString& sysClassNet);
