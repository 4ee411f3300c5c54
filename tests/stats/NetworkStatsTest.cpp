// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "base/InstalledFiles.h"
#include "network/CountryFile.h"
#include "stats/ApplicationBandwidthStat.h"
#include "stats/CountryBandwidthStat.h"
#include "stats/InterfaceBandwidthStat.h"
#include "stats/ProtocolBandwidthStat.h"
#include "storage/SettingsKeys.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

using Utils::TrafficType;

const QString Mac = QStringLiteral("02:4F:1C:A0:5E:11");
const QString Browser = QStringLiteral("/usr/bin/browser");

InterfaceBandwidth crossed(const QString& macAddress, const NetworkTraffic& total,
                           const NetworkTraffic& internet)
{
    InterfaceBandwidth bandwidth;
    bandwidth.interface.mac_address = macAddress;
    bandwidth.total = total;
    bandwidth.internet = internet;
    return bandwidth;
}

QDateTime at(int hour)
{
    return {QDate::currentDate(), QTime(hour, 0)};
}

} // namespace

class NetworkStatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void filesPlausibleTakes_data();
    void filesPlausibleTakes();
    void describesInterfaces();
    void startsEachHourAndProfileAtZero();
    void forgetsSecondsAfterAnHour();
    void waitsForOwners_data();
    void waitsForOwners();
    void filesWhatWaitedUnderItsProfile();
    void boundsWhatWaits();
    void leavesExcludedApplicationsOut();
    void filesUndescribedPortsOnRequest_data();
    void filesUndescribedPortsOnRequest();
    void filesTrafficPerCountry();
    void takesAnotherCountryDatabase_data();
    void takesAnotherCountryDatabase();
    void countsOnlyWhatCrossesWhileOn();

private:
    template <typename T>
    std::unique_ptr<T> make()
    {
        auto stat = std::make_unique<T>(&m_client->system, nullptr);
        stat->setEnabled(true);
        return stat;
    }

    QString today(const char* columnsAndTable)
    {
        return m_client->rows(
            QStringLiteral("SELECT %1 WHERE day=date('now', 'localtime') ORDER BY 1, 2, 3")
                .arg(QLatin1String(columnsAndTable)));
    }

    QString seconds(const char* columnsAndTable)
    {
        return m_client->rows(QStringLiteral("SELECT %1_second WHERE time BETWEEN "
                                             "datetime('now', '-5 seconds') AND datetime('now')")
                                  .arg(QLatin1String(columnsAndTable)));
    }

    QString applications()
    {
        return today("hour, path, profile_id, download, upload FROM application_bandwidth");
    }

    /// Writes the client's own country database; false where that failed.
    bool lay(const QByteArray& content) const
    {
        QFile file(geoIp());
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    QString geoIp() const { return m_client->directory() + QStringLiteral("/GeoIP.dat"); }

    /// In which 8.0.0.0/8 is French and 9.0.0.0/8 Danish.
    const QByteArray m_countries = CountryFile(4, CountryFile::Layout::Nested)
                                       .add("00001000", "FR")
                                       .add("00001001", "DK")
                                       .bytes();
    std::unique_ptr<Client> m_client;
};

void NetworkStatsTest::init()
{
    m_client = std::make_unique<Client>();
}

void NetworkStatsTest::cleanup()
{
    m_client.reset();
}

void NetworkStatsTest::filesPlausibleTakes_data()
{
    QTest::addColumn<QString>("macAddress");
    QTest::addColumn<NetworkTraffic>("total");
    QTest::addColumn<NetworkTraffic>("internet");
    QTest::addColumn<bool>("filed");
    constexpr quint64 most = 1'000'000'000;
    const auto row = [](const char* name, const QString& macAddress, const NetworkTraffic& total,
                        const NetworkTraffic& internet, bool filed) {
        QTest::newRow(name) << macAddress << total << internet << filed;
    };
    row("both ways", Mac, {500, 30}, {400, 20}, true);
    row("the most down", Mac, {most, 0}, {most, 0}, true);
    row("the most up", Mac, {0, most}, {}, true);
    row("too much down", Mac, {most + 1, 5}, {5, 5}, false);
    row("too much up", Mac, {5, most + 1}, {5, 5}, false);
    row("nothing", Mac, {}, {}, false);
    row("no hardware address", QString(), {5, 5}, {5, 5}, false);
    row("excluded", QStringLiteral("02:4F:1C:A0:5E:12"), {5, 5}, {5, 5}, false);
}

void NetworkStatsTest::filesPlausibleTakes()
{
    QFETCH(QString, macAddress);
    QFETCH(NetworkTraffic, total);
    QFETCH(NetworkTraffic, internet);
    QFETCH(bool, filed);
    FakeSystem& system = m_client->system;
    system.excludedInterfaces.insert(QStringLiteral("02:4F:1C:A0:5E:12"));
    const auto stat = make<InterfaceBandwidthStat>();
    QSignalSpy taken(stat.get(), &InterfaceBandwidthStat::trafficTaken);
    const QString row = filed ? QStringLiteral("%1|%2").arg(total.download).arg(total.upload)
                              : QStringLiteral("0|0");
    const InterfaceBandwidth record = crossed(macAddress, total, internet);
    int times = 0;
    for (QList<InterfaceBandwidth>* source : {&system.interfaces, &system.counters}) {
        QVERIFY(m_client->exec(QStringLiteral("DELETE FROM network_interface_bandwidth_second")));
        *source = {record};
        stat->doUpdate(at(14), false);
        times += filed ? 1 : 0;
        const QList<QVariant> told = taken.takeFirst();
        QCOMPARE(QStringLiteral("%1|%2").arg(told.at(0).toString(), told.at(1).toString()), row);
        QCOMPARE(seconds("download, upload, mac_address FROM network_interface_bandwidth"),
                 filed ? row + u'|' + Mac : QString());
        QCOMPARE(today("hour, mac_address, download, upload FROM network_interface_bandwidth"),
                 filed ? QStringLiteral("14|%1|%2|%3")
                             .arg(Mac)
                             .arg(total.download * static_cast<quint64>(times))
                             .arg(total.upload * static_cast<quint64>(times))
                       : QString());
        QCOMPARE(m_client->totals.unzurged().download,
                 internet.download * static_cast<quint64>(times));
        QCOMPARE(m_client->totals.unzurged().upload, internet.upload * static_cast<quint64>(times));
    }
    QCOMPARE(m_client->rows(QStringLiteral("SELECT mac_address FROM network_interfaces")),
             filed ? Mac : QString());
}

void NetworkStatsTest::describesInterfaces()
{
    const auto stat = make<InterfaceBandwidthStat>();
    InterfaceBandwidth wired = crossed(Mac, {1, 1}, {});
    for (const bool hasAddresses : {true, false}) {
        wired.interface.description = hasAddresses ? QStringLiteral("enp3s0") : QString();
        wired.interface.wifi = hasAddresses;
        wired.interface.ip_list = {};
        if (hasAddresses) {
            wired.interface.ip_list << QStringLiteral("192.168.1.23") << QStringLiteral("fd00::1");
        }
        m_client->system.interfaces = {wired};
        stat->doUpdate(at(14), false);
        QCOMPARE(m_client->rows(QStringLiteral("SELECT description, wifi, ip_list, last_update "
                                               "BETWEEN datetime('now', '-5 seconds') AND "
                                               "datetime('now') FROM network_interfaces")),
                 hasAddresses ? QStringLiteral("enp3s0|1|192.168.1.23, fd00::1|1")
                              : QStringLiteral("|0||1"));
    }
}

void NetworkStatsTest::startsEachHourAndProfileAtZero()
{
    FakeSystem& system = m_client->system;
    const auto interfaces = make<InterfaceBandwidthStat>();
    const auto applications = make<ApplicationBandwidthStat>();
    const auto protocols = make<ProtocolBandwidthStat>();
    system.portOwners = {{40'000, Browser}, {40'001, Browser}};
    system.knownPorts = {{443, TrafficType::Tcp}};
    for (const auto& [hour, profile] : {std::pair{9, 0}, {9, 0}, {10, 0}, {10, 7}, {10, 7}}) {
        system.interfaces = {crossed(Mac, {3, 1}, {})};
        system.localPorts = {{40'000, {2, 0}}, {40'001, {1, 1}}};
        system.remotePorts[TrafficType::Tcp] = {{443, {3, 1}}};
        for (Stat* stat :
             std::initializer_list<Stat*>{interfaces.get(), applications.get(), protocols.get()}) {
            stat->setStatsProfileId(profile);
            stat->doUpdate(at(hour), false);
        }
    }
    const QString perProfile = QStringLiteral("9|0|6|2,10|0|3|1,10|7|6|2");
    QCOMPARE(today("hour, profile_id, download, upload FROM application_bandwidth"), perProfile);
    QCOMPARE(today("hour, profile_id, download, upload FROM network_protocol_bandwidth"),
             perProfile);
    QCOMPARE(today("hour, download, upload FROM network_interface_bandwidth"),
             QStringLiteral("9|6|2,10|9|3"));
    const UnzurgedCounts counts = m_client->totals.unzurgedPerApplication().value(Browser);
    QCOMPARE(counts.download, 15U);
    QCOMPARE(counts.upload, 5U);
}

void NetworkStatsTest::forgetsSecondsAfterAnHour()
{
    const auto interfaces = make<InterfaceBandwidthStat>();
    const auto applications = make<ApplicationBandwidthStat>();
    for (const char* minutes : {"0", "60", "62"}) {
        for (const char* table : {"network_interface_bandwidth_second (mac_address",
                                  "application_bandwidth_second (path"}) {
            QVERIFY(m_client->exec(QStringLiteral("INSERT INTO %1, time) VALUES ('x', "
                                                  "datetime('now', '-%2 minutes'))")
                                       .arg(QLatin1String(table), QLatin1String(minutes))));
        }
    }
    interfaces->doInfrequentUpdate(at(14), false);
    applications->doInfrequentUpdate(at(14), false);
    for (const char* table : {"network_interface_bandwidth", "application_bandwidth"}) {
        QCOMPARE(
            m_client
                ->value(QStringLiteral("SELECT count(*) FROM %1_second").arg(QLatin1String(table)))
                .toInt(),
            2);
    }
}

void NetworkStatsTest::waitsForOwners_data()
{
    QTest::addColumn<qint64>("waitedMs");
    QTest::addColumn<QString>("filed");
    const QString all = QStringLiteral("14|/usr/bin/browser|0|15|25");
    const QString late = QStringLiteral("14|/usr/bin/browser|0|5|5");
    QTest::newRow("four minutes") << Q_INT64_C(240'000) << all;
    QTest::newRow("five minutes") << Q_INT64_C(300'000) << all;
    QTest::newRow("more") << Q_INT64_C(300'001) << late;
    QTest::newRow("clock set back") << Q_INT64_C(-1) << late;
}

void NetworkStatsTest::waitsForOwners()
{
    QFETCH(qint64, waitedMs);
    QFETCH(QString, filed);
    const QDateTime start = at(14).addSecs(1'800);
    const LogCapture log(Log::Level::Debug);
    FakeSystem& system = m_client->system;
    const auto stat = make<ApplicationBandwidthStat>();
    stat->doUpdate(start, false);
    QVERIFY(system.askedPorts.isEmpty()); // Nobody is asked about nothing.
    system.localPorts = {{40'000, {4, 12}}};
    stat->doUpdate(start, false);
    system.localPorts = {{40'000, {6, 8}}};
    stat->doUpdate(start.addMSecs(waitedMs / 2), false);
    QCOMPARE(applications(), QString());
    system.portOwners = {{40'000, Browser}};
    system.localPorts = {{40'000, {5, 5}}};
    stat->doUpdate(start.addMSecs(waitedMs), false);
    QCOMPARE(applications(), filed);
    const bool isDropped = !filed.endsWith(QStringLiteral("25"));
    QCOMPARE(log.count(QStringLiteral(
                 "Dropped 10 bytes downloaded and 20 uploaded of 1 ports without a known owner")),
             isDropped ? 1 : 0);
    QCOMPARE(seconds("path, download, upload, profile_id FROM application_bandwidth"),
             isDropped ? QStringLiteral("/usr/bin/browser|5|5|0")
                       : QStringLiteral("/usr/bin/browser|15|25|0"));
    system.askedPorts.clear();
    stat->doUpdate(at(15), false);
    QVERIFY(system.askedPorts.isEmpty());
}

void NetworkStatsTest::filesWhatWaitedUnderItsProfile()
{
    FakeSystem& system = m_client->system;
    const auto stat = make<ApplicationBandwidthStat>();
    stat->setStatsProfileId(3);
    system.localPorts = {{40'000, {1, 2}}};
    stat->flush(at(14));
    stat->setStatsProfileId(7);
    system.localPorts = {{40'000, {4, 8}}};
    stat->flush(at(14));
    system.portOwners = {{40'000, Browser}};
    stat->flush(at(14));
    QCOMPARE(applications(), QStringLiteral("14|/usr/bin/browser|3|1|2,14|/usr/bin/browser|7|4|8"));
    QCOMPARE(system.askedPorts, QList<QSet<unsigned short>>(3, {40'000}));
}

void NetworkStatsTest::boundsWhatWaits()
{
    const LogCapture log(Log::Level::Debug);
    FakeSystem& system = m_client->system;
    const auto stat = make<ApplicationBandwidthStat>();
    QHash<unsigned short, QString> owners;
    for (int port = 1; port <= UnownedTraffic::MostPorts + 10; ++port) {
        const auto number = static_cast<unsigned short>(port);
        system.localPorts.insert(number, {1, 1});
        owners.insert(number, Browser);
    }
    const QHash<unsigned short, NetworkTraffic> scanned = system.localPorts;
    stat->doUpdate(at(14), false);
    QVERIFY(
        log.contains(QStringLiteral("Dropped 10 bytes downloaded and 10 uploaded of 10 ports")));
    system.portOwners = owners;
    stat->doUpdate(at(14), false);
    QCOMPARE(applications(), QStringLiteral("14|/usr/bin/browser|0|4096|4096"));
    system.localPorts = scanned; // All of them have an owner at once, and none has to wait.
    stat->doUpdate(at(15), false);
    QCOMPARE(applications().section(u',', 1), QStringLiteral("15|/usr/bin/browser|0|4106|4106"));
}

void NetworkStatsTest::leavesExcludedApplicationsOut()
{
    FakeSystem& system = m_client->system;
    const auto stat = make<ApplicationBandwidthStat>();
    system.excludedApplications = {Browser};
    system.portOwners = {{40'000, Browser}, {40'001, QStringLiteral("/usr/bin/mail")}};
    system.localPorts = {{40'000, {1, 2}}, {40'001, {3, 4}}};
    stat->doUpdate(at(14), false);
    QCOMPARE(applications(), QStringLiteral("14|/usr/bin/mail|0|3|4"));
    QCOMPARE(m_client->totals.unzurgedPerApplication().keys(),
             QStringList(QStringLiteral("/usr/bin/mail")));
    system.excludedApplications.clear(); // What was left out does not come back.
    stat->doUpdate(at(15), false);
    QCOMPARE(applications(), QStringLiteral("14|/usr/bin/mail|0|3|4"));
}

void NetworkStatsTest::filesUndescribedPortsOnRequest_data()
{
    QTest::addColumn<bool>("recordsUnknown");
    QTest::addColumn<QString>("filed");
    const QString known = QStringLiteral("53|TCP|1|2,53|UDP|3|4");
    QTest::newRow("off") << false << known;
    QTest::newRow("on") << true << known + QStringLiteral(",443|TCP|5|6,443|UDP|7|8,53|OTHER|9|10");
}

void NetworkStatsTest::filesUndescribedPortsOnRequest()
{
    QFETCH(bool, recordsUnknown);
    QFETCH(QString, filed);
    FakeSystem& system = m_client->system;
    const auto stat = make<ProtocolBandwidthStat>();
    Settings::instance().setValue(SettingsKeys::StatNetProtocolRecordUnknown, recordsUnknown);
    system.knownPorts = {{53, TrafficType::Tcp}, {53, TrafficType::Udp}};
    system.remotePorts = {{TrafficType::Tcp, {{53, {1, 2}}, {443, {5, 6}}}},
                          {TrafficType::Udp, {{53, {3, 4}}, {443, {7, 8}}}},
                          {TrafficType::Other, {{53, {9, 10}}}}};
    stat->doUpdate(at(14), false);
    QStringList rows = filed.split(u',');
    rows.sort();
    QStringList found =
        today("port_number, protocol, download, upload FROM network_protocol_bandwidth")
            .split(u',');
    found.sort();
    QCOMPARE(found, rows);
}

void NetworkStatsTest::filesTrafficPerCountry()
{
    const LogCapture log(Log::Level::Debug);
    QVERIFY(lay(m_countries));
    const auto stat = make<CountryBandwidthStat>();
    for (const auto& [hour, profile] : {std::pair{9, 0}, {9, 0}, {10, 0}, {10, 7}}) {
        stat->setStatsProfileId(profile);
        m_client->system.addresses = {{IpAddress::fromIpv4(0x08080808), {100, 10}},
                                      {IpAddress::fromIpv4(0x08080404), {200, 20}},
                                      {IpAddress::fromIpv4(0x09010101), {5, 6}},
                                      {IpAddress::fromIpv4(0x0a000001), {7, 8}},
                                      {IpAddress::fromIpv4(0x30000001), {9, 10}}};
        stat->doUpdate(at(hour), false);
    }
    QCOMPARE(log.count(QStringLiteral("Country FR downloaded 300 and uploaded 30")), 4);
    QCOMPARE(today("hour, profile_id, country, download, upload FROM country_bandwidth"),
             QStringLiteral("9|0|??|18|20,9|0|DK|10|12,9|0|FR|600|60,9|0|LAN|14|16,"
                            "10|0|??|9|10,10|0|DK|5|6,10|0|FR|300|30,10|0|LAN|7|8,"
                            "10|7|??|9|10,10|7|DK|5|6,10|7|FR|300|30,10|7|LAN|7|8"));
}

void NetworkStatsTest::takesAnotherCountryDatabase_data()
{
    QTest::addColumn<bool>("isDamaged"); ///< The client's own database; it is missing if not.
    QTest::newRow("missing") << false;
    QTest::newRow("damaged") << true;
}

void NetworkStatsTest::takesAnotherCountryDatabase()
{
    QFETCH(bool, isDamaged);
    const LogCapture log;
    QVERIFY(!isDamaged || lay(m_countries.first(m_countries.size() / 2)));
    const auto stat = make<CountryBandwidthStat>();
    const auto opened = [&log](const QString& path) {
        return log.count(QStringLiteral("Opening GeoIP database: ") + path);
    };
    QCOMPARE(opened(geoIp()), isDamaged ? 1 : 0);
    QCOMPARE(log.count(QStringLiteral("Unable to open GeoIP database! Error: ")),
             isDamaged ? 1 : 0);
    const QString installed = installedFile(QStringLiteral("country.mmdb"));
    const IpAddress french = IpAddress::fromIpv4(0x08080808);
    m_client->system.addresses = {{french, {1, 2}}};
    stat->doUpdate(at(9), false);
    QVERIFY(m_client->system.addresses.isEmpty());
    if (installed.isEmpty()) {
        QCOMPARE(today("country, 0, 0 FROM country_bandwidth"), QString());
    } else {
        QCOMPARE(opened(installed), 1);
        QCOMPARE(today("download, 0, 0 FROM country_bandwidth"), QStringLiteral("1|0|0"));
    }
    QVERIFY(lay(m_countries));
    stat->reloadGeoDB();
    m_client->system.addresses = {{french, {3, 4}}};
    stat->doUpdate(at(10), false);
    QCOMPARE(today("hour, country, download, upload FROM country_bandwidth").section(u',', -1),
             QStringLiteral("10|FR|3|4"));
}

void NetworkStatsTest::countsOnlyWhatCrossesWhileOn()
{
    FakeSystem& system = m_client->system;
    QVERIFY(lay(m_countries));
    const std::array<std::unique_ptr<Stat>, 4> stats{
        make<InterfaceBandwidthStat>(), make<ApplicationBandwidthStat>(),
        make<ProtocolBandwidthStat>(), make<CountryBandwidthStat>()};
    const auto cross = [&system] {
        system.interfaces = {crossed(Mac, {1, 1}, {1, 1})};
        system.counters = system.interfaces;
        system.localPorts = {{40'000, {1, 1}}};
        system.addresses = {{IpAddress::fromIpv4(0x08080808), {1, 1}}};
        system.remotePorts = {{TrafficType::Tcp, {{443, {1, 1}}}},
                              {TrafficType::Udp, {{443, {1, 1}}}},
                              {TrafficType::Other, {{443, {1, 1}}}}};
    };
    const auto isTaken = [&system] {
        return system.interfaces.isEmpty() && system.counters.isEmpty() &&
               system.localPorts.isEmpty() && system.remotePorts.isEmpty() &&
               system.addresses.isEmpty();
    };
    QCOMPARE(system.networkHolders, 4);
    system.portOwners = {{40'000, Browser}};
    Settings::instance().setValue(SettingsKeys::StatNetProtocolRecordUnknown, true);
    for (const auto& stat : stats) {
        stat->setEnabled(false);
    }
    QCOMPARE(system.networkHolders, 0);
    cross();
    for (const auto& stat : stats) {
        stat->setEnabled(true);
        stat->update(at(14));
    }
    // One that is off does not let its quantity pile up, for whom else the network may be watched.
    for (const auto& stat : stats) {
        stat->setEnabled(false);
        stat->findChild<QTimer*>()->setInterval(0);
    }
    cross();
    QTRY_VERIFY(isTaken());
    for (const auto& stat : stats) {
        stat->setEnabled(true);
    }
    cross();
    QTest::qWait(20);
    QVERIFY(!isTaken());
    for (const char* table :
         {"0, 0, 0 FROM network_interface_bandwidth", "0, 0, 0 FROM application_bandwidth",
          "0, 0, 0 FROM country_bandwidth", "0, 0, 0 FROM network_protocol_bandwidth"}) {
        QCOMPARE(today(table), QString());
    }
    QCOMPARE(m_client->totals.unzurged(), UnzurgedCounts{});
}

REGISTER_TEST(NetworkStatsTest);
#include "NetworkStatsTest.moc"
