// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/LocalAddresses.h"
#include "network/LocalNetwork.h"
#include "network/NetworkPacketHandler.h"
#include "network/NetworkPacketHandlerListener.h"
#include "support/TestRegistry.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QTest>
#include <QtEndian>

#include <vector>

namespace {

using Direction = NetworkPacketHandler::Direction;
using Frame = std::vector<std::uint8_t>; ///< Of the exact size, so that a sanitizer sees overreads.

constexpr std::uint8_t Tcp = 6;
constexpr std::uint8_t Udp = 17;
constexpr unsigned short Length = 1500;
constexpr int InterfaceIndex = 300;

IpAddress ip(const char* text)
{
    const QHostAddress address(QString::fromLatin1(text));
    return address.protocol() == QAbstractSocket::IPv4Protocol
               ? IpAddress::fromIpv4(address.toIPv4Address())
               : IpAddress::fromIpv6(address.toIPv6Address().c);
}

QString text(const IpAddress& address)
{
    return address.isIpv4() ? QHostAddress(address.ipv4()).toString()
                            : QHostAddress(address.bytes.data()).toString();
}

void put(Frame& frame, std::size_t offset, const IpAddress& address)
{
    if (address.isIpv4()) {
        qToBigEndian(address.ipv4(), &frame[offset]);
    } else {
        std::copy(address.bytes.begin(), address.bytes.end(), &frame[offset]);
    }
}

/// Up to and including the ports 40000 and 443.
Frame frame(const char* source, const char* destination, std::uint8_t protocol = Tcp)
{
    const bool ipv4 = ip(source).isIpv4();
    Frame result(ipv4 ? 20 : 40);
    result[0] = ipv4 ? 0x45 : 0x60;
    result[ipv4 ? 9 : 6] = protocol;
    put(result, ipv4 ? 12 : 8, ip(source));
    put(result, ipv4 ? 16 : 24, ip(destination));
    result.insert(result.end(), {0x9C, 0x40, 0x01, 0xBB});
    return result;
}

/// With a header of 24 bytes, whose option is Router Alert (RFC 2113).
Frame frameWithOptions()
{
    Frame result = frame("192.168.1.5", "8.8.8.8");
    result[0] = 0x46;
    const std::initializer_list<std::uint8_t> routerAlert = {0x94, 0x04, 0x00, 0x01};
    result.insert(result.begin() + 20, routerAlert);
    return result;
}

/// One that carries no transport header but what followed it in the packet.
Frame laterFragment()
{
    Frame result = frame("8.8.8.8", "192.168.1.5", Udp);
    result[7] = 185;
    std::copy_n("\x01\x02\x03\x04", 4, result.begin() + 20);
    return result;
}

/// Writes down each event as "up 8.8.8.8:443 40000 tcp 1500/1500", the last the internet bytes.
class Notes final : public NetworkPacketHandlerListener
{
public:
    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override
    {
        QCOMPARE(interfaceIndex, InterfaceIndex);
        const char* transport = type == Utils::TrafficType::Tcp ? "tcp" : "udp";
        all += QStringLiteral("%1 %2:%3 %4 %5 %6/%7")
                   .arg(upload ? QStringLiteral("up") : QStringLiteral("down"), text(remote))
                   .arg(remotePort)
                   .arg(localPort)
                   .arg(QLatin1String(transport))
                   .arg(bytes)
                   .arg(internetBytes);
    }

    QString all;
};

QString eventOf(int version, const Frame& captured, Direction direction = Direction::Unknown,
                unsigned short length = Length)
{
    const QSet<IpAddress> local = {ip("192.168.1.5"), ip("10.0.0.5"), ip("2001:db8::5")};
    Notes notes;
    NetworkPacketHandler::handle(static_cast<unsigned char>(version), captured, length, direction,
                                 local, notes, InterfaceIndex);
    return notes.all;
}

} // namespace

class NetworkPacketHandlerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attributes_data();
    void attributes();
    void countsTheLengthOnTheWire();
    void dropsATruncatedFrame();
    void takesTheProxyForTheInternet();
    void knowsTheNeighbourhood_data();
    void knowsTheNeighbourhood();
    void knowsTheAddressesOfThisMachine();
};

void NetworkPacketHandlerTest::attributes_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<Frame>("captured");
    QTest::addColumn<Direction>("direction");
    QTest::addColumn<QString>("event");
    const auto row = [](const char* name, int version, const Frame& captured, Direction direction,
                        const char* event) {
        QTest::newRow(name) << version << captured << direction << QString::fromLatin1(event);
    };
    const Direction unknown = Direction::Unknown;
    const Frame toLocal = frame("8.8.8.8", "192.168.1.5", Udp);
    const Frame fromLocal = frame("192.168.1.5", "8.8.8.8");
    row("from here", 4, fromLocal, unknown, "up 8.8.8.8:443 40000 tcp 1500/1500");
    row("to here", 4, toLocal, unknown, "down 8.8.8.8:40000 443 udp 1500/1500");
    row("both ends here", 4, frame("192.168.1.5", "10.0.0.5"), unknown,
        "up 10.0.0.5:443 40000 tcp 1500/0");
    row("foreign ends", 4, frame("192.168.1.6", "8.8.8.8"), unknown, "");
    row("foreign ends, outgoing", 4, frame("192.168.1.6", "8.8.8.8"), Direction::Outgoing,
        "up 8.8.8.8:443 40000 tcp 1500/1500");
    row("to here, outgoing", 4, toLocal, Direction::Outgoing,
        "up 192.168.1.5:443 40000 udp 1500/0");
    row("from here, incoming", 4, fromLocal, Direction::Incoming,
        "down 192.168.1.5:40000 443 tcp 1500/0");
    row("from here, another direction", 4, fromLocal, static_cast<Direction>(3),
        "down 192.168.1.5:40000 443 tcp 1500/0");

    row("ignored destination", 4, frame("192.168.1.5", "14.255.255.255"), unknown, "");
    row("ignored destination as source", 4, frame("14.255.255.255", "192.168.1.5"), unknown,
        "down 14.255.255.255:40000 443 tcp 1500/1500");
    row("before the ignored destination", 4, frame("192.168.1.5", "14.255.255.254"), unknown,
        "up 14.255.255.254:443 40000 tcp 1500/1500");
    row("multicast is internet", 4, frame("192.168.1.5", "224.0.0.251", Udp), unknown,
        "up 224.0.0.251:443 40000 udp 1500/1500");
    row("ports from the options", 4, frameWithOptions(), unknown,
        "up 8.8.8.8:1 37892 tcp 1500/1500");
    row("ports from a later fragment's data", 4, laterFragment(), unknown,
        "down 8.8.8.8:258 772 udp 1500/1500");

    row("IPv6", 6, frame("2001:db8::5", "2001:db8::9"), unknown,
        "up 2001:db8::9:443 40000 tcp 1500/1500");
    row("IPv6, first byte 0xE0", 6, frame("e012:3::1", "2001:db8::5"), unknown,
        "down e012:3::1:40000 443 tcp 1500/0");
    row("IPv6, first byte 0xE1", 6, frame("2001:db8::5", "e1e0::1"), unknown,
        "up e1e0::1:443 40000 tcp 1500/1500");
    row("IPv6, 0xE0 at this end", 6, frame("e000::1", "2001:db8::9"), Direction::Outgoing,
        "up 2001:db8::9:443 40000 tcp 1500/1500");
    row("IPv6 multicast is internet", 6, frame("2001:db8::5", "ff02::fb", Udp), unknown,
        "up ff02::fb:443 40000 udp 1500/1500");
    row("IPv6 link-local is internet", 6, frame("fe80::1", "2001:db8::5"), unknown,
        "down fe80::1:40000 443 tcp 1500/1500");
    row("IPv6 in 14.255.255.255's bytes", 6, frame("2001:db8::5", "ffff:ff0e::"), unknown,
        "up ffff:ff0e:::443 40000 tcp 1500/1500");

    for (const int version : {0, 1, 5, 7, 15, 0x45, 255}) {
        QTest::addRow("version %d", version) << version << fromLocal << unknown << QString();
    }
    for (const int protocol : {0, 1, 2, 4, 5, 7, 16, 18, 41, 47, 50, 58, 132, 136, 255}) {
        const auto number = static_cast<std::uint8_t>(protocol);
        QTest::addRow("protocol %d", protocol)
            << 4 << frame("192.168.1.5", "8.8.8.8", number) << unknown << QString();
        QTest::addRow("IPv6, protocol %d", protocol)
            << 6 << frame("2001:db8::5", "2001:db8::9", number) << unknown << QString();
    }
}

void NetworkPacketHandlerTest::attributes()
{
    QFETCH(const int, version);
    QFETCH(const Frame, captured);
    QFETCH(const Direction, direction);
    QTEST(eventOf(version, captured, direction), "event");
}

void NetworkPacketHandlerTest::countsTheLengthOnTheWire()
{
    const Frame captured = frame("192.168.1.5", "8.8.8.8");
    QCOMPARE(eventOf(4, captured, Direction::Unknown, 65'535),
             QStringLiteral("up 8.8.8.8:443 40000 tcp 65535/65535"));
    QCOMPARE(eventOf(4, captured, Direction::Unknown, 0),
             QStringLiteral("up 8.8.8.8:443 40000 tcp 0/0"));
}

void NetworkPacketHandlerTest::dropsATruncatedFrame()
{
    for (const auto& [version, whole] : {std::pair(4, frame("192.168.1.5", "8.8.8.8")),
                                         std::pair(6, frame("2001:db8::5", "2001:db8::9"))}) {
        for (auto end = whole.begin(); end != whole.end(); ++end) {
            const Frame cut(whole.begin(), end);
            for (const Direction direction : {Direction::Unknown, Direction::Outgoing}) {
                QCOMPARE(eventOf(version, cut, direction), QString());
            }
        }
        QVERIFY(!eventOf(version, whole).isEmpty());
    }
}

void NetworkPacketHandlerTest::takesTheProxyForTheInternet()
{
    const auto internetBytes = [](const Frame& captured) {
        return eventOf(4, captured).section(QLatin1Char('/'), 1).toInt();
    };
    const Frame toProxy = frame("10.0.0.5", "192.168.1.9");
    const Frame toAnother = frame("10.0.0.5", "192.168.1.8");
    const Frame fromProxysPort = frame("192.168.1.9", "10.0.0.5");
    QCOMPARE(internetBytes(toProxy), 0);
    Utils::setLocalProxy(ip("192.168.1.9").ipv4(), 443);
    QCOMPARE(internetBytes(toProxy), Length);
    QCOMPARE(internetBytes(toAnother), 0);
    QCOMPARE(internetBytes(fromProxysPort), 0);
    Utils::setLocalProxy(ip("192.168.1.9").ipv4(), 40'000);
    QCOMPARE(internetBytes(toProxy), 0);
    QCOMPARE(internetBytes(fromProxysPort), Length);
    QVERIFY(isLocalOrMulticast(ip("192.168.1.9"))); // It has no country of its own.
    Utils::setLocalProxy(0, 0);
    QCOMPARE(internetBytes(fromProxysPort), 0);
}

void NetworkPacketHandlerTest::knowsTheNeighbourhood_data()
{
    enum Kind
    {
        Foreign,
        LocalOrMulticast,
        Private,
    };

    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isPrivate");
    QTest::addColumn<bool>("isLocal");
    const auto rows = [](Kind kind, std::initializer_list<const char*> addresses) {
        for (const char* address : addresses) {
            QTest::newRow(address)
                << QString::fromLatin1(address) << (kind == Private) << (kind != Foreign);
        }
    };
    rows(Private,
         {"10.0.0.0", "10.255.255.255", "127.0.0.0", "127.255.255.255", "169.254.0.0",
          "169.254.255.255", "172.16.0.0", "172.31.255.255", "192.168.0.0", "192.168.255.255"});
    rows(Foreign, {"9.255.255.255", "11.0.0.0", "126.255.255.255", "128.0.0.0", "169.253.255.255",
                   "169.255.0.0", "172.15.255.255", "172.32.0.0", "192.167.255.255", "192.169.0.0",
                   "223.255.255.255", "240.0.0.0", "255.255.255.254"});
    rows(Foreign, {"0.0.0.0", "0.0.0.1", "100.64.0.1", "5.1.168.192", "1.0.0.10"});
    rows(LocalOrMulticast, {"224.0.0.0", "239.255.255.255", "255.255.255.255"});
    rows(LocalOrMulticast, {"::", "::1", "fc00::", "fdff:ffff::1", "fe80::", "febf:ffff::1",
                            "ff00::", "ff02::1", "::ffff:10.0.0.1", "::ffff:224.0.0.1"});
    rows(Foreign, {"::2", "::1:0:1", "1::1", "fbff:ffff::1", "fe00::", "fe7f:ffff::1", "fec0::1",
                   "e000::1", "2001:db8::1", "::ffff:8.8.8.8", "::ffff:0.0.0.0", "::10.0.0.1",
                   "::fffe:10.0.0.1", "::ff:10.0.0.1", "1::ffff:10.0.0.1", "a00:1::"});
}

void NetworkPacketHandlerTest::knowsTheNeighbourhood()
{
    QFETCH(const QString, address);
    const IpAddress remote = ip(address.toLatin1().constData());
    QTEST(isLocalOrMulticast(remote), "isLocal");
    if (remote.isIpv4()) {
        QTEST(Utils::GeoIP_is_private_ipnum_v4(remote.ipv4(), 80), "isPrivate");
    }
}

void NetworkPacketHandlerTest::knowsTheAddressesOfThisMachine()
{
    const QSet<IpAddress> addresses = localAddresses();
    const QList<QHostAddress> expected = QNetworkInterface::allAddresses();
    for (QHostAddress address : expected) {
        address.setScopeId({});
        QVERIFY(addresses.contains(ip(address.toString().toLatin1().constData())));
    }
    QCOMPARE(addresses.contains(ip("127.0.0.1")),
             expected.contains(QHostAddress(QHostAddress::LocalHost)));
}

REGISTER_TEST(NetworkPacketHandlerTest);
#include "NetworkPacketHandlerTest.moc"
