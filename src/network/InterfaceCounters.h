// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>

/// What the kernel has counted on one network interface since it exists. Plain value.
struct InterfaceCounters
{
    QString name;
    quint64 received = 0;    ///< Bytes.
    quint64 transmitted = 0; ///< Bytes.
};

/// The interfaces in the text of "/proc/net/dev" (proc(5)), in its order. Left out are those whose
/// name begins with "lo" or "pan", and lines that are not as the kernel writes them.
QList<InterfaceCounters> interfaceCounters(QByteArrayView procNetDev);
