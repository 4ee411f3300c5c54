// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/SocketOwners.h"

#include "network/ProcLines.h"
#include "network/SocketTable.h"

#include <QDir>

#include <limits>

SocketOwners::SocketOwners(const QString& root)
    : m_proc(QDir(root).filePath(QStringLiteral("proc")))
{
}

QHash<unsigned short, QString> SocketOwners::find(const QSet<unsigned short>& ports)
{
    constexpr Tables ipv4{QLatin1String("tcp"), QLatin1String("udp")};
    constexpr Tables ipv6{QLatin1String("tcp6"), QLatin1String("udp6")};
    if (ports.isEmpty()) {
        return {};
    }
    Sockets wanted = sockets(ipv4, ports);
    // Ports without any socket so far can have no owner yet: one walk then serves both families.
    const Ports held(wanted.cbegin(), wanted.cend());
    if (held.size() < ports.size()) {
        wanted.insert(sockets(ipv6, ports - held));
    }
    QHash<unsigned short, QString> found = owners(wanted);
    Ports rest = held;
    rest.removeIf([&](unsigned short port) { return found.contains(port); });
    if (!rest.isEmpty()) {
        found.insert(owners(sockets(ipv6, rest)));
    }
    return found;
}

SocketOwners::Sockets SocketOwners::sockets(const Tables& tables, const Ports& ports) const
{
    Sockets sockets;
    for (const QLatin1String table : tables) {
        readTable(table, ports, sockets);
    }
    return sockets;
}

void SocketOwners::readTable(QLatin1String table, const Ports& ports, Sockets& sockets) const
{
    constexpr unsigned int largestPort = std::numeric_limits<unsigned short>::max();
    // A kernel without IPv6 has no such table.
    ProcLines lines(m_proc + QLatin1String("/net/") + table);
    lines.next(); // the headings
    while (const auto line = lines.next()) {
        const auto socket = SocketTable::parse(*line);
        if (socket && SocketTable::isAttributed(*socket) && socket->localPort <= largestPort &&
            ports.contains(static_cast<unsigned short>(socket->localPort))) {
            sockets.insert(socket->inode, static_cast<unsigned short>(socket->localPort));
        }
    }
}

QHash<unsigned short, QString> SocketOwners::owners(const Sockets& sockets)
{
    return sockets.isEmpty() ? QHash<unsigned short, QString>()
                             : SocketWalk(m_proc, sockets, m_holders).run();
}
