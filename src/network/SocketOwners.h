// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/SocketWalk.h"

#include <QHash>
#include <QLatin1String>
#include <QSet>
#include <QString>

#include <array>

/// The executables that own sockets bound to local ports, found as "/proc" tells: from a port to
/// its sockets' inodes, from an inode to the process that holds it open, from the process to its
/// executable. Sockets of user ids below 501 are never attributed.
///
/// Several programs may use one port number, by TCP and UDP, by another local address or by
/// SO_REUSEPORT: it goes to the first process found that holds one of its sockets. Thread: main.
class SocketOwners final
{
public:
    /// `root` is where "proc" lies.
    explicit SocketOwners(const QString& root);

    /// From local port to executable path; ports whose owner cannot be told are absent. The tables
    /// of IPv6 are read only for ports without an owner in those of IPv4. Walks no process where no
    /// port is wanted or none has a socket, and none beyond the last socket wanted.
    QHash<unsigned short, QString> find(const QSet<unsigned short>& ports);

private:
    using Tables = std::array<QLatin1String, 2>; ///< Names below "/proc/net".
    using Ports = QSet<unsigned short>;
    using Sockets = SocketWalk::Sockets;

    Sockets sockets(const Tables& tables, const Ports& ports) const;
    void readTable(QLatin1String table, const Ports& ports, Sockets& sockets) const;
    QHash<unsigned short, QString> owners(const Sockets& sockets);

    QString m_proc;
    SocketWalk::Holders m_holders; ///< Where the sockets of earlier questions were found.
};
