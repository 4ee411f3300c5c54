// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/ComputerFacts.h"
#include "system/FixtureRoot.h"

#include <QJsonDocument>
#include <QTest>

using NetworkMonitor = ComputerFacts::NetworkMonitor;

/// What is told of this computer, on computers made of files.
class ComputerFactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsEachFact();
    void survivesOddFiles_data();
    void survivesOddFiles();
};

namespace {

QString json(const QVariant& value)
{
    return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
}

} // namespace

void ComputerFactsTest::tellsEachFact()
{
    const FixtureRoot root;
    QVERIFY(root.write(QStringLiteral("sys/class/dmi/id/sys_vendor"), "Dell Inc.\n"));
    QVERIFY(root.write(QStringLiteral("sys/class/dmi/id/product_name"), "XPS 13\n"));
    QVERIFY(root.write(QStringLiteral("etc/os-release"), "PRETTY_NAME=\"Debian GNU/Linux 12\"\n"));
    QVERIFY(root.write(QStringLiteral("proc/cpuinfo"), "model name\t: Some Processor\n"));
    QVERIFY(root.write(QStringLiteral("proc/meminfo"), "MemTotal:       16384000 kB\n"));
    QVERIFY(root.write(QStringLiteral("sys/class/drm/card0/device/uevent"), "DRIVER=i915\n"));
    QVERIFY(root.write(QStringLiteral("proc/bus/input/devices"),
                       "I: Bus=0003\nN: Name=\"Mouse, \"wide\"\"\nB: EV=17\nB: KEY=70000 0 0 0 0\n"
                       "B: REL=903\n\n"));
    const QVariantMap facts =
        ComputerFacts(root.path())
            .read({{QStringLiteral("DP-1"), {3840, 2160}}}, NetworkMonitor::Supported);
    const auto text = [&facts](const char* name) {
        return facts.value(QLatin1String(name)).toString();
    };
    QCOMPARE(text("ComputerModel"), QStringLiteral("Dell Inc. XPS 13"));
    QCOMPARE(text("ComputerOS"), QStringLiteral("Debian GNU/Linux 12"));
    QCOMPARE(text("CPUInfo"), QStringLiteral("Some Processor"));
    QCOMPARE(text("MemoryInfo"), QStringLiteral("15.6 GiB"));
    QCOMPARE(text("VideoInfo"), QStringLiteral("i915"));
    QVERIFY(text("ComputerPlatform").startsWith(QLatin1String("Linux ")));
    QCOMPARE(text("isNetworkMonitorSupported"), QStringLiteral("true"));
    QCOMPARE(json(facts.value(QStringLiteral("MouseInfo"))),
             QStringLiteral(R"([{"name":"Mouse, \"wide\""}])"));
    QCOMPARE(json(facts.value(QStringLiteral("KeyboardInfo"))), QStringLiteral("[]"));
    QCOMPARE(json(facts.value(QStringLiteral("MonitorInfo"))),
             QStringLiteral(R"([{"height":2160,"id":"DP-1","width":3840}])"));
}

void ComputerFactsTest::survivesOddFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no text") << QByteArray("\0\xff\xfe\x80\0", 5);
    QTest::newRow("endless line") << QByteArray("N: Name=\"").append(QByteArray(100'000, 'x'));
    QTest::newRow("headings alone") << QByteArray("model name\nMemTotal:\nPRETTY_NAME=\nDRIVER=");
}

void ComputerFactsTest::survivesOddFiles()
{
    QFETCH(QByteArray, content);
    const FixtureRoot root;
    for (const char* file :
         {"sys/class/dmi/id/sys_vendor", "sys/class/dmi/id/product_name", "etc/os-release",
          "proc/cpuinfo", "proc/meminfo", "sys/class/drm/card0/device/uevent",
          "sys/bus/pci/devices/0000:00:02.0/class", "proc/bus/input/devices"}) {
        QVERIFY(root.write(QLatin1String(file), content));
    }
    const QVariantMap facts = ComputerFacts(root.path()).read({}, NetworkMonitor::Unsupported);
    QCOMPARE(facts.size(), 11);
    for (const QVariant& fact : facts) {
        QVERIFY(fact.toString().size() <= ComputerFacts::LongestText);
    }
    QCOMPARE(facts.value(QStringLiteral("CPUInfo")).toString(), QString());
    QCOMPARE(facts.value(QStringLiteral("MemoryInfo")).toString(), QString());
    QCOMPARE(facts.value(QStringLiteral("KeyboardInfo")).toList(), QVariantList());
}

REGISTER_TEST(ComputerFactsTest);
#include "ComputerFactsTest.moc"
