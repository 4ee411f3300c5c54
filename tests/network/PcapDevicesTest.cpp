// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/EthernetFrame.h"
#include "network/PcapDevices.h"
#include "network/PcapLibrary.h"
#include "network/PcapNetworkTrafficMonitor.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>

#include <array>
#include <utility>

class PcapDevicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesDevices_data();
    void choosesDevices();
    void recordsDevices();
    void takesPcapsWordWithoutInterfaces();
    void endsAtTooManyInterfaces();
    void readsUntaggedFramesOnly();
    void saysWhenTheLibraryIsMissing();
    void findsVersionedLibraries_data();
    void findsVersionedLibraries();
};

namespace {

/// An interface as the kernel might have it.
SystemInterface ethernet(const QString& name, int index)
{
    SystemInterface interface;
    interface.name = name;
    interface.index = index;
    interface.hardwareAddress = QStringLiteral("02:00:00:00:0a:0b");
    interface.addresses = {QStringLiteral("192.0.2.%1").arg(index)};
    return interface;
}

PcapDevice device(const QString& name, const QString& description = {},
                  const QStringList& addresses = {})
{
    PcapDevice result;
    result.interface.name = name;
    result.interface.addresses = addresses;
    result.description = description;
    return result;
}

QStringList namesOf(const QList<CaptureDevice>& devices)
{
    QStringList names;
    for (const CaptureDevice& found : devices) {
        names.append(found.interface.name);
    }
    return names;
}

} // namespace

void PcapDevicesTest::choosesDevices_data()
{
    QTest::addColumn<PcapDevice>("listed");
    QTest::addColumn<QString>("found");
    QTest::addColumn<QString>("line");
    const QString skipping = QStringLiteral("Skipping unsupported interface\n");
    const QString ignoring = QStringLiteral("Ignoring unsupported interface: ");

    QTest::newRow("by name") << device(QStringLiteral("eth0")) << QStringLiteral("eth0")
                             << QStringLiteral("Pcap found network device: eth0");
    QTest::newRow("by address") << device(QStringLiteral("npf"), {},
                                          {QStringLiteral("::9"), QStringLiteral("192.0.2.2")})
                                << QStringLiteral("eth0")
                                << QStringLiteral("Found interface in IP map with index: 2");
    QTest::newRow("by an unknown address")
        << device(QStringLiteral("npf"), {}, {QStringLiteral("192.0.2.99")}) << QString()
        << ignoring +
               QStringLiteral("Invalid QNetworkInterface and no index found with ip: 192.0.2.99\n");
    QTest::newRow("no interface at all")
        << device(QStringLiteral("nflog"), QStringLiteral("Linux netfilter log (NFLOG) interface"))
        << QString()
        << ignoring + QStringLiteral("Invalid QNetworkInterface and no index found with ip: ");
    QTest::newRow("loopback") << device(QStringLiteral("lo")) << QString()
                              << ignoring + QStringLiteral("it's a loopback\n");
    QTest::newRow("without hardware address")
        << device(QStringLiteral("tun0")) << QString()
        << ignoring + QStringLiteral("hardware address is empty\n");
    for (const char* description : {"LogMeIn hamachi", "BLUETOOTH device", "wan miniport (IP)",
                                    "a tunnel", "Pseudo-device that captures on all interfaces",
                                    "personal AREA network", "VirtualBox Host-Only", "vmNET8"}) {
        QTest::newRow(description)
            << device(QStringLiteral("eth0"), QLatin1String(description)) << QString() << skipping;
    }
    QTest::newRow("excluded by its name")
        << device(QStringLiteral("vmnet1")) << QString() << skipping;
}

void PcapDevicesTest::choosesDevices()
{
    QFETCH(const PcapDevice, listed);
    QFETCH(const QString, found);
    QFETCH(const QString, line);
    SystemInterface loopback = ethernet(QStringLiteral("lo"), 1);
    loopback.isLoopback = true;
    SystemInterface tunnel = ethernet(QStringLiteral("tun0"), 3);
    tunnel.hardwareAddress.clear();
    const QList<SystemInterface> interfaces{loopback, ethernet(QStringLiteral("eth0"), 2), tunnel,
                                            ethernet(QStringLiteral("vmnet1"), 4)};
    const LogCapture log;
    QCOMPARE(namesOf(findAllDevices({listed}, interfaces)).join(u' '), found);
    QVERIFY2(log.contains(line), qPrintable(log.text()));
}

void PcapDevicesTest::recordsDevices()
{
    SystemInterface interface = ethernet(QStringLiteral("wlan0"), 300);
    interface.addresses = {QStringLiteral("192.0.2.7"), QStringLiteral("169.254.1.2"),
                           QStringLiteral("fe80::1"), QStringLiteral("2001:db8::7")};
    const QList<CaptureDevice> found = findAllDevices({device(interface.name)}, {interface});
    QCOMPARE(found.size(), 1);
    const Interface& record = found.first().interface;
    QCOMPARE(record.mac_address, QStringLiteral("02:00:00:00:0A:0B"));
    QCOMPARE(record.description, QStringLiteral("wlan0"));
    QCOMPARE(record.index, 300);
    QCOMPARE(record.ip_list,
             QStringList({QStringLiteral("192.0.2.7"), QStringLiteral("2001:db8::7")}));
    for (const auto& [description, isWireless] : {std::pair("", true),
                                                  {"Some WIRELESS card", true},
                                                  {"Card 54mbps", true},
                                                  {"Gigabit card", false}}) {
        const PcapDevice listed = device(interface.name, QLatin1String(description));
        QCOMPARE(findAllDevices({listed}, {interface}).first().interface.wifi, isWireless);
    }
}

void PcapDevicesTest::takesPcapsWordWithoutInterfaces()
{
    PcapDevice complete;
    complete.interface = ethernet(QStringLiteral("eth0"), 2);
    const PcapDevice renamed = device(QStringLiteral("any"), {}, {QStringLiteral("192.0.2.77")});
    const LogCapture log;
    QCOMPARE(namesOf(findAllDevices({complete, renamed}, {})), QStringList(QStringLiteral("eth0")));
    QCOMPARE(log.count(QStringLiteral("Unable to find network interfaces via normal APIs, trying "
                                      "alternative to pcap..")),
             1);
}

void PcapDevicesTest::endsAtTooManyInterfaces()
{
    QList<PcapDevice> devices;
    QList<SystemInterface> interfaces;
    for (int i = 1; i <= 250; ++i) {
        interfaces.append(ethernet(QStringLiteral("eth%1").arg(i), i));
        devices.append(device(interfaces.last().name));
    }
    const LogCapture log(Log::Level::Warn);
    QCOMPARE(findAllDevices(devices, interfaces).size(), 200);
    QCOMPARE(log.count(QStringLiteral("Found more than 200 interfaces, which can't be right. "
                                      "Bailing out of findAllDevices()")),
             1);
}

void PcapDevicesTest::readsUntaggedFramesOnly()
{
    std::array<std::uint8_t, 20> frame{};
    const auto versionOf = [&frame](std::uint8_t high, std::uint8_t low, std::size_t size) {
        frame[12] = high;
        frame[13] = low;
        const auto packet = ipPacketIn(std::span(frame).first(size));
        return packet && packet->captured.data() == &frame[14] ? int(packet->version) : 0;
    };
    QCOMPARE(versionOf(0x08, 0x00, 20), 4);
    QCOMPARE(versionOf(0x86, 0xDD, 14), 6);
    QCOMPARE(versionOf(0x08, 0x06, 20), 0); // ARP
    QCOMPARE(versionOf(0x81, 0x00, 20), 0); // A VLAN tag
    for (std::size_t size = 0; size < 14; ++size) {
        QCOMPARE(versionOf(0x08, 0x00, size), 0);
    }
}

void PcapDevicesTest::saysWhenTheLibraryIsMissing()
{
    const LogCapture log;
    PcapNetworkTrafficMonitor monitor(QStringLiteral("no-such-library"));
    QVERIFY(!monitor.isSupported());
    QVERIFY(log.contains(QStringLiteral("libcap not available: ")));
    QVERIFY(log.contains(QStringLiteral("no-such-library")));
    monitor.start();
    monitor.updateNetworkDevices();
    QVERIFY(log.contains(QStringLiteral("No pcap found!")));
    QVERIFY(!monitor.isRunning() && monitor.countThreads() == 0);
    QVERIFY(monitor.getInterfacesBandwidth().isEmpty());
}

void PcapDevicesTest::findsVersionedLibraries_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("found");
    QTest::newRow("version 1") << QStringLiteral("libcopy.so.1") << true;
    QTest::newRow("version 0.8") << QStringLiteral("libcopy.so.0.8") << true;
    QTest::newRow("unknown version") << QStringLiteral("libcopy.so.7") << false;
}

void PcapDevicesTest::findsVersionedLibraries()
{
    QFETCH(const QString, file);
    QFETCH(const bool, found);
    const PcapLibrary installed(QStringLiteral("pcap"));
    Dl_info info{};
    if (!installed.isComplete() ||
        dladdr(reinterpret_cast<const void*>(w_pcap_create), &info) == 0) {
        QSKIP("needs libpcap");
    }
    const QTemporaryDir directory;
    QVERIFY(QFile::link(QString::fromLocal8Bit(info.dli_fname), directory.filePath(file)));
    const PcapLibrary copy(directory.filePath(QStringLiteral("copy")));
    QCOMPARE(copy.isComplete(), found);
    QCOMPARE(copy.error().isEmpty(), found);
    QCOMPARE(w_pcap_create != nullptr, found);
}

REGISTER_TEST(PcapDevicesTest);

#include "PcapDevicesTest.moc"
