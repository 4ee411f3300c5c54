// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/ExecLine.h"
#include "system/HardwareIds.h"
#include "system/InputDevicesText.h"
#include "system/ProcText.h"
#include "system/WindowProperty.h"

#include <QTest>

#include <array>

/// The parsers of what the kernel, the X display and the desktop's files say.
class SystemTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processors_data();
    void processors();
    void bootAndMemory();
    void establishedConnections();
    void osRelease_data();
    void osRelease();
    void inputDevices();
    void hardwareNames_data();
    void hardwareNames();
    void modelTexts();
    void windowProperties();
    void execLines_data();
    void execLines();
};

void SystemTextTest::processors_data()
{
    QTest::addColumn<QByteArray>("cpuinfo");
    QTest::addColumn<QString>("name");
    QTest::newRow("x86")
        << QByteArray("processor\t: 0\nmodel\t\t: 142\nmodel name\t: Intel(R)  Core(TM) i7\n")
        << QStringLiteral("Intel(R) Core(TM) i7");
    QTest::newRow("Raspberry Pi")
        << QByteArray("processor\t: 0\nBogoMIPS\t: 108\n\nModel\t\t: Raspberry Pi 4\n")
        << QStringLiteral("Raspberry Pi 4");
    QTest::newRow("PowerPC") << QByteArray("processor\t: 0\ncpu\t\t: POWER9, altivec\n")
                             << QStringLiteral("POWER9, altivec");
    QTest::newRow("cut off in the key") << QByteArray("model na") << QString();
}

void SystemTextTest::processors()
{
    QFETCH(QByteArray, cpuinfo);
    QTEST(ProcText::processorName(cpuinfo), "name");
}

void SystemTextTest::bootAndMemory()
{
    QCOMPARE(ProcText::bootSeconds("cpu  1 2\nbtime 1700000000\nprocesses 3\n").value_or(-1),
             1700000000);
    QVERIFY(!ProcText::bootSeconds("cpu  1 2\nbtime \n"));
    QVERIFY(!ProcText::bootSeconds("btime 99999999999999999999\n"));
    QCOMPARE(ProcText::memoryKib("MemFree: 1 kB\nMemTotal:       16313428 kB\n").value_or(-1),
             16313428);
    QVERIFY(!ProcText::memoryKib("MemTotalExtra: 5 kB\n"));
}

void SystemTextTest::establishedConnections()
{
    const QByteArray table =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid\n"
        "   0: 0100007F:0277 00000000:0000 0A 00000000:00000000 00:00000000 00000000     0\n"
        "   1: 0F02000A:8F2E 2EDA3A22:01BB 01 00000000:00000000 02:00000F2A 00000000  1000\n"
        "   2: 0F02000A:8F30 2EDA3A22:01BB 06 00000000:00000000 03:00000F2A 00000000     0\n"
        " 103: 0F02000A:8F32 2EDA3A22:01BB 01 00000000:00000000 02:00000F2A 00000000  1000";
    QCOMPARE(ProcText::establishedConnections(table), 2);
}

void SystemTextTest::osRelease_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("value");
    QTest::newRow("quoted") << QByteArray("PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"")
                            << QStringLiteral("Debian GNU/Linux 12 (bookworm)");
    QTest::newRow("escaped") << QByteArray("PRETTY_NAME=\"A \\\"B\\\" \\$C\"")
                             << QStringLiteral("A \"B\" $C");
    QTest::newRow("single quotes keep backslashes")
        << QByteArray("PRETTY_NAME='a\\b'") << QStringLiteral("a\\b");
    QTest::newRow("quote not closed") << QByteArray("PRETTY_NAME=\"Half") << QStringLiteral("Half");
    QTest::newRow("another key") << QByteArray("PRETTY_NAMES=x") << QString();
}

void SystemTextTest::osRelease()
{
    QFETCH(QByteArray, line);
    const QByteArray text = "NAME=other\n" + line + "\nID=debian\n";
    QTEST(ProcText::osReleaseValue(text, "PRETTY_NAME"), "value");
}

void SystemTextTest::inputDevices()
{
    // As a laptop lists them, and at the end a block that a read cut off.
    const QByteArray text =
        "I: Bus=0019 Vendor=0000 Product=0001 Version=0000\n"
        "N: Name=\"Power Button\"\nH: Handlers=kbd event0 \nB: PROP=0\nB: EV=3\n"
        "B: KEY=10000000000000 0\n\n"
        "I: Bus=0011 Vendor=0001 Product=0001 Version=ab41\n"
        "N: Name=\"AT Translated Set 2 keyboard\"\nH: Handlers=sysrq kbd event1 leds \nB: PROP=0\n"
        "B: EV=120013\nB: KEY=402000000 3803078f800d001 feffffdfffefffff fffffffffffffffe\nB: "
        "MSC=10\n\n"
        "I: Bus=0003 Vendor=046d Product=c077 Version=0111\n"
        "N: Name=\"\"\nH: Handlers=mouse0 event5 \nB: PROP=0\nB: EV=17\n"
        "B: KEY=70000 0 0 0 0\nB: REL=903\nB: MSC=10\n\n"
        "I: Bus=0018 Vendor=04f3 Product=311c Version=0100\n"
        "N: Name=\"ELAN Touchpad\"\nH: Handlers=mouse1 event6 \nB: PROP=5\nB: EV=1b\n"
        "B: KEY=e520 10000 0 0 0 0\nB: ABS=2e0800000000003\n\n"
        "I: Bus=0018 Vendor=04f3 Product=2a1c Version=0100\n"
        "N: Name=\"ELAN Touchscreen\"\nH: Handlers=mouse2 event7 \nB: PROP=2\nB: EV=b\n"
        "B: KEY=400 0 0 0 0 0\nB: ABS=260800000000003\n\n"
        "I: Bus=00";
    using Kind = InputDeviceDescription::Kind;
    const auto devices = parseInputDevices(text);
    QList<Kind> kinds;
    for (const auto& device : devices) {
        kinds.append(device.kind);
    }
    QCOMPARE(kinds, (QList<Kind>{Kind::Other, Kind::Keyboard, Kind::Mouse, Kind::Trackpad,
                                 Kind::Other, Kind::Other}));
    QCOMPARE(devices.at(1).name, QStringLiteral("AT Translated Set 2 keyboard"));
    QCOMPARE(devices.at(2).name, QString());
    QCOMPARE(devices.at(2).vendor, static_cast<unsigned short>(0x046d));
    QCOMPARE(devices.at(2).product, static_cast<unsigned short>(0xc077));
}

void SystemTextTest::hardwareNames_data()
{
    QTest::addColumn<int>("vendor");
    QTest::addColumn<int>("device");
    QTest::addColumn<QString>("names");
    QTest::newRow("first vendor") << 0x0010 << 0x8139 << QStringLiteral("Allied|Card");
    QTest::newRow("another") << 0x8086 << 0x5916 << QStringLiteral("Intel|HD 620");
    QTest::newRow("a subsystem is no device") << 0x8086 << 0x1028 << QStringLiteral("Intel|");
    QTest::newRow("the next vendor's device") << 0x8086 << 0x0001 << QStringLiteral("Intel|");
    QTest::newRow("past a comment") << 0x9000 << 0x0002 << QStringLiteral("Last|Two");
    QTest::newRow("a class is no vendor") << 0x000c << 0x0003 << QStringLiteral("|");
}

void SystemTextTest::hardwareNames()
{
    const QByteArray ids =
        "0010  Allied\n\t8139  Card\n8086  Intel\n\t5916  HD 620\n\t\t1028 0001  Laptop\n"
        "9000  Last\n\t0001  One\n# a note\n\t0002  Two\nC 0c  Serial bus\n\t03  USB\n";
    QFETCH(int, vendor);
    QFETCH(int, device);
    const HardwareIds::Names found = HardwareIds::find(ids, static_cast<unsigned short>(vendor),
                                                       static_cast<unsigned short>(device));
    QTEST(found.vendor + QLatin1Char('|') + found.device, "names");
}

void SystemTextTest::modelTexts()
{
    QCOMPARE(HardwareIds::modelText("XPS 13  9360\n"), QStringLiteral("XPS 13 9360"));
    QCOMPARE(HardwareIds::modelText("to be filled by o.E.M.\n"), QString());
    QCOMPARE(HardwareIds::modelText(QByteArrayView("Raspberry Pi 4\0rest", 19)),
             QStringLiteral("Raspberry Pi 4"));
}

void SystemTextTest::windowProperties()
{
    constexpr quint64 window = 33;
    // The upper half of each long is Xlib's, and may hold the sign.
    const std::array<unsigned long, 2> longs{0xffffffff80000001UL, 7};
    const std::span bytes = std::as_bytes(std::span(longs));
    const WindowProperty good{window, 32, 2, bytes};
    QCOMPARE(propertyValues(good, window), (std::vector<quint32>{0x80000001U, 7}));
    QVERIFY(propertyValues({window, 32, 0, {}}, window).empty());
    QVERIFY(propertyValues({window, 8, 2, bytes}, window).empty());
    QVERIFY(propertyValues({6, 32, 2, bytes}, window).empty());
    QVERIFY(propertyValues({0, 0, 0, {}}, 0).empty());
    const WindowProperty overstated{window, 32, ~quint64{0}, bytes.first(sizeof(long) + 3)};
    QCOMPARE(propertyValues(overstated, window).size(), size_t{1});
}

void SystemTextTest::execLines_data()
{
    QTest::addColumn<QString>("exec");
    QTest::addColumn<QString>("program");
    const auto row = [](const char* name, const char* exec, const char* program) {
        QTest::newRow(name) << QString::fromLatin1(exec) << QString::fromLatin1(program);
    };
    row("plain", "xterm", "xterm");
    row("field code", "/usr/bin/gimp-2.10 %U", "/usr/bin/gimp-2.10");
    row("quoted, with a space", "\"/opt/My App/run\" --flag", "/opt/My App/run +");
    row("escapes in quotes", "\"/opt/a\\\"b\\$c\"", "/opt/a\"b$c");
    row("percent", "/opt/100%%/run", "/opt/100%/run");
    row("environment", "env -u LANG GDK_BACKEND=x11 FOO=\"a b\" /snap/bin/firefox %u",
        "/snap/bin/firefox");
    row("interpreter", "python3.11 /usr/share/app/main.py", "");
    row("flatpak",
        "/usr/bin/flatpak run --branch=stable --command=firefox --file-forwarding org.x @@u %u @@",
        "firefox !");
    row("flatpak without a command", "flatpak run org.example.App", " !");
    row("quote not closed", "\"/usr/bin/xterm", "");
    row("only a wrapper", "env FOO=1", "");
    row("ends in a percent sign", "xterm %", "xterm");
}

void SystemTextTest::execLines()
{
    QFETCH(QString, exec);
    const ExecLine::Program found = ExecLine::program(ExecLine::words(exec));
    QTEST(found.name + (found.hasArguments ? QStringLiteral(" +") : QString()) +
              (found.isSandboxed ? QStringLiteral(" !") : QString()),
          "program");
}

REGISTER_TEST(SystemTextTest);
#include "SystemTextTest.moc"
