// SPDX-License-Identifier: GPL-3.0-or-later
#include "UploadClient.h"
#include "service/AccountService.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

namespace {

using InfoWhen = ComputerInfoUpload::When;
using SettingsWhen = SettingsUpload::When;

bool fillSettings(const UploadClient& client)
{
    return client.exec("DELETE FROM geekwindow_labels") &&
           client.exec("INSERT INTO geekwindow_labels VALUES (3, 'keys', -4, 5)") &&
           client.exec("INSERT INTO application_ignore VALUES ('/usr/bin/a')") &&
           client.exec("INSERT INTO network_interfaces_ignore VALUES ('AA')") &&
           client.exec("INSERT INTO milestones VALUES (1, 'm', '2026-01-01 12:00:00', "
                       "'2026-01-02 12:00:00', '2026-01-03 12:00:00', 'Keys', 10, 1, 5, 'done')");
}

bool fillUsageStats(const UploadClient& client)
{
    return client.exec("INSERT INTO usage_stats_time VALUES ('MainWindow', '2026-01-01', 5), "
                       "('Overview', '2026-01-01', 6), ('MainWindow', 'TODAY', 7)") &&
           client.exec("INSERT INTO usage_stats_events VALUES ('click', 'zurge', 'Overview', "
                       "'2026-01-01 12:00:00', NULL)");
}

} // namespace

class UploadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysSilent_data();
    void staysSilent();
    void keepsTheIdsOfApplications();
    void offersApplicationsAgain();
    void passesOverOddApplications_data();
    void passesOverOddApplications();
    void sendsComputerInformationOnceItDiffers();
    void tellsNetworksOfThirtyDays();
    void keepsSecretsHere();
    void sendsSettingsOnceTheyChange();
    void sendsProfilesOnceTheyChange();
    void sendsUsageStatsOnceADay();
    void tellsTheSizeOfTheDatabase();
    void tellsWhatTheServiceTakes();
};

void UploadsTest::staysSilent_data()
{
    QTest::addColumn<bool>("account");
    QTest::addColumn<bool>("offline");
    QTest::addColumn<bool>("lent");
    QTest::newRow("without an account") << false << false << false;
    QTest::newRow("offline") << true << true << false;
    QTest::newRow("database lent") << true << false << true;
}

void UploadsTest::staysSilent()
{
    QFETCH(bool, account);
    QFETCH(bool, offline);
    QFETCH(bool, lent);
    UploadClient client(account ? Someone : AccountIdentity{});
    QVERIFY(fillHeatmaps(client));
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/editor')"));
    QVERIFY(client.exec("INSERT INTO usage_stats_time VALUES ('MainWindow', '2016-01-01', 5)"));
    client.profiles.addProfile(QStringLiteral("Work"));
    set(SettingsKeys::WorkOffline, offline);
    if (lent) {
        client.database.database()->lend();
    }
    QVERIFY(client.makesRequests(
        [](Uploads& uploads) {
            const LogCapture log(Log::Level::Info);
            uploads.uploadHeatmaps();
            uploads.uploadApplications();
            uploads.uploadProfiles();
            uploads.uploadUsageStats();
            uploads.uploadComputerInfo(InfoWhen::Now);
            uploads.uploadApplicationSettings(SettingsWhen::Now);
            for (const char* word : {"request", "pload", "computer info"}) {
                QVERIFY2(!log.contains(QLatin1String(word)), qPrintable(log.text()));
            }
        },
        {}));
    client.database.database()->takeBack();
}

void UploadsTest::keepsTheIdsOfApplications()
{
    UploadClient client;
    QVERIFY(client.exec("INSERT INTO applications (path, name, version) VALUES "
                        "('/usr/bin/editor', 'Editor', '1.2'), ('/usr/bin/tool', '', ''), "
                        "('/usr/bin/secret', '', '')"));
    QVERIFY(client.exec("INSERT INTO application_ignore VALUES ('/usr/bin/secret')"));
    const LogCapture log;
    QVERIFY(client.makesRequests(
        &Uploads::uploadApplications,
        {QStringLiteral(R"({"status":200,"data":{"applications":[{"app_id":31,)"
                        R"("canonical_path":"/usr/bin/editor"},{"app_id":"32",)"
                        R"("canonical_path":"/usr/bin/tool"}]}})")}));
    QCOMPARE(json(client.field("applications")),
             QStringLiteral(R"([{"name":"Editor","path":"/usr/bin/editor","version":"1.2"},)"
                            R"({"name":"","path":"/usr/bin/tool","version":""}])"));
    QCOMPARE(client.database.rows(QStringLiteral(
                 "SELECT path, online_app_id, sent_online FROM applications ORDER BY path")),
             QStringLiteral("/usr/bin/editor|31|1,/usr/bin/secret|0|0,/usr/bin/tool|32|1"));
    QVERIFY(log.contains(QStringLiteral("Uploading '2' new applications..")));
    QVERIFY(log.contains(
        QStringLiteral("Received online application id '31' for app: /usr/bin/editor")));
    QVERIFY(client.makesNoRequest(&Uploads::uploadApplications));
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/new')"));
    set(SettingsKeys::OnlineSendApplications, false);
    QVERIFY(client.makesNoRequest(&Uploads::uploadApplications));
}

void UploadsTest::offersApplicationsAgain()
{
    UploadClient client;
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/editor')"));
    QVERIFY(client.makesRequests(&Uploads::uploadApplications, {Failure}));
    const LogCapture log;
    QVERIFY(client.makesRequests(&Uploads::uploadApplications, {Success}));
    QVERIFY(log.contains(
        QStringLiteral("Successfully uploaded applications, but no application IDs returned.")));
    QVERIFY(client.makesNoRequest(&Uploads::uploadApplications)); // Not on this day.
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/new')"));
    QVERIFY(client.makesRequests(&Uploads::uploadApplications, {Success}));
    QCOMPARE(client.field("applications").toArray().size(), 1);
}

void UploadsTest::passesOverOddApplications_data()
{
    QTest::addColumn<QString>("applications");
    QTest::newRow("no list") << QStringLiteral(R"("31")");
    QTest::newRow("no object") << QStringLiteral(R"([31, null])");
    QTest::newRow("no id") << QStringLiteral(R"([{"canonical_path":"/usr/bin/editor"}])");
    QTest::newRow("negative id") << QStringLiteral(
        R"([{"app_id":-1,"canonical_path":"/usr/bin/editor"}])");
    QTest::newRow("fraction") << QStringLiteral(
        R"([{"app_id":3.5,"canonical_path":"/usr/bin/editor"}])");
    QTest::newRow("no path") << QStringLiteral(R"([{"app_id":31,"canonical_path":{}}])");
    QTest::newRow("other path") << QStringLiteral(R"([{"app_id":31,"canonical_path":"/bin/x"}])");
}

void UploadsTest::passesOverOddApplications()
{
    QFETCH(QString, applications);
    UploadClient client;
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/editor')"));
    QVERIFY(client.makesRequests(
        &Uploads::uploadApplications,
        {QStringLiteral(R"({"status":200,"data":{"applications":%1}})").arg(applications)}));
    QCOMPARE(client.database.rows(
                 QStringLiteral("SELECT path, online_app_id, sent_online FROM applications")),
             QStringLiteral("/usr/bin/editor|0|0"));
}

void UploadsTest::sendsComputerInformationOnceItDiffers()
{
    UploadClient client;
    const auto upload = [](InfoWhen when) {
        return [when](Uploads& uploads) { uploads.uploadComputerInfo(when); };
    };
    const auto aDayLater = [] {
        set(SettingsKeys::CheckForCompInfoLast,
            QDateTime::currentSecsSinceEpoch() - ComputerInfoUpload::CheckEvery.count());
    };
    client.facts = {{QStringLiteral("CPUInfo"), QStringLiteral("Fast")},
                    {QStringLiteral("VideoInfo"), QString()},
                    {QStringLiteral("MouseInfo"),
                     QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Mouse")}}}}};
    const LogCapture log;
    QVERIFY(client.makesRequests(upload(InfoWhen::IfDue), {Failure}));
    QVERIFY(log.contains(
        QStringLiteral("Found difference in computer information, storing updated info!")));
    QVERIFY(client.makesRequests(upload(InfoWhen::IfDue), {Success}));
    QCOMPARE(json(client.field("computer_info")),
             QStringLiteral(R"({"CPUInfo":"Fast","MouseInfo_JSON":"[{\"name\":\"Mouse\"}]",)"
                            R"("NetworkInfo_JSON":"[]","VideoInfo":""})"));
    QVERIFY(log.contains(QStringLiteral("Successfully updated online computer info.")));
    QCOMPARE(client.database.rows(QStringLiteral("SELECT name, value FROM computer_info ORDER BY "
                                                 "name")),
             QStringLiteral("CPUInfo|Fast,MouseInfo_JSON|[{\"name\":\"Mouse\"}],"
                            "NetworkInfo_JSON|[],VideoInfo|"));

    client.facts[QStringLiteral("CPUInfo")] = QStringLiteral("Faster");
    QVERIFY(client.makesRequests(upload(InfoWhen::IfDue), {})); // Not on this day.
    aDayLater();
    QVERIFY(client.makesRequests(upload(InfoWhen::IfDue), {Success}));
    aDayLater();
    QVERIFY(client.makesRequests(upload(InfoWhen::IfDue), {}));
    QVERIFY(client.makesRequests(upload(InfoWhen::Now), {Success}));
    QCOMPARE(log.count(QStringLiteral("Found difference")), 2);
}

void UploadsTest::tellsNetworksOfThirtyDays()
{
    UploadClient client;
    const auto upload = [](Uploads& uploads) { uploads.uploadComputerInfo(InfoWhen::IfDue); };
    const auto daysAgo29 = [] { return QDateTime::currentDateTimeUtc().addDays(-29); };
    const QDateTime begin = daysAgo29().addSecs(-1); // Parts of a second are not kept.
    QVERIFY(client.exec(
        "INSERT INTO network_interfaces (mac_address, description, wifi, ip_list, last_update) "
        "VALUES ('AA', 'wlan0', 1, '10.0.0.2, ::1', datetime('now', '-29 days')), "
        "('BB', 'eth0', 0, '', datetime('now', '-31 days'))"));
    QVERIFY(client.makesRequests(upload, {Success}));
    const QJsonObject network =
        QJsonDocument::fromJson(client.field("computer_info")
                                    .toObject()[QLatin1String("NetworkInfo_JSON")]
                                    .toString()
                                    .toUtf8())
            .array()
            .at(0)
            .toObject();
    QCOMPARE(network.keys().join(QLatin1Char(' ')),
             QStringLiteral("description ip_list is_wifi last_update mac_address"));
    QCOMPARE(network[QLatin1String("mac_address")].toString(), QStringLiteral("AA"));
    QCOMPARE(network[QLatin1String("is_wifi")], QJsonValue(true));
    const QDateTime seen = QDateTime::fromString(network[QLatin1String("last_update")].toString(),
                                                 QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    QVERIFY(begin <= seen && seen <= daysAgo29()); // Local time.
    // Seen again, which is no news.
    QVERIFY(client.exec("UPDATE network_interfaces SET last_update = datetime('now') WHERE "
                        "mac_address = 'AA'"));
    set(SettingsKeys::CheckForCompInfoLast, qint64(1));
    QVERIFY(client.makesRequests(upload, {}));
}

void UploadsTest::keepsSecretsHere()
{
    UploadClient client;
    for (const auto* key : {&SettingsKeys::ProxyUser, &SettingsKeys::ProxyPassword,
                            &SettingsKeys::ProxyHostname, &SettingsKeys::ServiceApiUrl,
                            &SettingsKeys::ServiceWebsiteUrl, &SettingsKeys::ServiceReleaseUrl}) {
        set(*key, QStringLiteral("secret"));
    }
    set(SettingsKeys::Theme, QStringLiteral("dark"));
    set(SettingsKeys::MainwindowGeometry, QByteArray("\x01\xd9\xd0\xcb", 4));
    QVERIFY(fillSettings(client));
    QVERIFY(client.makesRequests(
        [](Uploads& uploads) { uploads.uploadApplicationSettings(SettingsWhen::Now); }, {Success}));
    QJsonObject sent = client.field("client_settings").toObject();
    const QJsonObject settings = sent.take(QLatin1String("settings")).toObject();
    QVERIFY(!json(settings).contains(QLatin1String("secret")));
    QVERIFY(!settings.contains(QLatin1String("mainwindow_geometry")));
    QCOMPARE(settings[QLatin1String("theme")].toString(), QStringLiteral("dark"));
    QCOMPARE(json(sent),
             QStringLiteral(
                 R"({"application_ignore":[{"path":"/usr/bin/a"}],)"
                 R"("geekwindow_labels":[{"id":3,"val":"keys","x":-4,"y":5}],)"
                 R"("milestones":[{"custom_message":"done","id":1,)"
                 R"("last_stats_when_triggered":5,"milestone_active":1,"name":"m",)"
                 R"("stats_amount":10,"stats_type":"Keys","time_created":"2026-01-01 12:00:00",)"
                 R"("time_last_triggered":"2026-01-03 12:00:00",)"
                 R"("time_updated":"2026-01-02 12:00:00"}],)"
                 R"("network_interfaces_ignore":[{"mac_address":"AA"}]})"));
}

void UploadsTest::sendsSettingsOnceTheyChange()
{
    UploadClient client;
    const auto upload = [](Uploads& uploads) {
        uploads.uploadApplicationSettings(SettingsWhen::IfChanged);
    };
    QVERIFY(client.makesRequests(upload, {Failure}));
    QVERIFY(client.makesRequests(upload, {Success})); // The first copy.
    QVERIFY(client.makesRequests(upload, {}));
    set(SettingsKeys::SettingsLastSaved, QDateTime::currentDateTime());
    // Changed once more while the first change was on its way.
    QVERIFY(client.makesRequests(
        [upload](Uploads& uploads) {
            upload(uploads);
            set(SettingsKeys::SettingsLastSaved, QDateTime::currentDateTime().addMSecs(5));
        },
        {Success}));
    QVERIFY(client.makesRequests(upload, {Success}));
    QVERIFY(client.makesRequests(upload, {}));
}

void UploadsTest::sendsProfilesOnceTheyChange()
{
    UploadClient client;
    QVERIFY(client.makesNoRequest(&Uploads::uploadProfiles));
    client.profiles.addProfile(QStringLiteral("Work"));
    const LogCapture log;
    QVERIFY(client.makesRequests(&Uploads::uploadProfiles, {Failure}));
    QVERIFY(log.contains(QStringLiteral("Error uploading profiles: ")));
    // Another one while the first is on its way.
    QVERIFY(client.makesRequests(
        [&client](Uploads& uploads) {
            uploads.uploadProfiles();
            client.profiles.addProfile(QStringLiteral("Games"));
            uploads.uploadProfiles(); // Waits for the answer.
        },
        {Success}));
    QVERIFY(client.makesRequests(&Uploads::uploadProfiles, {Success}));
    QCOMPARE(client.field("profiles").toArray().size(), 2);
    QCOMPARE(client.field("profiles")[0][QLatin1String("name")].toString(),
             QStringLiteral("Games"));
    QVERIFY(log.contains(QStringLiteral("Successfully uploaded profiles.")));
    QVERIFY(client.makesNoRequest(&Uploads::uploadProfiles));
}

void UploadsTest::sendsUsageStatsOnceADay()
{
    UploadClient client;
    client.signsIn = false; // The service takes these from anybody.
    QVERIFY(client.makesNoRequest(&Uploads::uploadUsageStats));
    QVERIFY(fillUsageStats(client));
    set(SettingsKeys::SendBugReportsAndUsageReports, false);
    QVERIFY(client.makesNoRequest(&Uploads::uploadUsageStats));
    set(SettingsKeys::SendBugReportsAndUsageReports, true);
    QVERIFY(client.makesRequests(&Uploads::uploadUsageStats, {Failure}));
    QVERIFY(client.makesRequests(&Uploads::uploadUsageStats, {Success}));
    QCOMPARE(json(client.field("window_open_times")),
             QStringLiteral(R"({"2026-01-01":{"MainWindow":5,"Overview":6}})"));
    QCOMPARE(json(client.field("events")),
             QStringLiteral(R"([{"context":"","event_type":"click","identifier":"zurge",)"
                            R"("page_name":"Overview","time_created":"2026-01-01 12:00:00"}])"));
    QCOMPARE(client.database.rows(QStringLiteral("SELECT day, value FROM usage_stats_time")),
             day() + QStringLiteral("|7"));
    QCOMPARE(
        client.database.value(QStringLiteral("SELECT COUNT(*) FROM usage_stats_events")).toInt(),
        0);
    QVERIFY(client.exec("UPDATE usage_stats_time SET day = '2026-01-02'"));
    QVERIFY(client.makesNoRequest(&Uploads::uploadUsageStats)); // Not on this day.
    set(SettingsKeys::LastUsageStats, QDateTime::currentDateTime().addDays(-1));
    QVERIFY(client.makesRequests(&Uploads::uploadUsageStats, {Success}));
}

void UploadsTest::tellsTheSizeOfTheDatabase()
{
    UploadClient client;
    QVERIFY(client.exec("CREATE TABLE filler AS SELECT zeroblob(3000000)"));
    client.uploads.updateDatabaseSizeTelemetry();
    QCOMPARE(value(SettingsKeys::DbSizeTotalMb),
             client.database.database()->getDatabaseFileSize() >> 20);
    QVERIFY(value(SettingsKeys::DbSizeTotalMb) >= 2);
    set(SettingsKeys::SendBugReportsAndUsageReports, false);
    client.uploads.updateDatabaseSizeTelemetry();
    QVERIFY(!Settings::instance().has(SettingsKeys::DbSizeTotalMb));
}

void UploadsTest::tellsWhatTheServiceTakes()
{
    const QTemporaryDir directory;
    AccountService service(directory.path(), AccountService::Transport::Plain);
    QVERIFY(service.start());
    const ServiceComputer computer =
        service.store().computerNamed(service.store().account(Someone.userName), Someone.computer);
    AccountIdentity identity = Someone;
    identity.userId = computer.accountId;
    identity.computerId = computer.id;
    identity.passwordHash = computer.passwordHash;
    UploadClient client(identity);
    client.communication.setClientURL(service.apiUrl());
    client.facts = {{QStringLiteral("isNetworkMonitorSupported"), QStringLiteral("true")},
                    {QStringLiteral("KeyboardInfo"), QVariantList()}};
    client.profiles.addProfile(QStringLiteral("Work"));
    QVERIFY(fillHeatmaps(client) && fillSettings(client) && fillUsageStats(client));
    QVERIFY(client.exec("INSERT INTO keypress_frequency VALUES ('TODAY', 24, 65, 3, 0), "
                        "('TODAY', 9, 66, -3, 0), ('next day', 9, 66, 3, 0)")); // Damage.
    QVERIFY(client.exec("UPDATE profiles SET created_at = NULL"));
    QVERIFY(client.exec("INSERT INTO network_interfaces VALUES ('AA', 'wlan0', 1, '10.0.0.2', "
                        "datetime('now'))"));
    QVERIFY(client.exec("INSERT INTO applications (path) VALUES ('/usr/bin/editor')"));
    client.uploads.uploadHeatmaps();
    client.uploads.uploadApplications();
    client.uploads.uploadProfiles();
    client.uploads.uploadUsageStats();
    client.uploads.uploadComputerInfo(InfoWhen::IfDue);
    client.uploads.uploadApplicationSettings(SettingsWhen::IfChanged);
    QVERIFY(comesTrue([&] { return client.ended.size() == 11; }));
    QCOMPARE(service.violations(), QStringList());
    QVERIFY(!client.profiles.shouldUploadProfiles());
    QVERIFY(value(SettingsKeys::OnlineLastHeatmapKeyboard).isValid());
    QVERIFY(value(SettingsKeys::OnlineLastHeatmapButtonsApps).isValid());
    QVERIFY(value(SettingsKeys::LastUsageStats).isValid());
    QVERIFY(value(SettingsKeys::SettingsLastUploaded).isValid());
    QVERIFY(value(SettingsKeys::CheckForCompInfoLast) > 0);
    QVERIFY(
        client.database.value(QStringLiteral("SELECT online_app_id FROM applications")).toInt() >
        0);
}

REGISTER_TEST(UploadsTest);
#include "UploadsTest.moc"
