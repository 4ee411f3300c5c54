// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/BootTime.h"
#include "system/FixtureRoot.h"
#include "system/Hardware.h"
#include "system/MouseTravel.h"

#include <QTest>

/// What the machine is, on machines made of files.
class HardwareTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void models_data();
    void models();
    void namesVideocards();
    void namesAGpuWithoutPci();
    void namesInputDevices();
    void readsSizesAndCounts();
    void answersNothingOnAnEmptyMachine();
    void keepsTheBootTime();
    void aNewBootHasItsOwnTime();
    void keptBootTimeMayBeDamaged_data();
    void keptBootTimeMayBeDamaged();
    void travel_data();
    void travel();
};

void HardwareTest::models_data()
{
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<QByteArray>("product");
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QString>("withVendor");
    QTest::addColumn<QString>("withoutVendor");
    QTest::newRow("both") << QByteArray("Dell Inc.\n") << QByteArray("XPS 13\n") << QByteArray()
                          << QStringLiteral("Dell Inc. XPS 13") << QStringLiteral("XPS 13");
    QTest::newRow("vendor in the product")
        << QByteArray("HP\n") << QByteArray("HP EliteBook\n") << QByteArray()
        << QStringLiteral("HP EliteBook") << QStringLiteral("HP EliteBook");
    QTest::newRow("name in the version")
        << QByteArray("LENOVO\n") << QByteArray("20HRS\n") << QByteArray("ThinkPad X1\n")
        << QStringLiteral("LENOVO ThinkPad X1") << QStringLiteral("ThinkPad X1");
    QTest::newRow("self-built") << QByteArray("System manufacturer\n")
                                << QByteArray("System Product Name\n") << QByteArray()
                                << QStringLiteral("ASUS PRIME") << QStringLiteral("PRIME");
}

void HardwareTest::models()
{
    QFETCH(QByteArray, vendor);
    QFETCH(QByteArray, product);
    QFETCH(QByteArray, version);
    const FixtureRoot root;
    const QString dmi = QStringLiteral("sys/class/dmi/id/");
    QVERIFY(root.write(dmi + QStringLiteral("sys_vendor"), vendor));
    QVERIFY(root.write(dmi + QStringLiteral("product_name"), product));
    QVERIFY(root.write(dmi + QStringLiteral("product_version"), version));
    QVERIFY(root.write(dmi + QStringLiteral("board_vendor"), "ASUS\n"));
    QVERIFY(root.write(dmi + QStringLiteral("board_name"), "PRIME\n"));
    const Hardware hardware(root.path());
    QTEST(hardware.model(Hardware::Vendor::Named), "withVendor");
    QTEST(hardware.model(Hardware::Vendor::LeftOut), "withoutVendor");
}

void HardwareTest::namesVideocards()
{
    const FixtureRoot root;

    struct Device
    {
        const char* slot;
        const char* deviceClass;
        const char* vendor;
        const char* device;
    };

    const Device devices[] = {{"0000:00:02.0", "0x030000\n", "0x8086\n", "0x5916\n"},
                              {"0000:00:1f.3", "0x040300\n", "0x8086\n", "0x9d71\n"},
                              {"0000:01:00.0", "0x030200\n", "0x10de\n", "0xffff\n"}};
    for (const Device& device : devices) {
        const QString slot = QStringLiteral("sys/bus/pci/devices/") + QLatin1String(device.slot);
        QVERIFY(root.write(slot + QStringLiteral("/class"), device.deviceClass));
        QVERIFY(root.write(slot + QStringLiteral("/vendor"), device.vendor));
        QVERIFY(root.write(slot + QStringLiteral("/device"), device.device));
    }
    QVERIFY(
        root.write(QStringLiteral("usr/share/hwdata/pci.ids"),
                   "8086  Intel Corporation\n\t5916  HD Graphics 620\n10de  NVIDIA Corporation\n"));
    QCOMPARE(Hardware(root.path()).videocards(),
             QStringLiteral("Intel Corporation HD Graphics 620, NVIDIA Corporation 10de:ffff"));
}

void HardwareTest::namesAGpuWithoutPci()
{
    const FixtureRoot root;
    QVERIFY(root.write(QStringLiteral("sys/class/drm/card0/device/uevent"),
                       "DRIVER=panfrost\nOF_NAME=gpu\n"));
    QCOMPARE(Hardware(root.path()).videocards(), QStringLiteral("panfrost"));
}

void HardwareTest::namesInputDevices()
{
    const QByteArray mouse = "B: EV=17\nB: KEY=70000 0 0 0 0\nB: REL=903\n\n";
    const FixtureRoot root;
    QVERIFY(root.write(QStringLiteral("proc/bus/input/devices"),
                       "I: Bus=0003 Vendor=046d Product=c077\nN: Name=\"\"\n" + mouse +
                           "I: Bus=0003 Vendor=1\nN: Name=\"Big Mouse\"\n" + mouse +
                           "I: Bus=0003 Vendor=1\nN: Name=\"Big Mouse\"\n" + mouse));
    QVERIFY(root.write(QStringLiteral("usr/share/misc/usb.ids"),
                       "046d  Logitech, Inc.\n\tc077  Mouse\n"));
    const Hardware hardware(root.path());
    QCOMPARE(hardware.inputDevices(InputDeviceDescription::Kind::Mouse),
             QStringLiteral("Logitech, Inc. Mouse, Big Mouse"));
    QCOMPARE(hardware.inputDevices(InputDeviceDescription::Kind::Keyboard), QString());
}

void HardwareTest::readsSizesAndCounts()
{
    const FixtureRoot root;
    const QByteArray established = "  0: 0100007F:0277 0100007F:0001 01 0:0\n";
    QVERIFY(root.write(QStringLiteral("proc/meminfo"), "MemTotal:       16313428 kB\n"));
    QVERIFY(root.write(QStringLiteral("proc/net/tcp"), established + established));
    QVERIFY(root.write(QStringLiteral("proc/net/tcp6"), established));
    QVERIFY(root.write(QStringLiteral("etc/os-release"), "PRETTY_NAME=\"Some OS 1\"\n"));
    const Hardware hardware(root.path());
    QCOMPARE(hardware.memory(), QStringLiteral("15.6 GiB"));
    QCOMPARE(hardware.tcpConnections(), 3);
    QCOMPARE(hardware.operatingSystem(), QStringLiteral("Some OS 1"));
}

void HardwareTest::answersNothingOnAnEmptyMachine()
{
    const FixtureRoot root;
    const Hardware hardware(root.path());
    QCOMPARE(hardware.processor() + hardware.memory() + hardware.videocards() +
                 hardware.model(Hardware::Vendor::Named) +
                 hardware.inputDevices(InputDeviceDescription::Kind::Trackpad),
             QString());
    QCOMPARE(hardware.tcpConnections(), 0);
    QVERIFY(!BootTime(root.path(), root.path()).value().isValid());
}

namespace {

bool boot(const FixtureRoot& root, const char* id, const char* seconds)
{
    return root.write(QStringLiteral("proc/sys/kernel/random/boot_id"), QByteArray(id) + '\n') &&
           root.write(QStringLiteral("proc/stat"), QByteArray("btime ") + seconds + '\n');
}

} // namespace

void HardwareTest::keepsTheBootTime()
{
    const FixtureRoot root;
    const QTemporaryDir data;
    QVERIFY(boot(root, "one", "1700000000"));
    const QDateTime first = BootTime(root.path(), data.path()).value();
    QCOMPARE(first, QDateTime::fromSecsSinceEpoch(1700000000));
    // The clock was set while this run and another one look.
    BootTime running(root.path(), data.path());
    running.value();
    QVERIFY(boot(root, "one", "1700000003"));
    QCOMPARE(running.value(), first);
    QCOMPARE(BootTime(root.path(), data.path()).value(), first);
    // Rows of the database are found by this text.
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Asia/Tokyo");
    const QString elsewhere =
        BootTime(root.path(), data.path()).value().toString(Qt::ISODateWithMs);
    qputenv("TZ", zone);
    QCOMPARE(elsewhere, first.toString(Qt::ISODateWithMs));
}

void HardwareTest::aNewBootHasItsOwnTime()
{
    const FixtureRoot root;
    const QTemporaryDir data;
    QVERIFY(boot(root, "one", "1700000000"));
    BootTime(root.path(), data.path()).value();
    QVERIFY(boot(root, "two", "1700009000"));
    QCOMPARE(BootTime(root.path(), data.path()).value().toSecsSinceEpoch(), 1700009000);
}

void HardwareTest::keptBootTimeMayBeDamaged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no time") << QByteArray("one\n");
    QTest::newRow("no date") << QByteArray("one\nsoon\n");
}

void HardwareTest::keptBootTimeMayBeDamaged()
{
    QFETCH(QByteArray, content);
    const FixtureRoot root;
    QVERIFY(boot(root, "one", "1700000000"));
    QVERIFY(root.write(QStringLiteral("boot-time"), content));
    QCOMPARE(BootTime(root.path(), root.path()).value().toSecsSinceEpoch(), 1700000000);
}

void HardwareTest::travel_data()
{
    QTest::addColumn<int>("pixels");
    QTest::addColumn<int>("dpi");
    QTest::addColumn<float>("inches");
    QTest::newRow("below an inch") << 95 << 96 << 0.0F;
    QTest::newRow("fractions are dropped") << 200 << 96 << 2.0F;
    QTest::newRow("none") << 0 << 96 << 0.0F;
    QTest::newRow("negative") << -500 << 96 << 0.0F;
    QTest::newRow("a screen that reports nothing") << 5 << 0 << 5.0F;
}

void HardwareTest::travel()
{
    QFETCH(int, pixels);
    QFETCH(int, dpi);
    int asked = 0;
    MouseTravel travel([&] {
        ++asked;
        return dpi;
    });
    QTEST(travel.inches(pixels), "inches");
    travel.inches(1000);
    travel.inches(1000);
    QCOMPARE(asked, 1);
}

REGISTER_TEST(HardwareTest);
#include "HardwareTest.moc"
