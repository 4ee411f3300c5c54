// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// One network interface of this machine. Plain value.
struct Interface
{
    QString mac_address; ///< Upper case, "AA:BB:CC:DD:EE:FF"; empty where the interface has none.
    QString description; ///< What to show for it; the name where nothing better is known.
    bool wifi = false;
    QStringList ip_list; ///< Addresses as text, without scope or prefix length.
    int index = 0;       ///< The kernel's interface index, 1 or more.
    QString name;        ///< The kernel's name, such as "eth0".
};
