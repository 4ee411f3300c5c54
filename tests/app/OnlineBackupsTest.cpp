// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkedClient.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

class OnlineBackupsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsOneAtTheService();
    void tellsWhyThereIsNone_data();
    void tellsWhyThereIsNone();
    void staysQuietWhereTheUserEndsIt();
    void startsWhenDue_data();
    void startsWhenDue();
};

void OnlineBackupsTest::keepsOneAtTheService()
{
    LinkedClient client;
    client.signIn();
    OnlineBackups& backups = client.services->backups();
    const QSignalSpy pauses(&backups, &OnlineBackups::countingPauseNeeded);
    const QSignalSpy resumptions(&backups, &OnlineBackups::countingResumptionNeeded);
    const QSignalSpy failures(&backups, &OnlineBackups::failed);
    backups.start();
    QVERIFY(backups.state().isRunning);
    QVERIFY(LinkedClient::comes([&] { return backups.isKnown(); }));
    QCOMPARE(backups.kept().size(), 1);
    QVERIFY(!backups.state().isRunning);
    QCOMPARE(backups.state().failure, QString());
    QCOMPARE(pauses.size(), 1);
    QCOMPARE(resumptions.size(), 1);
    QVERIFY(failures.isEmpty());
    QCOMPARE(client.service.violations(), QStringList());
}

void OnlineBackupsTest::tellsWhyThereIsNone_data()
{
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("text");
    QTest::newRow("no account") << QStringLiteral("account") << QStringLiteral("No account");
    QTest::newRow("offline") << QStringLiteral("offline") << QStringLiteral("works offline");
    QTest::newRow("maintenance") << QStringLiteral("400") << QStringLiteral("maintenance");
    QTest::newRow("upload refused") << QStringLiteral("put") << QStringLiteral("not uploaded");
}

void OnlineBackupsTest::tellsWhyThereIsNone()
{
    QFETCH(QString, reason);
    QFETCH(QString, text);
    LinkedClient client;
    if (reason != QLatin1String("account")) {
        client.signIn();
    }
    Settings::instance().setValue(SettingsKeys::WorkOffline, reason == QLatin1String("offline"));
    const bool isPut = reason == QLatin1String("put");
    client.service.faults().add({.kind = Fault::Kind::Status,
                                 .status = isPut ? 413 : 400,
                                 .requestType = isPut
                                                    ? QStringLiteral("backup_put")
                                                    : QStringLiteral("get_db_backup_upload_url")});
    OnlineBackups& backups = client.services->backups();
    const QSignalSpy failures(&backups, &OnlineBackups::failed);
    backups.start();
    QVERIFY(LinkedClient::comes([&] { return !failures.isEmpty(); }));
    QVERIFY2(backups.state().failure.contains(text), qPrintable(backups.state().failure));
    QVERIFY(!backups.state().isRunning);
    QCOMPARE(failures.constFirst().constFirst().toString(), backups.state().failure);
}

void OnlineBackupsTest::staysQuietWhereTheUserEndsIt()
{
    LinkedClient client;
    client.signIn();
    client.service.faults().add(
        {.kind = Fault::Kind::Hang, .requestType = QStringLiteral("get_db_backup_upload_url")});
    OnlineBackups& backups = client.services->backups();
    const QSignalSpy failures(&backups, &OnlineBackups::failed);
    backups.start();
    QVERIFY(LinkedClient::comes([&] {
        return client.service.requestTypes().contains(QStringLiteral("get_db_backup_upload_url"));
    }));
    backups.cancel();
    QVERIFY(LinkedClient::comes([&] { return !backups.state().isRunning; }));
    QCOMPARE(backups.state().failure, QString());
    QVERIFY(failures.isEmpty());
}

void OnlineBackupsTest::startsWhenDue_data()
{
    QTest::addColumn<int>("daysAgo");
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<bool>("starts");
    QTest::newRow("seven days") << 7 << true << true;
    QTest::newRow("six days") << 6 << true << false;
    QTest::newRow("switched off") << 30 << false << false;
}

void OnlineBackupsTest::startsWhenDue()
{
    QFETCH(int, daysAgo);
    QFETCH(bool, isEnabled);
    QFETCH(bool, starts);
    LinkedClient client;
    client.signIn();
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::OnlineBackupEnabled, isEnabled);
    settings.setValue(SettingsKeys::OnlineBackupLast,
                      QDateTime::currentDateTime().addDays(-daysAgo));
    const QSignalSpy pauses(&client.services->backups(), &OnlineBackups::countingPauseNeeded);
    const QSignalSpy failures(&client.services->backups(), &OnlineBackups::failed);
    client.services->backups().startIfDue();
    QCOMPARE(pauses.size(), starts ? 1 : 0);
    client.services->stop();
    QVERIFY(!client.database.database()->isLent());
    QVERIFY(failures.isEmpty()); // The client is about to end.
}

REGISTER_TEST(OnlineBackupsTest);
#include "OnlineBackupsTest.moc"
