// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/BootTime.h"
#include "system/FixtureRoot.h"
#include "system/Hardware.h"
#include "system/MouseTravel.h"

#include <QTest>

#include <array>

/// What the machine is, on machines made of files.
class HardwareTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void models_data();
    void models();
    void namesVideocards();
    void namesInputDevices();
    void keepsTheBootTime();
    void travel_data();
    void travel();
};

void HardwareTest::models_data()
{
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<QByteArray>("product");
    QTest::addColumn<QString>("withVendor");
    QTest::addColumn<QString>("withoutVendor");
    const auto row = [](const char* name, const char* vendor, const char* product,
                        const char* withVendor, const char* withoutVendor) {
        QTest::newRow(name) << QByteArray(vendor) << QByteArray(product)
                            << QString::fromLatin1(withVendor)
                            << QString::fromLatin1(withoutVendor);
    };
    row("both", "Dell Inc.\n", "XPS 13\n", "Dell Inc. XPS 13", "XPS 13");
    row("vendor in the product", "HP\n", "HP EliteBook\n", "HP EliteBook", "HP EliteBook");
    row("name in the version", "LENOVO\n", "20HRS\n", "LENOVO ThinkPad X1", "ThinkPad X1");
    row("self-built", "System manufacturer\n", "System Product Name\n", "ASUS PRIME", "PRIME");
}

void HardwareTest::models()
{
    QFETCH(QByteArray, vendor);
    QFETCH(QByteArray, product);
    const FixtureRoot root;
    const QString dmi = QStringLiteral("sys/class/dmi/id/");
    QVERIFY(root.write(dmi + QStringLiteral("sys_vendor"), vendor));
    QVERIFY(root.write(dmi + QStringLiteral("product_name"), product));
    QVERIFY(root.write(dmi + QStringLiteral("product_version"), "ThinkPad X1\n"));
    QVERIFY(root.write(dmi + QStringLiteral("board_vendor"), "ASUS\n"));
    QVERIFY(root.write(dmi + QStringLiteral("board_name"), "PRIME\n"));
    const Hardware hardware(root.path());
    QTEST(hardware.model(Hardware::Vendor::Named), "withVendor");
    QTEST(hardware.model(Hardware::Vendor::LeftOut), "withoutVendor");
}

void HardwareTest::namesVideocards()
{
    const FixtureRoot root;
    const std::array<std::array<const char*, 4>, 3> devices{
        {{"0000:00:02.0", "0x030000\n", "0x8086\n", "0x5916\n"},
         {"0000:00:1f.3", "0x040300\n", "0x8086\n", "0x9d71\n"},
         {"0000:01:00.0", "0x030200\n", "0x10de\n", "0xffff\n"}}};
    for (const auto& [slot, kind, vendor, device] : devices) {
        const QString directory = QStringLiteral("sys/bus/pci/devices/") + QLatin1String(slot);
        QVERIFY(root.write(directory + QStringLiteral("/class"), kind) &&
                root.write(directory + QStringLiteral("/vendor"), vendor) &&
                root.write(directory + QStringLiteral("/device"), device));
    }
    QVERIFY(
        root.write(QStringLiteral("usr/share/hwdata/pci.ids"),
                   "8086  Intel Corporation\n\t5916  HD Graphics 620\n10de  NVIDIA Corporation\n"));
    QCOMPARE(Hardware(root.path()).videocards(),
             QStringLiteral("Intel Corporation HD Graphics 620, NVIDIA Corporation 10de:ffff"));
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

    QVERIFY(boot(root, "two", "1700009000"));
    QCOMPARE(BootTime(root.path(), data.path()).value().toSecsSinceEpoch(), 1700009000);
    QFile damaged(data.filePath(QStringLiteral("boot-time")));
    QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("two\nsoon\n") > 0);
    damaged.close();
    QCOMPARE(BootTime(root.path(), data.path()).value().toSecsSinceEpoch(), 1700009000);
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
