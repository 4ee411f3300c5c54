// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <netdb.h>
#include <sched.h>
#include <sys/socket.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

/// Two network namespaces with nothing in them: one that the calling thread moves into, with the
/// threads and programs that it starts from now on, and a neighbour's. Both are gone with this
/// object, and the thread is back where it was.
class NetworkPair
{
public:
    NetworkPair()
        : m_before(openNamespace())
    {
        std::thread([this] {
            m_isMade = unshare(CLONE_NEWNET) == 0;
            m_neighbour = openNamespace();
        }).join();
        if (m_isMade) {
            unshare(CLONE_NEWNET);
        }
    }

    ~NetworkPair()
    {
        if (m_isMade) {
            enter(m_before);
        }
    }

    NetworkPair(const NetworkPair&) = delete;
    NetworkPair& operator=(const NetworkPair&) = delete;

    /// False where this process may not make a namespace.
    bool isMade() const { return m_isMade; }

    /// Calls the function in the neighbour's namespace, where a socket made in it stays.
    void inNeighbour(const std::function<void()>& function) const
    {
        std::thread([this, &function] {
            enter(m_neighbour);
            function();
        }).join();
    }

    /// Makes an interface of this name here and in the neighbour's namespace, joined by a wire.
    /// Each prefix becomes two addresses, ending in "1" here and in "2" there. `index` is the
    /// interface's index here.
    bool connect(const QString& name, const QStringList& prefixes, int index) const
    {
        const QString there = QStringLiteral("/proc/%1/fd/%2").arg(getpid()).arg(m_neighbour.get());
        bool done = ip(QStringLiteral("link add %1 index %2 address %3 type veth "
                                      "peer name %1 address %4 netns %5")
                           .arg(name, QString::number(index), mac(1), mac(2), there)) &&
                    setUp(name, prefixes, 1);
        inNeighbour([&] { done = done && setUp(name, prefixes, 2) && isSending(name); });
        return done && isSending(name);
    }

    static bool disconnect(const QString& name)
    {
        return ip(QStringLiteral("link delete %1").arg(name));
    }

    /// The hardware address of every interface here (end 1) and there (end 2).
    static QString mac(int end) { return QStringLiteral("02:00:00:00:0A:0%1").arg(end); }

    /// Runs ip(8) in the namespace of the calling thread.
    static bool ip(const QString& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QStringLiteral("ip"), arguments.split(QLatin1Char(' ')));
        return process.waitForFinished() && process.exitCode() == 0;
    }

private:
    static FileDescriptor openNamespace()
    {
        return FileDescriptor(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
    }

    static void enter(const FileDescriptor& where) { setns(where.get(), CLONE_NEWNET); }

    /// Both ends know each other's hardware address from the start, so that no packet waits for it.
    static bool setUp(const QString& name, const QStringList& prefixes, int end)
    {
        // Without an address of the kernel's own, it sends nothing of its own.
        bool done = ip(QStringLiteral("link set %1 addrgenmode none up").arg(name));
        for (const QString& prefix : prefixes) {
            const bool isIpv6 = prefix.contains(QLatin1Char(':'));
            const int other = 3 - end;
            done = done &&
                   ip(QStringLiteral("address add %1%2/%3 dev %4%5")
                          .arg(prefix, QString::number(end), QString::number(isIpv6 ? 64 : 24),
                               name, isIpv6 ? QStringLiteral(" nodad") : QString())) &&
                   ip(QStringLiteral("neighbour add %1%2 lladdr %3 dev %4")
                          .arg(prefix, QString::number(other), mac(other), name));
        }
        return done;
    }

    /// Waits until the kernel has noticed, in its own time, that the other end is up. Until then it
    /// drops what is sent and reports no error.
    static bool isSending(const QString& name)
    {
        constexpr int attempts = 1000;
        for (int i = 0; i < attempts; ++i) {
            QProcess process;
            process.start(QStringLiteral("ip"),
                          {QStringLiteral("link"), QStringLiteral("show"), name});
            if (process.waitForFinished() && process.readAll().contains("qdisc noqueue state UP")) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }

    FileDescriptor m_before;
    FileDescriptor m_neighbour;
    bool m_isMade = false;
};

/// One end of UDP packets.
class UdpSocket
{
public:
    /// In the namespace of the calling thread.
    UdpSocket(const QString& address, int port)
    {
        const Target here(address, port);
        m_socket = FileDescriptor(socket(here.found->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        m_isBound = bind(m_socket.get(), here.found->ai_addr, here.found->ai_addrlen) == 0;
    }

    bool isBound() const { return m_isBound; }

    /// Sends this many packets with `size` bytes after the UDP header; from any thread.
    bool send(const QString& address, int port, int count, int size) const
    {
        const Target there(address, port);
        const std::string payload(static_cast<std::size_t>(size), 'x');
        for (int i = 0; i < count; ++i) {
            if (sendto(m_socket.get(), payload.data(), payload.size(), 0, there.found->ai_addr,
                       there.found->ai_addrlen) != size) {
                return false;
            }
        }
        return true;
    }

private:
    struct Target
    {
        Target(const QString& address, int port)
        {
            addrinfo hints = {};
            hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
            if (getaddrinfo(address.toLatin1().constData(), QByteArray::number(port).constData(),
                            &hints, &found) != 0) {
                qFatal("No address: %s", qPrintable(address));
            }
        }

        ~Target() { freeaddrinfo(found); }

        Target(const Target&) = delete;
        Target& operator=(const Target&) = delete;

        addrinfo* found = nullptr;
    };

    FileDescriptor m_socket;
    bool m_isBound = false;
};
