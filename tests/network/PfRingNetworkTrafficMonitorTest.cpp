// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/DroppedPackets.h"
#include "network/PfRingNetworkTrafficMonitor.h"
#include "network/PfRingThread.h"
#include "network/RingPace.h"
#include "support/LogCapture.h"
#include "support/NetworkPair.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QHostAddress>
#include <QMutexLocker>
#include <QTest>

#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr int EthernetHeader = 14;
constexpr int UdpHeader = 8;
constexpr int PayloadLength = 58;
constexpr int FrameLength = EthernetHeader + 20 + UdpHeader + PayloadLength;

constexpr unsigned short LocalPort = 5555;
constexpr unsigned short RemotePort = 7777;

constexpr int Index = 300; ///< As an unsigned char, it would be 44.
const QString Name = QStringLiteral("wire");
const QStringList Prefixes{QStringLiteral("203.0.113."), QStringLiteral("192.168.7."),
                           QStringLiteral("2001:db8::")};

IpAddress toIpAddress(const QString& text)
{
    const QHostAddress address(text);
    return address.protocol() == QAbstractSocket::IPv6Protocol
               ? IpAddress::fromIpv6(address.toIPv6Address().c)
               : IpAddress::fromIpv4(address.toIPv4Address());
}

void addTo(NetworkTraffic& sum, const NetworkTraffic& traffic)
{
    sum.download += traffic.download;
    sum.upload += traffic.upload;
}

template <typename Key>
void addTo(QHash<Key, NetworkTraffic>& sums, const QHash<Key, NetworkTraffic>& taken)
{
    for (auto it = taken.begin(); it != taken.end(); ++it) {
        addTo(sums[it.key()], it.value());
    }
}

/// Everything that was taken from a monitor.
struct Taken
{
    PortTraffic local;
    PortTraffic tcp;
    PortTraffic udp;
    PortTraffic other;
    AddressTraffic remote;
    QHash<QString, InterfaceTraffic> interfaces; ///< By name and hardware address.

    void take(NetworkTrafficMonitor& monitor)
    {
        addTo(local, monitor.getPortsBandwidth());
        addTo(tcp, monitor.getPortsBandwidthTCP());
        addTo(udp, monitor.getPortsBandwidthUDP());
        addTo(other, monitor.getPortsBandwidthOther());
        addTo(remote, monitor.getIpBandwidth());
        for (const InterfaceBandwidth& taken : monitor.getInterfacesBandwidth()) {
            InterfaceTraffic& sum =
                interfaces[taken.interface.name + QLatin1Char(' ') + taken.interface.mac_address];
            addTo(sum.total, taken.total);
            addTo(sum.internet, taken.internet);
        }
    }

    InterfaceTraffic at(const QString& name) const
    {
        return interfaces.value(name + QLatin1Char(' ') + NetworkPair::mac(1));
    }
};

QString text(const NetworkTraffic& traffic)
{
    return QStringLiteral("%1 down, %2 up").arg(traffic.download).arg(traffic.upload);
}

qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace

class PfRingNetworkTrafficMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_network.emplace();
        if (!m_network->isMade()) {
            QSKIP("needs the right to make a network namespace");
        }
        QVERIFY(m_network->connect(Name, Prefixes, Index));
        m_monitor = std::make_unique<PfRingNetworkTrafficMonitor>();
        QVERIFY(m_monitor->isSupported());
    }

    void cleanup()
    {
        m_monitor.reset();
        m_network.reset();
    }

    void countsEveryByteOnTheWire_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<int>("ipHeader");
        QTest::addColumn<bool>("isInternet");
        QTest::newRow("IPv4") << Prefixes.at(0) << 20 << true;
        QTest::newRow("IPv4 of a local network") << Prefixes.at(1) << 20 << false;
        QTest::newRow("IPv6") << Prefixes.at(2) << 40 << true;
    }

    void countsEveryByteOnTheWire()
    {
        QFETCH(const QString, prefix);
        QFETCH(const int, ipHeader);
        QFETCH(const bool, isInternet);
        m_monitor->start();
        QCOMPARE(m_monitor->countThreads(), 1);
        const QString local = prefix + QLatin1Char('1');
        const QString remote = prefix + QLatin1Char('2');
        const UdpSocket here(local, LocalPort);
        const UdpSocket there = neighbour(remote);
        QVERIFY(here.send(remote, RemotePort, 3, 1000));
        QVERIFY(there.send(local, LocalPort, 2, 40));
        QVERIFY(there.send(local, LocalPort, 4, 0));

        const quint64 header = quint64{EthernetHeader} + static_cast<quint64>(ipHeader) + UdpHeader;
        const NetworkTraffic sent{quint64{2} * 40 + 6 * header, quint64{3} * 1000 + 3 * header};
        Taken taken;
        const auto takeMore = [&] {
            taken.take(*m_monitor);
            return text(taken.at(Name).total);
        };
        QTRY_COMPARE(takeMore(), text(sent));
        QCOMPARE(text(taken.at(Name).internet), text(isInternet ? sent : NetworkTraffic()));
        QCOMPARE(text(taken.local.value(LocalPort)), text(sent));
        QCOMPARE(text(taken.udp.value(RemotePort)), text(sent));
        QCOMPARE(text(taken.remote.value(toIpAddress(remote))), text(sent));
        QCOMPARE(taken.local.size() + taken.udp.size() + taken.remote.size() +
                     taken.interfaces.size(),
                 4);
        QCOMPARE(taken.tcp.size() + taken.other.size(), 0);
    }

    void countsWhatCameBeforeTheStop()
    {
        m_monitor->start();
        send(Prefixes.first(), 1000);
        m_monitor->stop();
        QCOMPARE(m_monitor->countThreads(), 0);
        send(Prefixes.first(), 1000);
        Taken taken;
        taken.take(*m_monitor);
        QCOMPARE(text(taken.at(Name).total), text({0, 100'000}));
    }

    void keepsInterfacesApart()
    {
        const QString name = QStringLiteral("other");
        const QString prefix = QStringLiteral("198.51.100.");
        QVERIFY(m_network->connect(name, {prefix}, Index % 256));
        m_monitor->start();
        send(Prefixes.first(), 10);
        send(prefix, 20);
        m_monitor->stop();
        Taken taken;
        taken.take(*m_monitor);
        QCOMPARE(text(taken.at(Name).total), text({0, 1000}));
        QCOMPARE(text(taken.at(name).total), text({0, 2000}));
    }

    void followsAnInterfaceThatVanishesAndReturns()
    {
        m_monitor->start();
        send(Prefixes.first(), 10);
        QVERIFY(NetworkPair::disconnect(Name));
        m_monitor->updateNetworkDevices();
        Taken taken;
        const auto takeMore = [&] {
            taken.take(*m_monitor);
            return text(taken.at(Name).total);
        };
        QTRY_COMPARE(takeMore(), text({0, 1000}));
        QVERIFY(m_network->connect(Name, Prefixes, Index + 1));
        send(Prefixes.first(), 20);
        QTRY_COMPARE(takeMore(), text({0, 3000}));
        QCOMPARE(taken.interfaces.size(), 1);
    }

    void countsWhatFoundTheRingFull()
    {
        constexpr int sent = 5000;
        // Without IPv6, which announces its addresses in packets of its own.
        QVERIFY(NetworkPair::disconnect(Name));
        QVERIFY(m_network->connect(Name, Prefixes.mid(0, 1), Index));
        TrafficCounters counters;
        PfRingThread thread(counters);
        QVERIFY(thread.isOpen());
        thread.start();
        {
            const QMutexLocker noFrameIsRead(&counters.mutex());
            send(Prefixes.first(), sent);
        }
        thread.stop();
        const quint64 counted = counters.takePorts().value(LocalPort).upload / FrameLength;
        QCOMPARE(counted, PacketRing::FrameCount);
        QCOMPARE(thread.takeDropped(), sent - counted);
        QCOMPARE(thread.takeDropped(), 0U);
    }

    void reportsDroppedPacketsOnceInAWhile()
    {
        const LogCapture log;
        DroppedPackets dropped(std::chrono::hours(1));
        dropped.add(0);
        QVERIFY(!log.contains(QStringLiteral("dropped")));
        for (const quint64 packets : {5U, 3U, 0U, 4U}) {
            dropped.add(packets);
        }
        QCOMPARE(log.count(QStringLiteral("Packets dropped by the kernel: ")), 1);
        QVERIFY(log.contains(QStringLiteral("Packets dropped by the kernel: 5")));
        dropped.report();
        QVERIFY(log.contains(QStringLiteral("Packets dropped by the kernel: 7")));
    }

    /// Ends only if stopping wakes a thread to which no packet comes.
    void startsAndStopsWithoutATrace()
    {
        const LogCapture log;
        m_monitor->start();
        std::this_thread::sleep_for(3 * RingPace::LongestSleep); // Waits for a packet by now.
        m_monitor->stop();
        const qsizetype before = openDescriptors();
        constexpr int rounds = 100;
        for (int i = 0; i < rounds; ++i) {
            m_monitor->start();
            m_monitor->stop();
        }
        QCOMPARE(openDescriptors(), before);
        QCOMPARE(log.count(QStringLiteral("PF-Ring thread stopped")), rounds + 1);
    }

private:
    UdpSocket neighbour(const QString& address) const
    {
        std::optional<UdpSocket> socket;
        m_network->inNeighbour([&] { socket.emplace(address, RemotePort); });
        return std::move(*socket);
    }

    /// Sends packets to the neighbour, each a frame of `FrameLength` bytes: the ring has them, or
    /// has dropped them, when this returns.
    void send(const QString& prefix, int count) const
    {
        const UdpSocket here(prefix + QLatin1Char('1'), LocalPort);
        const UdpSocket there = neighbour(prefix + QLatin1Char('2'));
        QVERIFY(here.send(prefix + QLatin1Char('2'), RemotePort, count, PayloadLength));
    }

    std::optional<NetworkPair> m_network;
    std::unique_ptr<PfRingNetworkTrafficMonitor> m_monitor;
};

REGISTER_TEST(PfRingNetworkTrafficMonitorTest);

#include "PfRingNetworkTrafficMonitorTest.moc"
