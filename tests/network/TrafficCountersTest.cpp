// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/TrafficCounters.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <array>
#include <atomic>
#include <limits>
#include <thread>

namespace {

using Type = Utils::TrafficType;

constexpr quint64 MostBytes = std::numeric_limits<unsigned int>::max();

/// IPv4 and IPv6 in turn.
IpAddress addressOf(quint32 number)
{
    if (number % 2 == 0) {
        return IpAddress::fromIpv4(0x0100'0000 + number);
    }
    std::array<std::uint8_t, 16> bytes{0x20, 0x01};
    std::memcpy(&bytes[12], &number, sizeof number);
    return IpAddress::fromIpv6(bytes.data());
}

void download(TrafficCounters& counters, const IpAddress& remote, unsigned int bytes)
{
    counters.add(false, remote, 50'000, bytes, bytes, 2, Type::Tcp, 443);
}

} // namespace

static bool operator==(const NetworkTraffic& one, const NetworkTraffic& other)
{
    return one.download == other.download && one.upload == other.upload;
}

static bool operator==(const InterfaceTraffic& one, const InterfaceTraffic& other)
{
    return one.total == other.total && one.internet == other.internet;
}

class TrafficCountersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesEachPacketUnderItsKeys();
    void keepsEveryAddressApart();
    void countsAFloodOfAddressesTogether();
    void losesNothingToTakes();
};

void TrafficCountersTest::filesEachPacketUnderItsKeys()
{
    const IpAddress one = addressOf(0);
    const IpAddress other = addressOf(1);
    TrafficCounters counters;
    for (int takes = 0; takes < 2; ++takes) {
        counters.add(true, one, 1, MostBytes, 0, 2, Type::Tcp, 443);
        counters.add(true, one, 1, MostBytes, MostBytes, 2, Type::Tcp, 443);
        counters.add(false, one, 65'535, 30, 30, 2, Type::Udp, 443);
        counters.add(false, other, 1, 4, 0, 258, Type::Other, 0);
        const AddressTraffic addresses = {{one, {30, 2 * MostBytes}}, {other, {4, 0}}};
        QVERIFY(counters.takeAddresses() == addresses);
        const PortTraffic ports = {{1, {4, 2 * MostBytes}}, {65'535, {30, 0}}};
        QVERIFY(counters.takePorts() == ports);
        QVERIFY(counters.takePortsTcp() == PortTraffic({{443, {0, 2 * MostBytes}}}));
        QVERIFY(counters.takePortsUdp() == PortTraffic({{443, {30, 0}}}));
        QVERIFY(counters.takePortsOther() == PortTraffic({{0, {4, 0}}}));
        const QHash<int, InterfaceTraffic> interfaces = {
            {2, {{30, 2 * MostBytes}, {30, MostBytes}}}, {258, {{4, 0}, {0, 0}}}};
        QVERIFY(counters.takeInterfaces() == interfaces);
        QVERIFY(counters.takeAddresses().isEmpty() && counters.takeInterfaces().isEmpty());
        QVERIFY(counters.takePorts().isEmpty() && counters.takePortsTcp().isEmpty());
        QVERIFY(counters.takePortsUdp().isEmpty() && counters.takePortsOther().isEmpty());
    }
}

/// While the tables grow, and shrink again.
void TrafficCountersTest::keepsEveryAddressApart()
{
    TrafficCounters counters;
    for (const quint32 count : {1U, 7U, 8U, 9U, 50'000U, 100U, 3U, 0U, 20'000U, 20'000U}) {
        for (int times = 0; times < 2; ++times) {
            for (quint32 number = 0; number < count; ++number) {
                download(counters, addressOf(number), number + 1);
            }
        }
        const AddressTraffic taken = counters.takeAddresses();
        QCOMPARE(taken.size(), qsizetype{count});
        for (quint32 number = 0; number < count; ++number) {
            QCOMPARE(taken.value(addressOf(number)).download, 2 * (number + quint64{1}));
        }
    }
}

void TrafficCountersTest::countsAFloodOfAddressesTogether()
{
    constexpr quint32 limit = TrafficCounters::AddressLimit;
    constexpr quint32 beyond = 1'000;
    TrafficCounters counters;
    for (quint32 number = 0; number < limit + beyond; ++number) {
        download(counters, addressOf(number), 1);
    }
    download(counters, addressOf(limit - 1), 1);
    const AddressTraffic taken = counters.takeAddresses();
    QCOMPARE(taken.size(), qsizetype{limit} + 1);
    QCOMPARE(taken.value(IpAddress()).download, quint64{beyond});
    QCOMPARE(taken.value(addressOf(limit - 1)).download, 2U);

    download(counters, addressOf(limit), 1);
    QCOMPARE(counters.takeAddresses().value(addressOf(limit)).download, 1U);
}

/// One thread adds in batches as a capture thread does, while this one takes.
void TrafficCountersTest::losesNothingToTakes()
{
    constexpr quint32 batches = 2'000;
    constexpr quint32 batch = 50;
    TrafficCounters counters;
    std::atomic<bool> over = false;
    std::thread capture([&] {
        for (quint32 done = 0; done < batches; ++done) {
            const std::scoped_lock lock(counters.mutex());
            for (quint32 number = 0; number < batch; ++number) {
                download(counters, addressOf(done + number), 1);
            }
        }
        over = true;
    });
    quint64 byAddress = 0;
    quint64 byInterface = 0;
    const auto take = [&] {
        const AddressTraffic addresses = counters.takeAddresses();
        for (const NetworkTraffic& traffic : addresses) {
            byAddress += traffic.download;
        }
        byInterface += counters.takeInterfaces().value(2).internet.download;
    };
    while (!over) {
        take();
    }
    capture.join();
    take();
    QCOMPARE(byAddress, quint64{batches} * batch);
    QCOMPARE(byInterface, quint64{batches} * batch);
}

REGISTER_TEST(TrafficCountersTest);
#include "TrafficCountersTest.moc"
