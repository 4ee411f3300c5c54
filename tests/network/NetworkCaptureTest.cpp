// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkCapture.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <utility>

namespace {

enum class Support
{
    None,
    Opens,
    Captures,
};

/// A back-end whose threads the test starts and ends.
class FakeMonitor final : public NetworkTrafficMonitor
{
public:
    explicit FakeMonitor(Support support, quint64* counted = nullptr)
        : m_support(support)
        , m_counted(counted)
    {
    }

    void start() override { m_threads = m_support == Support::Captures ? 1 : 0; }

    void stop() override { m_threads = 0; }

    bool isRunning() const override { return m_threads > 0; }

    bool isSupported() const override { return m_support != Support::None; }

    void updateNetworkDevices() override { m_threads = m_threadsAfterUpdate; }

    int countThreads() const override { return m_threads; }

    PortTraffic getPortsBandwidth() override { return {}; }

    PortTraffic getPortsBandwidthTCP() override { return {}; }

    PortTraffic getPortsBandwidthUDP() override { return {}; }

    PortTraffic getPortsBandwidthOther() override { return {}; }

    AddressTraffic getIpBandwidth() override { return {}; }

    QList<InterfaceBandwidth> getInterfacesBandwidth() override { return {}; }

    QList<InterfaceBandwidth> getInterfacesCounters() override
    {
        InterfaceBandwidth bandwidth;
        bandwidth.total.download = std::exchange(*m_counted, 0);
        return {bandwidth};
    }

    void becomeAfterUpdate(int threads) { m_threadsAfterUpdate = threads; }

private:
    Support m_support;
    quint64* m_counted;
    int m_threads = 0;
    int m_threadsAfterUpdate = 0;
};

const QString Command = QStringLiteral("sudo setcap ...");

/// `counted` is what passed since the counters were last read.
NetworkCapture::BackEnds backEnds(Support ring, Support pcap, quint64& counted)
{
    return {
        .packetRing = [ring] { return std::make_unique<FakeMonitor>(ring); },
        .pcap = [pcap] { return std::make_unique<FakeMonitor>(pcap); },
        .counters = [&counted] { return std::make_unique<FakeMonitor>(Support::Opens, &counted); },
        .isPcapMissing = [] { return false; },
        .command = Command,
    };
}

/// The sum that the counters answer now, after `bytes` more have passed.
quint64 takenAfter(NetworkCapture& capture, quint64& counted, quint64 bytes)
{
    counted += bytes;
    quint64 sum = 0;
    for (const InterfaceBandwidth& bandwidth : capture.takeInterfacesCounters()) {
        sum += bandwidth.total.download;
    }
    return sum;
}

} // namespace

class NetworkCaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesTheBestThatWorks_data();
    void choosesTheBestThatWorks();
    void countsEachByteOnce();
    void leavesOutWhatPassedWhileItWasStopped();
};

void NetworkCaptureTest::choosesTheBestThatWorks_data()
{
    using BackEnd = CaptureState::BackEnd;
    QTest::addColumn<Support>("ring");
    QTest::addColumn<Support>("pcap");
    QTest::addColumn<BackEnd>("expected");
    QTest::addColumn<QString>("line");
    const QString refused = QStringLiteral("This program may not open packet sockets. To let it, "
                                           "run this once and start it again: sudo setcap ...\n");
    QTest::newRow("ring") << Support::Captures << Support::Captures << BackEnd::PacketRing
                          << QStringLiteral("Network capture: packet ring\n");
    QTest::newRow("libpcap") << Support::None << Support::Captures << BackEnd::Pcap
                             << QStringLiteral("Network capture: libpcap. ") + refused;
    QTest::newRow("libpcap may not capture")
        << Support::None << Support::Opens << BackEnd::Counters
        << QStringLiteral("Network capture: interface totals only. ") + refused;
    QTest::newRow("neither") << Support::None << Support::None << BackEnd::Counters
                             << QStringLiteral("Network capture: interface totals only. ") +
                                    refused;
    QTest::newRow("the ring fails") << Support::Opens << Support::Captures << BackEnd::Counters
                                    << QStringLiteral("Network capture: interface totals only. The "
                                                      "packet ring could not be set up.\n");
}

void NetworkCaptureTest::choosesTheBestThatWorks()
{
    QFETCH(Support, ring);
    QFETCH(Support, pcap);
    QFETCH(CaptureState::BackEnd, expected);
    const LogCapture log;
    quint64 counted = 0;
    NetworkCapture capture(backEnds(ring, pcap, counted));
    capture.start();
    const CaptureState state = capture.state();
    QCOMPARE(state.backEnd, expected);
    QCOMPARE(state.reason.isEmpty(), expected == CaptureState::BackEnd::PacketRing);
    QCOMPARE(state.command.isEmpty(), ring != Support::None);
    QTEST(log.text().section(QStringLiteral(" info "), 1), "line");
    // Whatever captures, no byte is counted twice, and where nothing captures, each is counted.
    QCOMPARE(takenAfter(capture, counted, 100),
             expected == CaptureState::BackEnd::Counters ? 100U : 0U);
}

void NetworkCaptureTest::countsEachByteOnce()
{
    const LogCapture log;
    quint64 counted = 0;
    NetworkCapture capture(backEnds(Support::None, Support::Captures, counted));
    auto& pcap = dynamic_cast<FakeMonitor&>(capture.packets());
    capture.start();
    QCOMPARE(takenAfter(capture, counted, 1), 0U);
    pcap.becomeAfterUpdate(0);
    capture.updateNetworkDevices();
    QCOMPARE(takenAfter(capture, counted, 10), 0U); // Some of it may have been captured.
    QCOMPARE(takenAfter(capture, counted, 100), 100U);
    pcap.becomeAfterUpdate(1);
    capture.updateNetworkDevices();
    QCOMPARE(takenAfter(capture, counted, 1000), 0U);
    capture.updateNetworkDevices();
    QCOMPARE(log.count(QStringLiteral("Network capture: libpcap")), 2);
    QCOMPARE(log.count(QStringLiteral("Network capture: interface totals only")), 1);
}

void NetworkCaptureTest::leavesOutWhatPassedWhileItWasStopped()
{
    const LogCapture log;
    quint64 counted = 1000;
    NetworkCapture capture(backEnds(Support::None, Support::None, counted));
    capture.start();
    QCOMPARE(takenAfter(capture, counted, 1), 1U);
    capture.stop();
    counted = 1000;
    capture.start();
    QCOMPARE(takenAfter(capture, counted, 2), 2U);
}

REGISTER_TEST(NetworkCaptureTest);
#include "NetworkCaptureTest.moc"
