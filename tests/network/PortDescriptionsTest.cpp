// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkPorts.h"
#include "network/PortDescriptionFile.h"
#include "network/thread_networkPortsUpdater.h"
#include "support/LogCapture.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

namespace {

/// "80 TCP text", in the order of the texts.
QStringList listed(const PortDescriptions& descriptions)
{
    QStringList lines;
    const auto add = [&](const QHash<int, QString>& table, const QString& transport) {
        for (auto entry = table.cbegin(); entry != table.cend(); ++entry) {
            lines << QStringLiteral("%1 %2 %3").arg(entry.key()).arg(transport, *entry);
        }
    };
    add(descriptions.tcp, QStringLiteral("TCP"));
    add(descriptions.udp, QStringLiteral("UDP"));
    lines.sort();
    return lines;
}

/// A data directory and the descriptions loaded from it.
class Client
{
public:
    QString path(const char* name) const { return m_directory.filePath(QLatin1String(name)); }

    bool write(const char* name, const QByteArray& content) const
    {
        return writeFile(path(name), content);
    }

    /// Waits for both files.
    bool load()
    {
        QSignalSpy changed(&m_ports, &NetworkPorts::changed);
        m_ports.load(m_directory.path());
        return QTest::qWaitFor([&] { return changed.size() == 2; });
    }

    QString tcp(int port) const { return m_ports.description(port, Utils::TrafficType::Tcp); }

    const NetworkPorts& ports() const { return m_ports; }

private:
    QTemporaryDir m_directory;
    NetworkPorts m_ports;
};

constexpr const char* Fetched = "network-ports.csv";
constexpr const char* Custom = "network-ports-custom.csv";

} // namespace

class PortDescriptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data();
    void parses();
    void tellsWhatItReadAndWhatNot();
    void knowsServicesWithoutAnyFile();
    void putsTheUsersEntriesFirst();
    void mergesInAnyOrder();
    void fallsBackFromAFileItCannotRead_data();
    void fallsBackFromAFileItCannotRead();
    void endsWhileLoading();
};

void PortDescriptionsTest::parses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("known");
    QTest::addColumn<int>("faults");
    const auto row = [](const char* name, const char* text, const QStringList& known, int faults) {
        QTest::newRow(name) << QByteArray(text) << known << faults;
    };
    const QStringList web{QStringLiteral("80 TCP Web")};
    row("plain", "Port;Transport;Description\n80;TCP;Web\n80;UDP;Web too\n",
        {QStringLiteral("80 TCP Web"), QStringLiteral("80 UDP Web too")}, 0);
    row("no line feed at the end", "80;TCP;Web", web, 0);
    row("byte order mark and carriage returns",
        "\xef\xbb\xbfPort;Transport;Description\r\n80;TCP;Web\r\n\r\n", web, 0);
    row("blanks around the fields", " 80 ; TCP ; Web ", web, 0);
    row("separators in the description", "80;TCP;a;b;\n", {QStringLiteral("80 TCP a;b;")}, 0);
    row("not ASCII", "80;TCP;Zür\xff\n", {QString::fromUtf8("80 TCP Zür\xef\xbf\xbd")}, 0);
    row("the later of two", "80;TCP;Old\n80;TCP;Web\n", web, 0);
    row("first and last port", "0;UDP;a\n65535;UDP;b\n",
        {QStringLiteral("0 UDP a"), QStringLiteral("65535 UDP b")}, 0);
    row("no ports", "65536;TCP;a\n-1;TCP;a\n;TCP;a\n0x50;TCP;a\n80 81;TCP;a\n80;TCP;Web\n", web, 5);
    row("no transports", "80;tcp;a\n80;SCTP;a\n80;;a\n80;TCP;Web\n", web, 3);
    row("too few separators", "80;TCP\nPort;TCP\n# text\n80;TCP;Web\n", web, 3);
}

void PortDescriptionsTest::parses()
{
    QFETCH(QByteArray, text);
    const auto file = PortDescriptionFile::parse(text);
    QTEST(listed(file.descriptions), "known");
    QTEST(int(file.faultCount), "faults");
}

void PortDescriptionsTest::tellsWhatItReadAndWhatNot()
{
    const LogCapture log;
    const QTemporaryDir directory;
    const QString path = directory.filePath(QLatin1String(Fetched));
    thread_networkPortsUpdater updater;
    QVERIFY(!updater.execute(path, false));
    QVERIFY(log.contains(QStringLiteral("Network ports description file (") + path +
                         QStringLiteral(") does not exist! The client will not be able to "
                                        "translate port numbers to human readable form.\n")));
    QVERIFY(writeFile(path, "Port;Transport;Description\n80;TCP\nabc;TCP;a\n80;DCCP;a\n80;TCP;a\n"
                            "81;TCP;a\n80;UDP;a\n" +
                                QByteArray("?\n").repeated(1000)));
    QVERIFY(updater.execute(path, false));
    for (const char* line :
         {"Network-ports.csv: Malformed line, skipping it: 80;TCP\n",
          "Network-ports.csv: Port number is not a number (abc), found on line 3, ignoring line.\n",
          "Network-ports.csv: Unknown protocol (DCCP) found on line 4, ignoring it.\n",
          "Network-ports.csv: Ignored 993 further lines with such faults.\n",
          ("Read file 'network-ports.csv' for port (TCP/UDP) translations. Read 1007 lines, added "
           "2 tcp and 1 udp records.\n")}) {
        QVERIFY2(log.contains(QLatin1String(line)), line);
    }
    QCOMPARE(log.count(QStringLiteral("skipping it")), 8); // with the others, ten
}

void PortDescriptionsTest::knowsServicesWithoutAnyFile()
{
    const LogCapture log;
    Client client;
    QVERIFY(!client.ports().isKnown(443, Utils::TrafficType::Tcp)); // Not loaded yet.
    QVERIFY(client.load());
    QVERIFY(client.tcp(443).contains(QStringLiteral("https")));
    QVERIFY(client.ports().isKnown(53, Utils::TrafficType::Udp));
    QVERIFY(!client.ports().isKnown(53, Utils::TrafficType::Other));
    QVERIFY(!client.ports().isKnown(3, Utils::TrafficType::Tcp));
    QCOMPARE(log.count(QStringLiteral("warn ")), 0); // Neither file need be there.
}

void PortDescriptionsTest::putsTheUsersEntriesFirst()
{
    Client client;
    QVERIFY(client.write(Custom, "80;TCP;Mine\n4711;TCP;Mine too\n443;TCP;\n"));
    QVERIFY(client.load());
    QCOMPARE(client.tcp(80), QStringLiteral("Mine"));
    QCOMPARE(client.tcp(4711), QStringLiteral("Mine too"));
    QVERIFY(!client.ports().isKnown(443, Utils::TrafficType::Tcp)); // Emptied on purpose.

    QVERIFY(client.write(Fetched, "80;TCP;Fetched\n22;TCP;Fetched\n"));
    QVERIFY(client.load());
    QCOMPARE(client.tcp(80), QStringLiteral("Mine"));
    QCOMPARE(client.tcp(22), QStringLiteral("Fetched"));

    QVERIFY(QFile::remove(client.path(Custom)));
    QVERIFY(client.load());
    QCOMPARE(client.tcp(80), QStringLiteral("Fetched"));
    QCOMPARE(client.tcp(4711), QString());
    QCOMPARE(client.tcp(443), QString()); // The fetched file replaces the one built in.
}

void PortDescriptionsTest::mergesInAnyOrder()
{
    const QTemporaryDir directory;
    const QString fetched = directory.filePath(QLatin1String(Fetched));
    const QString custom = directory.filePath(QLatin1String(Custom));
    QVERIFY(writeFile(fetched, "80;TCP;Fetched\n81;TCP;Fetched\n"));
    QVERIFY(writeFile(custom, "80;TCP;Mine\n"));
    thread_networkPortsUpdater updater;
    PortDescriptions known;
    connect(&updater, &thread_networkPortsUpdater::loaded, this,
            [&](const auto& tcp, const auto& udp) {
                known = {tcp, udp};
            });
    const QStringList both{QStringLiteral("80 TCP Mine"), QStringLiteral("81 TCP Fetched")};
    QVERIFY(updater.execute(custom, true));
    QVERIFY(updater.execute(fetched, false));
    QCOMPARE(listed(known), both);

    // What was known stays where a file is damaged, and the user's entries go with their file.
    QVERIFY(QFile::remove(fetched) && QDir().mkpath(fetched));
    QVERIFY(!updater.execute(fetched, false));
    QCOMPARE(listed(known), both);
    QVERIFY(QFile::remove(custom));
    QVERIFY(updater.execute(custom, true));
    QCOMPARE(listed(known).constFirst(), QStringLiteral("80 TCP Fetched"));
}

void PortDescriptionsTest::fallsBackFromAFileItCannotRead_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("told");
    QTest::newRow("directory") << QStringLiteral("directory") << QStringLiteral("Unable to open");
    QTest::newRow("pipe") << QStringLiteral("pipe") << QStringLiteral("Unable to open");
    QTest::newRow("too large") << QStringLiteral("large")
                               << QStringLiteral("is larger than 32 MiB and not used.");
}

void PortDescriptionsTest::fallsBackFromAFileItCannotRead()
{
    QFETCH(QString, kind);
    QFETCH(QString, told);
    const LogCapture log;
    Client client;
    const QString path = client.path(Fetched);
    QVERIFY(client.write(Custom, "4711;TCP;Mine\n"));
    if (kind == QLatin1String("directory")) {
        QVERIFY(QDir().mkpath(path));
    } else if (kind == QLatin1String("pipe")) {
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), S_IRUSR), 0);
    } else {
        QVERIFY(client.write(Fetched, "80;TCP;Fetched\n"));
        QVERIFY(QFile::resize(path, thread_networkPortsUpdater::MostBytes + 1));
    }
    QVERIFY(client.load());
    QVERIFY(client.tcp(443).contains(QStringLiteral("https")));
    QCOMPARE(client.tcp(4711), QStringLiteral("Mine"));
    QVERIFY2(log.contains(told), qPrintable(log.text()));
}

void PortDescriptionsTest::endsWhileLoading()
{
    const QTemporaryDir directory;
    QByteArray text;
    for (int i = 0; i < 100'000; ++i) {
        text +=
            QByteArray::number(i % 65536) + ";UDP;Service number " + QByteArray::number(i) + '\n';
    }
    QVERIFY(writeFile(directory.filePath(QLatin1String(Fetched)), text));
    NetworkPorts().load(directory.path());
    NetworkPorts ports;
    QSignalSpy changed(&ports, &NetworkPorts::changed);
    ports.load(directory.path());
    QTRY_COMPARE(changed.size(), 2);
    QCOMPARE(ports.description(4711, Utils::TrafficType::Udp),
             QStringLiteral("Service number 70247"));
}

REGISTER_TEST(PortDescriptionsTest);
#include "PortDescriptionsTest.moc"
