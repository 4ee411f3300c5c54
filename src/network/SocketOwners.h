// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// The executables that own sockets bound to local ports, found as "/proc" tells: from a port to
/// its sockets' inodes, from an inode to the process that holds it open, from the process to its
/// executable. Sockets of user ids below 501 are never attributed. Thread: main.
class SocketOwners final
{
public:
    /// `root` is where "proc" lies.
    explicit SocketOwners(QString root);

    /// From local port to executable path; ports whose owner cannot be told are absent. Walks no
    /// process where no port is wanted or none has a socket.
    QHash<unsigned short, QString> find(const QSet<unsigned short>& ports) const;

private:
    QString m_root;
};
