// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/CountryDatabase.h"
#include "network/CountryFile.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QHostAddress>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

namespace {

IpAddress address(const QString& text)
{
    const QHostAddress parsed(text);
    return parsed.protocol() == QAbstractSocket::IPv4Protocol
               ? IpAddress::fromIpv4(parsed.toIPv4Address())
               : IpAddress::fromIpv6(parsed.toIPv6Address().c);
}

/// 8.0.0.0/6 is American, 0.0.0.0/8 nobody's and, in a file of IPv6, 2000::/4 is Irish; 200.0.0.0/8
/// holds no code.
CountryFile sample(int ipVersion, CountryFile::Layout layout)
{
    const std::string ipv4(ipVersion == 6 ? 96 : 0, '0');
    CountryFile file(ipVersion, layout);
    file.add(ipv4 + "000010", "US").add(ipv4 + "00000000", "ZZ").add(ipv4 + "11001000", "x?");
    if (ipVersion == 6) {
        file.add("0010", "IE");
    }
    return file;
}

} // namespace

class CountryDatabaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheCountry_data();
    void tellsTheCountry();
    void refusesWhatHoldsNoCountries_data();
    void refusesWhatHoldsNoCountries();
    void survivesDamage();
    void outlivesTheFile_data();
    void outlivesTheFile();

private:
    QString filled(const QByteArray& content) const
    {
        const QString path = m_directory.filePath(QStringLiteral("GeoIP.dat"));
        // A file that is written anew in place waits for the disk when it is closed.
        QFile::remove(path);
        return writeFile(path, content) ? path : QString();
    }

    QTemporaryDir m_directory;
};

void CountryDatabaseTest::tellsTheCountry_data()
{
    using Layout = CountryFile::Layout;
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QString>("code");
    const QByteArray nested = sample(6, Layout::Nested).bytes();
    const QByteArray flat = sample(6, Layout::Flat).bytes();
    const QByteArray onlyIpv4 = sample(4, Layout::Flat).bytes();
    const QByteArray onlyIpv6 = CountryFile(6, Layout::Flat).add("0010", "IE").bytes();
    const QByteArray none;
    const auto row = [](const char* name, const QByteArray& file, const char* end,
                        const char* code) {
        QTest::newRow(name) << file << QString::fromLatin1(end) << QString::fromLatin1(code);
    };
    row("nested", nested, "8.8.8.8", "US");
    row("flat", flat, "8.8.8.8", "US");
    row("the last of a network", flat, "11.255.255.255", "US");
    row("beyond the network", flat, "12.0.0.0", "??");
    row("IPv6, nested", nested, "2001:db8::1", "IE");
    row("IPv6, flat", flat, "2fff::", "IE");
    row("not two capitals", flat, "200.1.2.3", "??");
    row("IPv4 in a file of IPv4", onlyIpv4, "8.8.8.8", "US");
    row("IPv6 in a file of IPv4", onlyIpv4, "2001:db8::1", "??");
    row("IPv4 in a file without it", onlyIpv6, "8.8.8.8", "??");
    row("the local network", flat, "192.168.1.7", "LAN");
    row("multicast", flat, "ff02::fb", "LAN");
    row("nobody's address", flat, "0.0.0.0", "??");
    row("no file", none, "8.8.8.8", "??");
    row("the local network without a file", none, "10.0.0.1", "LAN");
}

void CountryDatabaseTest::tellsTheCountry()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, end);
    CountryDatabase countries;
    if (!file.isEmpty()) {
        QCOMPARE(countries.open(filled(file)), QString());
    }
    QTEST(countries.countryCode(address(end)), "code");
}

void CountryDatabaseTest::refusesWhatHoldsNoCountries_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("message");
    const QByteArray whole = sample(6, CountryFile::Layout::Flat).bytes();
    QTest::newRow("empty") << QByteArray()
                           << QStringLiteral("An attempt to read data from the MaxMind DB file "
                                             "failed");
    QTest::newRow("half the metadata")
        << whole.chopped(100)
        << QStringLiteral("The MaxMind DB file's data section contains bad data (unknown data type "
                          "or corrupt data)");
    QTest::newRow("half a tree") << whole.sliced(300)
                                 << QStringLiteral("The MaxMind DB file contains invalid metadata");
    QTest::newRow("other records")
        << CountryFile(6, CountryFile::Layout::Flat).add("0010", "none").bytes()
        << QStringLiteral("The database tells no countries");
}

void CountryDatabaseTest::refusesWhatHoldsNoCountries()
{
    QFETCH(QByteArray, file);
    CountryDatabase countries;
    // Whatever was open is not any more.
    QCOMPARE(countries.open(filled(sample(4, CountryFile::Layout::Flat).bytes())), QString());
    QTEST(countries.open(filled(file)), "message");
    QVERIFY(!countries.isOpen());
    QCOMPARE(countries.countryCode(address(QStringLiteral("8.8.8.8"))), QStringLiteral("??"));
    QCOMPARE(countries.open(m_directory.filePath(QStringLiteral("absent"))),
             QStringLiteral("Error opening the specified MaxMind DB file"));
}

void CountryDatabaseTest::survivesDamage()
{
    const QByteArray whole = sample(6, CountryFile::Layout::Nested).bytes();
    const IpAddress ends[] = {address(QStringLiteral("8.8.8.8")),
                              address(QStringLiteral("200.1.2.3")),
                              address(QStringLiteral("2001:db8::1"))};
    const auto lookUp = [&](const QByteArray& damaged) {
        CountryDatabase countries;
        countries.open(filled(damaged));
        for (const IpAddress& end : ends) {
            const QString code = countries.countryCode(end);
            QVERIFY2(code.size() == 2 && code == code.toUpper(), qPrintable(code));
        }
    };
    for (qsizetype size = 0; size < whole.size(); ++size) {
        lookUp(whole.first(size));
    }
    QRandomGenerator random(1);
    for (int round = 0; round < 500; ++round) {
        QByteArray damaged = whole;
        for (int flips = 0; flips < 4; ++flips) {
            const auto at = static_cast<qsizetype>(random.bounded(static_cast<int>(whole.size())));
            damaged[at] = static_cast<char>(random.bounded(256));
        }
        lookUp(damaged);
    }
}

void CountryDatabaseTest::outlivesTheFile_data()
{
    QTest::addColumn<bool>("isRemoved");
    QTest::newRow("cut short in place") << false;
    QTest::newRow("removed") << true;
}

void CountryDatabaseTest::outlivesTheFile()
{
    QFETCH(bool, isRemoved);
    const QString path = filled(sample(6, CountryFile::Layout::Flat).bytes());
    CountryDatabase countries;
    QCOMPARE(countries.open(path), QString());
    QVERIFY(isRemoved ? QFile::remove(path) : QFile::resize(path, 0));
    QCOMPARE(countries.countryCode(address(QStringLiteral("8.8.8.8"))), QStringLiteral("US"));
}

REGISTER_TEST(CountryDatabaseTest);

#include "CountryDatabaseTest.moc"
