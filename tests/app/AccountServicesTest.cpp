// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkedClient.h"
#include "account/RequestTypes.h"
#include "account/Zurge.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

class AccountServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsNothing_data();
    void sendsNothing();
    void maintainsALinkedAccount();
    void answersWhatAZurgeAsksFor();
    void beginsAnewForAnotherAccount_data();
    void beginsAnewForAnotherAccount();
    void tellsThatTheComputerIsArchived();
    void takesOnlyUsableFiles_data();
    void takesOnlyUsableFiles();
};

void AccountServicesTest::sendsNothing_data()
{
    QTest::addColumn<bool>("isSignedIn");
    QTest::newRow("without an account") << false;
    QTest::newRow("offline") << true;
}

void AccountServicesTest::sendsNothing()
{
    QFETCH(bool, isSignedIn);
    LinkedClient client;
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::OnlineBackupLast, QDateTime::currentDateTime().addDays(-30));
    if (isSignedIn) {
        client.signIn();
        settings.setValue(SettingsKeys::WorkOffline, true);
        settings.setValue(SettingsKeys::ServiceReleaseUrl, client.service.releaseUrl());
    }
    client.localStats.increaseKeys(100'000);
    QSignalSpy backedUp(client.database.database(), &Database::backupFinished);
    QVERIFY(backedUp.wait()); // Which is logged.
    const LogCapture log;
    for (int round = 0; round < 2; ++round) {
        client.services->applySettings();
        client.services->performMaintenance();
        client.services->startUsageStats();
        client.services->checkForMessagesFromWebsite();
        client.services->refreshAccountInfo();
        client.localStats.doZurge(ZurgeStart::Automatic);
        QTest::qWait(100); // What was put off for the event loop.
    }
    QCOMPARE(client.service.requestTypes(), QStringList());
    QCOMPARE(log.text(), QString());
}

void AccountServicesTest::maintainsALinkedAccount()
{
    LinkedClient client;
    client.signIn();
    client.services->performMaintenance();
    QVERIFY(LinkedClient::comes(
        [&] { return client.service.requestTypes().contains(RequestTypes::ClientSettings); }));
    QCOMPARE(client.service.requestTypes(),
             (QStringList{RequestTypes::ClientLogin, RequestTypes::ComputerInfo,
                          RequestTypes::ClientSettings}));
    QCOMPARE(client.service.violations(), QStringList());
}

void AccountServicesTest::answersWhatAZurgeAsksFor()
{
    LinkedClient client;
    client.signIn();
    client.localStats.increaseKeys(10);
    QVERIFY(client.localStats.doZurge(ZurgeStart::Manual));
    QVERIFY(LinkedClient::comes(
        [&] { return client.service.requestTypes().contains(RequestTypes::PendingMessages); }));
    QVERIFY(client.service.requestTypes().contains(RequestTypes::ComputerInfo));
    QCOMPARE(client.localStats.unzurged().keys, 0U);
    QCOMPARE(client.service.violations(), QStringList());
}

void AccountServicesTest::beginsAnewForAnotherAccount_data()
{
    QTest::addColumn<QString>("next");
    QTest::addColumn<bool>("isForgotten");
    QTest::newRow("the same again") << QStringLiteral("ann") << false;
    QTest::newRow("another") << QStringLiteral("bob") << true;
    QTest::newRow("none") << QString() << true;
}

void AccountServicesTest::beginsAnewForAnotherAccount()
{
    QFETCH(QString, next);
    QFETCH(bool, isForgotten);
    LinkedClient client;
    client.signIn();
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::OnlineLastHeatmapButtons, QDateTime::currentDateTime());
    settings.setValue(SettingsKeys::SettingsLastUploaded, QDateTime::currentDateTime());
    settings.setValue(SettingsKeys::OnlineTotalKeys, qint64{7});
    settings.setValue(SettingsKeys::OnlineRankKeys, qint64{7});
    settings.setValue(SettingsKeys::ProfilesHaveChanged, false);
    QVERIFY(client.database.exec(
        QStringLiteral("INSERT INTO computer_info VALUES ('ComputerModel', 'desk')")));
    client.services->backups().setKept({{.fileName = QStringLiteral("a.zip"), .createdAt = {}}});
    const QSignalSpy replaced(client.services.get(), &AccountServices::accountReplaced);
    if (next.isEmpty()) {
        client.services->signOut();
    } else {
        client.signIn(next);
    }
    QCOMPARE(replaced.size(), isForgotten ? 1 : 0);
    QCOMPARE(settings.has(SettingsKeys::OnlineLastHeatmapButtons), !isForgotten);
    QCOMPARE(settings.has(SettingsKeys::SettingsLastUploaded), !isForgotten);
    QCOMPARE(settings.value(SettingsKeys::OnlineTotalKeys), isForgotten ? 0 : 7);
    QCOMPARE(settings.value(SettingsKeys::OnlineRankKeys), isForgotten ? 0 : 7);
    QCOMPARE(settings.value(SettingsKeys::ProfilesHaveChanged), isForgotten);
    QCOMPARE(client.database.value(QStringLiteral("SELECT COUNT(*) FROM computer_info")).toInt(),
             isForgotten ? 0 : 1);
    QCOMPARE(client.services->backups().isKnown(), !isForgotten);
}

void AccountServicesTest::tellsThatTheComputerIsArchived()
{
    LinkedClient client;
    client.signIn();
    client.service.store().setArchived(client.computer().id, true);
    for (int round = 0; round < 2; ++round) {
        Settings::instance().setValue(SettingsKeys::WorkOffline, false);
        QSignalSpy taken(client.services.get(), &AccountServices::accountInfoTaken);
        QVERIFY(client.services->refreshAccountInfo());
        QVERIFY(taken.wait());
        QVERIFY(Settings::instance().value(SettingsKeys::WorkOffline));
    }
    QCOMPARE(client.services->messages().messages().size(), 1);
    const WindowMessage message = client.services->messages().messages().constFirst();
    QCOMPARE(message.type, QStringLiteral("archived_computer"));
    QVERIFY(message.link.toString().startsWith(client.service.websiteUrl()));
}

void AccountServicesTest::takesOnlyUsableFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("ports") << QByteArray("Port;Transport;Description\n80;TCP;Web\n53;UDP;Names\n")
                           << true;
    QTest::newRow("a page") << QByteArray("<html>\n<p>Log in; to the; hotel\n</html>\n") << false;
    QTest::newRow("mostly something else")
        << QByteArray("80;TCP;Web\n<html>\n<p>\n</p>\n</html>\n") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void AccountServicesTest::takesOnlyUsableFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isTaken);
    LinkedClient client;
    client.service.setReleaseFile(QStringLiteral("network-ports.csv"), content);
    client.service.setReleaseFile(QStringLiteral("GeoIP.dat"), content);
    Settings::instance().setValue(SettingsKeys::ServiceReleaseUrl, client.service.releaseUrl());
    client.services->applySettings();
    const QSignalSpy ports(client.services.get(), &AccountServices::portDescriptionsReplaced);
    const QSignalSpy countries(client.services.get(), &AccountServices::countryDatabaseReplaced);
    client.services->performMaintenance();
    const auto ended = [&] {
        const Settings& settings = Settings::instance();
        return settings.value(SettingsKeys::CheckForNetworkPortDescriptionsLast) != 0 &&
               settings.value(SettingsKeys::CheckForGeoipUpdateLast) != 0;
    };
    QVERIFY(LinkedClient::comes(ended));
    QCOMPARE(ports.size(), isTaken ? 1 : 0);
    QCOMPARE(countries.size(), 0);
    QCOMPARE(QFile::exists(client.database.directory() + QStringLiteral("/network-ports.csv")),
             isTaken);
    QVERIFY(!QFile::exists(client.database.directory() + QStringLiteral("/GeoIP.dat")));
}

REGISTER_TEST(AccountServicesTest);
#include "AccountServicesTest.moc"
