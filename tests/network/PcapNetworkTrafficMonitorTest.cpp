// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PcapNetworkTrafficMonitor.h"
#include "support/LogCapture.h"
#include "support/NetworkPair.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QHostAddress>
#include <QTest>

#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/in.h>

#include <array>
#include <atomic>
#include <optional>
#include <utility>

class PcapNetworkTrafficMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void countsDatagramsOnTheWire_data();
    void countsDatagramsOnTheWire();
    void countsStreamsOnTheWire();
    void countsNoTaggedFrames();
    void followsInterfaces();
    void losesNothingWithAnInterface();
    void sleepsWhileNothingComes();
    void stopsAmidTraffic();

private:
    std::optional<NetworkPair> m_network;
    std::unique_ptr<PcapNetworkTrafficMonitor> m_monitor;
};

namespace {

const QString Name = QStringLiteral("wire");
const QString Internet = QStringLiteral("203.0.113.");
const QString Local = QStringLiteral("192.168.7.");
const QString Internet6 = QStringLiteral("2001:db8::");
const QString Here = QStringLiteral("1");
const QString There = QStringLiteral("2");
constexpr int Index = 300;
constexpr int HerePort = 5555;
constexpr int TherePort = 7777;

IpAddress toIpAddress(const QString& text)
{
    const QHostAddress address(text);
    return address.protocol() == QAbstractSocket::IPv6Protocol
               ? IpAddress::fromIpv6(address.toIPv6Address().c)
               : IpAddress::fromIpv4(address.toIPv4Address());
}

QString text(const NetworkTraffic& traffic)
{
    return QStringLiteral("%1 down, %2 up").arg(traffic.download).arg(traffic.upload);
}

void addTo(NetworkTraffic& sum, const NetworkTraffic& more)
{
    sum.download += more.download;
    sum.upload += more.upload;
}

template <typename Key>
void addTo(QHash<Key, NetworkTraffic>& sums, const QHash<Key, NetworkTraffic>& more)
{
    for (auto it = more.begin(); it != more.end(); ++it) {
        addTo(sums[it.key()], it.value());
    }
}

/// Everything that was taken from a monitor so far.
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
                interfaces[taken.interface.name + u' ' + taken.interface.mac_address];
            addTo(sum.total, taken.total);
            addTo(sum.internet, taken.internet);
        }
    }

    InterfaceTraffic here() const { return interfaces[Name + u' ' + NetworkPair::mac(1)]; }
};

constexpr quint64 datagramBytes(quint64 ipHeader, quint64 count, quint64 payload)
{
    constexpr quint64 ethernetHeader = 14;
    constexpr quint64 udpHeader = 8;
    return count * (ethernetHeader + ipHeader + udpHeader + payload);
}

/// Counts, on the neighbour's end of the wire, what TCP sends across: what to compare with.
class StreamReference
{
public:
    /// In the neighbour's namespace.
    StreamReference()
        : m_socket(socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, htons(ETH_P_ALL)))
    {
        constexpr int room = 16 << 20;
        setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVBUFFORCE, &room, sizeof room);
    }

    /// As seen from here: what the neighbour sent is a download.
    NetworkTraffic total()
    {
        std::array<unsigned char, 64> start{};
        for (;;) {
            sockaddr_ll from{};
            socklen_t size = sizeof from;
            const ssize_t length = recvfrom(m_socket.get(), start.data(), start.size(), MSG_TRUNC,
                                            reinterpret_cast<sockaddr*>(&from), &size);
            if (length < 0) {
                return m_total;
            }
            if (from.sll_protocol == htons(ETH_P_IP) && start[ETH_HLEN + 9] == IPPROTO_TCP) {
                (from.sll_pkttype == PACKET_OUTGOING ? m_total.download : m_total.upload) +=
                    static_cast<quint64>(length);
            }
        }
    }

private:
    FileDescriptor m_socket;
    NetworkTraffic m_total;
};

sockaddr_in ipv4(const QString& address, int port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(static_cast<quint16>(port));
    result.sin_addr.s_addr = htonl(QHostAddress(address).toIPv4Address());
    return result;
}

FileDescriptor tcpSocket(const sockaddr_in& bound)
{
    FileDescriptor result(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    constexpr int on = 1;
    setsockopt(result.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const bool isBound =
        bind(result.get(), reinterpret_cast<const sockaddr*>(&bound), sizeof bound) == 0;
    return isBound ? std::move(result) : FileDescriptor();
}

constexpr std::size_t ChunkBytes = 16'384;

/// Sends so much through one end of a connection and takes it out of the other.
bool pass(const FileDescriptor& from, const FileDescriptor& to, int chunks)
{
    std::array<char, ChunkBytes> chunk{};
    for (int i = 0; i < chunks; ++i) {
        if (send(from.get(), chunk.data(), chunk.size(), 0) != ssize_t{chunk.size()} ||
            recv(to.get(), chunk.data(), chunk.size(), MSG_WAITALL) != ssize_t{chunk.size()}) {
            return false;
        }
    }
    return true;
}

/// Opens a connection from here to the neighbour, uses it in both directions and closes it.
bool useStream(const NetworkPair& network, int chunksUp, int chunksDown)
{
    const sockaddr_in there = ipv4(Internet + There, TherePort);
    FileDescriptor listener;
    network.inNeighbour([&] {
        listener = tcpSocket(there);
        listen(listener.get(), 1);
    });
    const FileDescriptor near = tcpSocket(ipv4(Internet + Here, HerePort));
    if (connect(near.get(), reinterpret_cast<const sockaddr*>(&there), sizeof there) != 0) {
        return false;
    }
    const FileDescriptor far(accept(listener.get(), nullptr, nullptr));
    return pass(near, far, chunksUp) && pass(far, near, chunksDown);
}

/// An empty datagram from the neighbour as it crosses the wire, with this before its EtherType.
QByteArray frame(const QByteArray& tag)
{
    const QByteArray addresses = QByteArray::fromHex("020000000A01020000000A02");
    const QByteArray ipv4 = QByteArray::fromHex("0800 4500001C0000000040110000 CB007102 CB007101");
    return addresses + tag + ipv4 + QByteArray::fromHex("1E6115B300080000");
}

bool sendFrame(const QByteArray& frame)
{
    const FileDescriptor socketOnWire(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0));
    sockaddr_ll to{};
    to.sll_family = AF_PACKET;
    to.sll_ifindex = static_cast<int>(if_nametoindex(Name.toLatin1().constData()));
    return sendto(socketOnWire.get(), frame.constData(), static_cast<std::size_t>(frame.size()), 0,
                  reinterpret_cast<const sockaddr*>(&to), sizeof to) == frame.size();
}

/// How often the capture threads of this process have gone to sleep, or been taken off.
qint64 contextSwitches()
{
    qint64 sum = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (readFile(tasks.filePath(task + QStringLiteral("/comm"))).trimmed() != Name.toLatin1()) {
            continue;
        }
        const QByteArray status = readFile(tasks.filePath(task + QStringLiteral("/status")));
        for (const QByteArray& line : status.split('\n')) {
            if (line.contains("ctxt_switches:")) {
                sum += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
            }
        }
    }
    return sum;
}

} // namespace

void PcapNetworkTrafficMonitorTest::init()
{
    m_network.emplace();
    if (!m_network->isMade()) {
        QSKIP("needs the right to make a network namespace");
    }
    QVERIFY(m_network->connect(Name, {Internet, Local, Internet6}, Index));
    m_monitor = std::make_unique<PcapNetworkTrafficMonitor>();
    if (!m_monitor->isSupported()) {
        QSKIP("needs libpcap");
    }
}

void PcapNetworkTrafficMonitorTest::cleanup()
{
    m_monitor.reset();
    m_network.reset();
}

void PcapNetworkTrafficMonitorTest::countsDatagramsOnTheWire_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<quint64>("ipHeader");
    QTest::addColumn<bool>("isInternet");
    QTest::newRow("IPv4") << Internet << quint64{20} << true;
    QTest::newRow("IPv4 of a local network") << Local << quint64{20} << false;
    QTest::newRow("IPv6") << Internet6 << quint64{40} << true;
}

void PcapNetworkTrafficMonitorTest::countsDatagramsOnTheWire()
{
    QFETCH(const QString, prefix);
    QFETCH(const quint64, ipHeader);
    QFETCH(const bool, isInternet);
    m_monitor->start();
    QCOMPARE(m_monitor->countThreads(), 1);
    const UdpSocket here(prefix + Here, HerePort);
    m_network->inNeighbour([&] {
        const UdpSocket there(prefix + There, TherePort);
        QVERIFY(here.send(prefix + There, TherePort, 3, 1000));
        QVERIFY(there.send(prefix + Here, HerePort, 2, 40));
        QVERIFY(there.send(prefix + Here, HerePort, 4, 0));
    });
    const NetworkTraffic sent{datagramBytes(ipHeader, 2, 40) + datagramBytes(ipHeader, 4, 0),
                              datagramBytes(ipHeader, 3, 1000)};
    Taken taken;
    QTRY_COMPARE((taken.take(*m_monitor), text(taken.here().total)), text(sent));
    QCOMPARE(text(taken.here().internet), text(isInternet ? sent : NetworkTraffic()));
    QCOMPARE(text(taken.local.value(HerePort)), text(sent));
    QCOMPARE(text(taken.udp.value(TherePort)), text(sent));
    QCOMPARE(text(taken.remote.value(toIpAddress(prefix + There))), text(sent));
    QCOMPARE(taken.local.size() + taken.udp.size() + taken.remote.size() + taken.interfaces.size(),
             4);
    QCOMPARE(taken.tcp.size() + taken.other.size(), 0);
}

void PcapNetworkTrafficMonitorTest::countsStreamsOnTheWire()
{
    m_monitor->start();
    std::optional<StreamReference> reference;
    m_network->inNeighbour([&] { reference.emplace(); });
    QVERIFY(useStream(*m_network, 10, 20));
    Taken taken;
    QTRY_COMPARE((taken.take(*m_monitor), text(taken.tcp.value(TherePort))),
                 text(reference->total()));
    QVERIFY(reference->total().upload > 10 * ChunkBytes);
    QVERIFY(reference->total().download > 20 * ChunkBytes);
    QCOMPARE(text(taken.local.value(HerePort)), text(reference->total()));
    QCOMPARE(text(taken.remote.value(toIpAddress(Internet + There))), text(reference->total()));
    QCOMPARE(text(taken.here().internet), text(reference->total()));
    QCOMPARE(taken.udp.size() + taken.other.size(), 0);
}

void PcapNetworkTrafficMonitorTest::countsNoTaggedFrames()
{
    m_monitor->start();
    m_network->inNeighbour([] {
        QVERIFY(sendFrame(frame(QByteArray::fromHex("81000005"))));
        QVERIFY(sendFrame(frame({})));
    });
    Taken taken;
    QTRY_COMPARE((taken.take(*m_monitor), taken.here().total.download), datagramBytes(20, 1, 0));
    QCOMPARE(taken.local.value(HerePort).download, datagramBytes(20, 1, 0));
}

void PcapNetworkTrafficMonitorTest::followsInterfaces()
{
    const LogCapture log;
    m_monitor->start();
    const QString forWire = QStringLiteral(" PcapNetworkTrafficMonitor for interface wire\n");
    QVERIFY(log.contains(QStringLiteral("Found new interface: wire\n")));
    QCOMPARE(log.count(QStringLiteral("Starting") + forWire), 1);

    QVERIFY(m_network->connect(QStringLiteral("second"), {}, Index + 1));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 2);
    QVERIFY(log.contains(QStringLiteral("Found old interface: wire\n")));

    QVERIFY(NetworkPair::ip(QStringLiteral("link set wire down")));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 1);
    QVERIFY(NetworkPair::ip(QStringLiteral("link set wire up")));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 2);
    QCOMPARE(log.count(QStringLiteral("Restarting") + forWire), 1);

    QVERIFY(NetworkPair::disconnect(Name));
    QTRY_COMPARE(m_monitor->countThreads(), 1);
    m_monitor->updateNetworkDevices();
    QVERIFY(log.contains(QStringLiteral("Removed idle thread for interface: wire\n")));

    QVERIFY(m_network->connect(Name, {Internet}, Index + 2));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 2);
    // Replaced by another of its name before anybody looked.
    QVERIFY(NetworkPair::disconnect(Name) && m_network->connect(Name, {Internet}, Index + 3));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 2);
    // Without an address of its own this machine cannot tell a sender from a receiver.
    QVERIFY(NetworkPair::disconnect(Name) && m_network->connect(Name, {}, Index + 4));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 1);
    QVERIFY(NetworkPair::ip(QStringLiteral("address add 203.0.113.1/24 dev wire")));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 2);

    m_monitor->stop();
    QCOMPARE(m_monitor->countThreads(), 0);
    m_monitor->start();
    QCOMPARE(m_monitor->countThreads(), 2);
    m_monitor.reset();
    QCOMPARE(log.count(QStringLiteral("Network pcap thread started on interface ")),
             log.count(QStringLiteral("' stopped on interface ")));
}

void PcapNetworkTrafficMonitorTest::losesNothingWithAnInterface()
{
    m_monitor->start();
    const auto receive = [this] {
        m_network->inNeighbour([] {
            QVERIFY(UdpSocket(Internet + There, TherePort).send(Internet + Here, HerePort, 10, 58));
        });
    };
    Taken taken;
    receive();
    QTRY_COMPARE((addTo(taken.remote, m_monitor->getIpBandwidth()),
                  taken.remote.value(toIpAddress(Internet + There)).download),
                 quint64{1000});
    QVERIFY(NetworkPair::disconnect(Name));
    QTRY_COMPARE(m_monitor->countThreads(), 0);
    QVERIFY(m_network->connect(Name, {Internet}, Index + 1));
    m_monitor->updateNetworkDevices();
    QCOMPARE(m_monitor->countThreads(), 1);
    receive();
    QTRY_COMPARE((taken.take(*m_monitor), text(taken.here().total)), text({2000, 0}));
    QCOMPARE(text(taken.local.value(HerePort)), text({2000, 0}));

    // Only a new start forgets what nobody took.
    receive();
    QTRY_COMPARE((addTo(taken.remote, m_monitor->getIpBandwidth()),
                  taken.remote.value(toIpAddress(Internet + There)).download),
                 quint64{3000});
    m_monitor->stop();
    QCOMPARE(text(m_monitor->getPortsBandwidth().value(HerePort)), text({1000, 0}));
    m_monitor->start();
    QCOMPARE(m_monitor->getPortsBandwidthUDP().size(), 0);
}

void PcapNetworkTrafficMonitorTest::sleepsWhileNothingComes()
{
    m_monitor->start();
    // Until the thread has begun to wait.
    QTRY_VERIFY(contextSwitches() > 0);
    QTest::qWait(100);
    const qint64 before = contextSwitches();
    QTest::qWait(500);
    QVERIFY2(contextSwitches() - before < 10, qPrintable(QString::number(contextSwitches())));
}

void PcapNetworkTrafficMonitorTest::stopsAmidTraffic()
{
    std::atomic<bool> isOver = false;
    std::thread flood;
    const UdpSocket here(Internet + Here, HerePort);
    flood = std::thread([&] {
        while (!isOver) {
            here.send(Internet + There, TherePort, 50, 10);
        }
    });
    for (int round = 0; round < 10; ++round) {
        m_monitor->start();
        quint64 taken = 0;
        QTRY_VERIFY((taken += m_monitor->getPortsBandwidth().value(HerePort).upload) > 10'000);
        m_monitor->stop();
    }
    isOver = true;
    flood.join();
}

REGISTER_TEST(PcapNetworkTrafficMonitorTest);

#include "PcapNetworkTrafficMonitorTest.moc"
