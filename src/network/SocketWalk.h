// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/ProcDirectory.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <cstdint>
#include <optional>

/// One walk over the running processes for those that hold given sockets open. Where sockets were
/// found before is looked at first, and after that all of those processes, since a program that has
/// sockets opens the next one too; mostly no other need be looked into. Standard input, output and
/// error come last of all, as they are sockets only where a service manager made them so. Thread:
/// any one at a time.
class SocketWalk final
{
public:
    using Sockets = QHash<std::uint64_t, unsigned short>; ///< From inode to local port.
    using Owners = QHash<unsigned short, QString>;        ///< From local port to executable path.

    /// A descriptor that was seen to be a socket. Plain value.
    struct Holder
    {
        int process = 0;
        int descriptor = 0;
    };

    using Holders = QHash<std::uint64_t, Holder>; ///< From inode; may be out of date.

    /// `proc` is where the kernel shows its processes. `holders` is read, and kept up to date for
    /// the next walk.
    SocketWalk(QString proc, const Sockets& sockets, Holders& holders);

    /// The owner of every port that has one, from the first process found to hold one of its
    /// sockets. Processes that end meanwhile and those that may not be looked into own nothing.
    Owners run();

private:
    using Ports = QSet<unsigned short>;

    QSet<int> askHolders();
    void lookInto(int process);
    void lookAtStandardStreams(int process);
    void take(const Holder& holder, std::optional<std::uint64_t> inode);
    bool attribute(int process, unsigned short port);
    QString executable(int process);
    void forgetOldHolders();

    QString m_proc;
    const Sockets& m_sockets;
    Holders& m_holders;
    ProcDirectory m_processes;
    Ports m_wanted; ///< Still without an owner.
    Owners m_owners;
    QHash<int, QString> m_executables; ///< Of the processes that hold wanted sockets.
};
