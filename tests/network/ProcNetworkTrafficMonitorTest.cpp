// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkInterfaces.h"
#include "network/ProcNetworkTrafficMonitor.h"
#include "support/LogCapture.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class ProcNetworkTrafficMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readsTheKernelsText_data();
    void readsTheKernelsText();
    void readsAnyCut();
    void countsWhatCameSince();
    void beginsAnewWithALowerNumber();
    void recordsInterfaces();
    void saysOnceWhatItCannotRead();
    void countsThisMachine();

private:
    /// The deltas that follow when the kernel says so, as "name download upload".
    QStringList take(const QByteArray& lines);
    void addAddress(const QString& name, const QByteArray& address) const;

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<ProcNetworkTrafficMonitor> m_monitor;
};

namespace {

const QByteArray Header =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop "
    "fifo colls carrier compressed\n";

QByteArray line(const QByteArray& name, quint64 received, quint64 transmitted)
{
    return name + ": " + QByteArray::number(received) + "  5 0 0 0 0 0 0 " +
           QByteArray::number(transmitted) + "  6 0 0 0 0 0 0\n";
}

QStringList textsOf(const QList<InterfaceCounters>& counters)
{
    QStringList texts;
    for (const InterfaceCounters& one : counters) {
        texts.append(
            QStringLiteral("%1 %2 %3").arg(one.name).arg(one.received).arg(one.transmitted));
    }
    return texts;
}

} // namespace

void ProcNetworkTrafficMonitorTest::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_root->path()).mkpath(QStringLiteral("proc/net")));
    QVERIFY(writeFile(m_root->filePath(QStringLiteral("proc/net/dev")), Header));
    m_monitor = std::make_unique<ProcNetworkTrafficMonitor>(m_root->path());
}

QStringList ProcNetworkTrafficMonitorTest::take(const QByteArray& lines)
{
    if (!writeFile(m_root->filePath(QStringLiteral("proc/net/dev")), Header + lines)) {
        return {};
    }
    QStringList texts;
    for (const InterfaceBandwidth& one : m_monitor->getInterfacesCounters()) {
        texts.append(QStringLiteral("%1 %2 %3")
                         .arg(one.interface.name)
                         .arg(one.total.download)
                         .arg(one.total.upload));
        // It cannot tell them apart.
        if (one.internet.download != one.total.download ||
            one.internet.upload != one.total.upload) {
            texts.append(QStringLiteral("differs"));
        }
    }
    return texts;
}

void ProcNetworkTrafficMonitorTest::addAddress(const QString& name, const QByteArray& address) const
{
    const QString directory = QStringLiteral("sys/class/net/") + name;
    QVERIFY(QDir(m_root->path()).mkpath(directory));
    QVERIFY(writeFile(m_root->filePath(directory + QStringLiteral("/address")), address));
}

void ProcNetworkTrafficMonitorTest::readsTheKernelsText_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one") << line("  eth0", 1, 2) << QStringLiteral("eth0 1 2");
    QTest::newRow("number beside the colon")
        << QByteArray("  eth0:17 1 0 0 0 0 0 0 18 1 0 0 0 0 0 0\n") << QStringLiteral("eth0 17 18");
    QTest::newRow("largest numbers")
        << line("eth0", ~quint64{0}, ~quint64{0})
        << QStringLiteral("eth0 18446744073709551615 18446744073709551615");
    QTest::newRow("loopback and personal area")
        << line("    lo", 1, 2) + line("lowpan0", 1, 2) + line("pan1", 1, 2) + line("LO", 3, 4)
        << QStringLiteral("LO 3 4");
    QTest::newRow("broken lines")
        << QByteArray("eth1: 1 2 3\neth2: x 0 0 0 0 0 0 0 1 0\neth3\n: 1 0 0 0 0 0 0 0 1\n"
                      "eth4: 18446744073709551616 0 0 0 0 0 0 0 1\n\n") +
               line("eth5", 1, 2)
        << QStringLiteral("eth5 1 2");
}

void ProcNetworkTrafficMonitorTest::readsTheKernelsText()
{
    QFETCH(const QByteArray, lines);
    QFETCH(const QString, expected);
    QCOMPARE(textsOf(interfaceCounters(Header + lines)).join(u','), expected);
}

void ProcNetworkTrafficMonitorTest::readsAnyCut()
{
    const QByteArray text = Header + line("eth0", 1, 23);
    for (qsizetype size = 0; size <= text.size(); ++size) {
        QVERIFY(interfaceCounters(QByteArrayView(text).first(size)).size() <= 1);
    }
}

void ProcNetworkTrafficMonitorTest::countsWhatCameSince()
{
    QCOMPARE(take(line("eth0", 5'000'000'000, 7)), QStringList(QStringLiteral("eth0 0 0")));
    QCOMPARE(take(line("eth0", 5'000'001'000, 26)), QStringList(QStringLiteral("eth0 950 18")));
    QCOMPARE(take(line("eth0", 5'000'001'000, 26)), QStringList(QStringLiteral("eth0 0 0")));
    QCOMPARE(take(line("eth0", 5'000'001'001, 126) + line("eth1", 99, 99)),
             QStringList({QStringLiteral("eth0 0 95"), QStringLiteral("eth1 0 0")}));
}

void ProcNetworkTrafficMonitorTest::beginsAnewWithALowerNumber()
{
    const QStringList nothing(QStringLiteral("eth0 0 0"));
    take(line("eth0", 4'294'967'000, 1000));
    QCOMPARE(take(line("eth0", 200, 2000)), nothing); // Wrapped, or made anew.
    QCOMPARE(take(line("eth0", 300, 2000)), QStringList(QStringLiteral("eth0 95 0")));
    QCOMPARE(take({}), QStringList());
    QCOMPARE(take(line("eth0", 1'000'000'000, 9'000'000)), nothing); // Was away.
}

void ProcNetworkTrafficMonitorTest::recordsInterfaces()
{
    addAddress(QStringLiteral("wlan0"), "02:00:00:aa:bb:cc\n");
    addAddress(QStringLiteral("eth0"), "02:00:00:aa:bb:dd\n");
    take(line("wlan0", 1, 2) + line("eth0", 1, 2));
    const QList<InterfaceBandwidth> taken = m_monitor->getInterfacesCounters();
    QCOMPARE(taken.size(), 2);
    QCOMPARE(taken[0].interface.mac_address, QStringLiteral("02:00:00:AA:BB:CC"));
    QCOMPARE(taken[0].interface.description, QStringLiteral("wlan0"));
    QVERIFY(taken[0].interface.wifi && !taken[1].interface.wifi);
}

void ProcNetworkTrafficMonitorTest::saysOnceWhatItCannotRead()
{
    const LogCapture log;
    take(line("eth0", 1, 2));
    m_monitor->updateNetworkDevices();
    take(line("eth0", 3, 4));
    const QString path = m_root->filePath(QStringLiteral("sys/class/net/eth0/address"));
    QCOMPARE(log.count(QStringLiteral("Failed to open: ") + path), 1);
    addAddress(QStringLiteral("eth0"), "02:00:00:aa:bb:cc\n");
    m_monitor->updateNetworkDevices();
    take(line("eth0", 5, 6));
    QVERIFY(QFile::remove(path));
    m_monitor->updateNetworkDevices();
    take(line("eth0", 7, 8));
    QCOMPARE(log.count(QStringLiteral("Failed to open: ") + path), 2);
}

void ProcNetworkTrafficMonitorTest::countsThisMachine()
{
    const LogCapture log;
    ProcNetworkTrafficMonitor monitor;
    QVERIFY(monitor.isSupported());
    QCOMPARE(log.count(QStringLiteral("Fallback to ProcNetworkTrafficMonitor. Only interface "
                                      "statistics available.")),
             1);
    for (const InterfaceBandwidth& one : monitor.getInterfacesCounters()) {
        QVERIFY(one.interface.index > 0);
        for (const Interface& known : networkInterfaces(QStringLiteral("/sys/class/net"))) {
            if (known.name == one.interface.name) {
                QCOMPARE(one.interface.mac_address, known.mac_address);
            }
        }
    }
    QVERIFY(monitor.getPortsBandwidth().isEmpty() && monitor.getInterfacesBandwidth().isEmpty());
}

REGISTER_TEST(ProcNetworkTrafficMonitorTest);

#include "ProcNetworkTrafficMonitorTest.moc"
