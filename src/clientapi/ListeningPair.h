// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ConnectionLimits.h"

#include <QList>
#include <QString>

class GuardedTcpServer;
class QObject;

/// A listening socket for all addresses of IPv4 and one for those of IPv6, so that each client is
/// known by the address a user would write ("127.0.0.1", not "::ffff:127.0.0.1"). Plain value.
struct ListeningPair
{
    /// Owned by the parent; one where the machine has only one family, none after a failure.
    QList<GuardedTcpServer*> servers;

    QString error; ///< Why there are none.

    /// Listens at `port` in both families, or in none. 0: at one port that is free.
    static ListeningPair open(quint16 port, const ConnectionLimits& limits, QObject* parent);

    quint16 port() const; ///< 0 after a failure.
};
