// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "base/Format.h"
#include "stats/ApplicationUptimeStat.h"
#include "stats/ApplicationsStat.h"
#include "stats/BootTimeStat.h"
#include "stats/UptimeStat.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <memory>

class UptimeStatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void recordsEachBootOnce_data();
    void recordsEachBootOnce();
    void recordsABootOnlyOnceAndWhileOn();
    void countsUptime_data();
    void countsUptime();
    void extendsTheBootInUtc();
    void filesUptimeUnderHourAndProfile();
    void countsTheTimeInFront_data();
    void countsTheTimeInFront();
    void filesTheTimeInFrontWhenFlushed();
    void countsTheRunningTime_data();
    void countsTheRunningTime();
    void knowsApplicationsOnce();
    void recordsAnewAfterACleaning_data();
    void recordsAnewAfterACleaning();
    void leavesExcludedApplicationsOut();

private:
    qint64 uptimeMs()
    {
        return m_client->value(QStringLiteral("SELECT sum(msec_active) FROM uptime_hour"))
            .toLongLong();
    }

    QString front()
    {
        return m_client->rows(QStringLiteral("SELECT hour, path, seconds_active, profile_id FROM "
                                             "application_active_hour ORDER BY 1, 2, 4"));
    }

    const QString m_editor = QStringLiteral("/usr/bin/editor");
    const QDateTime m_noon{QDate(2026, 3, 14), QTime(12, 0)};
    std::unique_ptr<Client> m_client;
};

void UptimeStatsTest::init()
{
    m_client = std::make_unique<Client>();
    m_client->system.bootTime = QDateTime::currentDateTime().addSecs(-600);
    m_client->system.activeApplication = m_editor;
    m_client->system.runningApplications = {m_editor};
}

void UptimeStatsTest::cleanup()
{
    m_client.reset();
}

void UptimeStatsTest::recordsEachBootOnce_data()
{
    QTest::addColumn<QList<int>>("boots"); ///< Of one run after the other, seconds from now.
    QTest::addColumn<qsizetype>("recorded");
    QTest::newRow("second boot on one day") << QList{-60, -45} << qsizetype{2};
    QTest::newRow("later restart") << QList{-60, -60} << qsizetype{1};
    QTest::newRow("restart within 30 s of the boot") << QList{-10, -10} << qsizetype{1};
    QTest::newRow("clock set back since the boot") << QList{-60, 3'600} << qsizetype{1};
    QTest::newRow("time changed within 30 s") << QList{-10, -8} << qsizetype{1};
}

void UptimeStatsTest::recordsEachBootOnce()
{
    QFETCH(QList<int>, boots);
    const QDateTime now = QDateTime::currentDateTime();
    for (const int boot : boots) {
        m_client->system.bootTime = now.addSecs(boot);
        BootTimeStat run(&m_client->system, nullptr);
        run.update(now);
    }
    const QString recorded = m_client->rows(QStringLiteral("SELECT boot_time FROM uptimes"));
    QTEST(recorded.split(u',').size(), "recorded");
    QCOMPARE(recorded.section(u',', 0, 0), Format::isoDateTime(now.addSecs(boots.first())));
}

void UptimeStatsTest::recordsABootOnlyOnceAndWhileOn()
{
    BootTimeStat stat(&m_client->system, nullptr);
    stat.setEnabled(true);
    stat.setEnabled(false);
    stat.addCurrentBootTime();
    QCOMPARE(m_client->rows(QStringLiteral("SELECT * FROM uptimes")), QString());
    stat.setEnabled(true);
    stat.update(m_noon);
    m_client->system.bootTime = m_client->system.bootTime.addSecs(60);
    stat.flush(m_noon.addSecs(60));
    QCOMPARE(m_client
                 ->value(QStringLiteral("SELECT count(*) FROM uptimes WHERE abs(julianday("
                                        "end_time, 'utc') - julianday('now')) * 86400 < 60"))
                 .toInt(),
             1);
}

void UptimeStatsTest::countsUptime_data()
{
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<qint64>("countedMs");
    QTest::newRow("a minute") << Q_INT64_C(60'000) << Q_INT64_C(60'000);
    QTest::newRow("the longest interval") << Q_INT64_C(120'999) << Q_INT64_C(120'999);
    QTest::newRow("a gap") << Q_INT64_C(121'000) << Q_INT64_C(1'000);
    QTest::newRow("an hour asleep") << Q_INT64_C(3'600'000) << Q_INT64_C(1'000);
    QTest::newRow("clock set back") << Q_INT64_C(-1) << Q_INT64_C(1'000);
    QTest::newRow("flushed at once") << Q_INT64_C(0) << Q_INT64_C(0);
}

void UptimeStatsTest::countsUptime()
{
    QFETCH(qint64, elapsedMs);
    QFETCH(qint64, countedMs);
    UptimeStat stat(&m_client->system, nullptr);
    stat.flush(m_noon);
    const qint64 before = uptimeMs();
    const quint64 unzurgedBefore = m_client->totals.unzurged().uptime;
    stat.flush(m_noon.addMSecs(elapsedMs));
    QCOMPARE(uptimeMs() - before, countedMs);
    QCOMPARE(m_client->totals.unzurged().uptime - unzurgedBefore, static_cast<quint64>(countedMs));

    stat.setEnabled(true);
    stat.setEnabled(false);
    stat.doUpdate(m_noon.addMSecs(elapsedMs + 5'000), false);
    QCOMPARE(uptimeMs() - before, countedMs);
}

void UptimeStatsTest::extendsTheBootInUtc()
{
    BootTimeStat boot(&m_client->system, nullptr);
    UptimeStat stat(&m_client->system, nullptr);
    boot.update(m_noon);
    stat.update(m_noon);
    QCOMPARE(m_client
                 ->value(QStringLiteral("SELECT count(*) FROM uptimes WHERE end_time BETWEEN "
                                        "datetime('now', '-5 seconds') AND datetime('now')"))
                 .toInt(),
             1);
}

void UptimeStatsTest::filesUptimeUnderHourAndProfile()
{
    UptimeStat stat(&m_client->system, nullptr);
    stat.doUpdate(m_noon.addSecs(-50), false);
    stat.doUpdate(m_noon.addSecs(10), false); // Wholly under the later hour.
    stat.setStatsProfileId(7);
    stat.doUpdate(m_noon.addSecs(40), false);
    QCOMPARE(m_client->rows(QStringLiteral("SELECT day, hour, msec_active, profile_id FROM "
                                           "uptime_hour WHERE hour=12 ORDER BY profile_id")),
             QStringLiteral("2026-03-14|12|60000|0,2026-03-14|12|30000|7"));
}

void UptimeStatsTest::countsTheTimeInFront_data()
{
    QTest::addColumn<QList<qint64>>("elapsedMs"); ///< Between updates, after the first.
    QTest::addColumn<int>("seconds");
    QTest::newRow("first seen") << QList<qint64>{} << 1;
    QTest::newRow("parts of seconds are lost") << QList<qint64>{5'900, 5'900} << 11;
    QTest::newRow("the longest interval") << QList<qint64>{120'999} << 121;
    QTest::newRow("returned after 121 s") << QList<qint64>{121'000} << 2;
    QTest::newRow("clock set back") << QList<qint64>{-3'000, 2'000} << 4;
}

void UptimeStatsTest::countsTheTimeInFront()
{
    QFETCH(QList<qint64>, elapsedMs);
    QFETCH(int, seconds);
    ApplicationUptimeStat stat(&m_client->system, nullptr);
    stat.doUpdate(m_noon, false); // Makes the row that is marked as used.
    QDateTime now = m_noon;
    stat.doFrequentUpdate(now, false);
    for (const qint64 elapsed : elapsedMs) {
        now = now.addMSecs(elapsed);
        stat.doFrequentUpdate(now, false);
    }
    m_client->system.activeApplication.clear();
    stat.doFrequentUpdate(now.addSecs(5), false);
    stat.doUpdate(now, false);
    QCOMPARE(m_client
                 ->value(QStringLiteral("SELECT sum(seconds_active) FROM "
                                        "application_active_hour WHERE path='/usr/bin/editor'"))
                 .toInt(),
             seconds);
    QCOMPARE(m_client->totals.unzurgedPerApplication().value(m_editor).uptime,
             static_cast<quint64>(seconds) * 1'000);
    QCOMPARE(m_client
                 ->value(QStringLiteral("SELECT count(*) FROM application_uptime WHERE "
                                        "last_used BETWEEN datetime('now', '-5 seconds') AND "
                                        "datetime('now')"))
                 .toInt(),
             1);
}

void UptimeStatsTest::filesTheTimeInFrontWhenFlushed()
{
    ApplicationUptimeStat stat(&m_client->system, nullptr);
    stat.doFrequentUpdate(m_noon.addSecs(-6), false);
    stat.doFrequentUpdate(m_noon.addSecs(-1), false);
    stat.flush(m_noon.addSecs(1));
    stat.flush(m_noon.addSecs(1)); // Nothing is counted twice.
    QCOMPARE(front(), QStringLiteral("12|/usr/bin/editor|8|0"));
    stat.setStatsProfileId(7);
    stat.flush(m_noon.addSecs(6));
    QCOMPARE(front(), QStringLiteral("12|/usr/bin/editor|8|0,12|/usr/bin/editor|5|7"));
}

void UptimeStatsTest::countsTheRunningTime_data()
{
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<int>("seconds"); ///< Beyond the one for which it is first seen.
    QTest::newRow("a minute") << Q_INT64_C(60'500) << 60;
    QTest::newRow("the longest interval") << Q_INT64_C(120'999) << 120;
    QTest::newRow("started again") << Q_INT64_C(180'000) << 1;
    QTest::newRow("at once") << Q_INT64_C(0) << 1;
    QTest::newRow("clock set back") << Q_INT64_C(-60'000) << 1;
}

void UptimeStatsTest::countsTheRunningTime()
{
    QFETCH(qint64, elapsedMs);
    QFETCH(int, seconds);
    ApplicationUptimeStat stat(&m_client->system, nullptr);
    stat.doUpdate(m_noon, false);
    stat.doUpdate(m_noon.addMSecs(elapsedMs), false);
    QCOMPARE(m_client->rows(QStringLiteral("SELECT path, time, profile_id FROM application_uptime "
                                           "WHERE last_active <= datetime('now')")),
             QStringLiteral("/usr/bin/editor|%1|0").arg(1 + seconds));
}

void UptimeStatsTest::knowsApplicationsOnce()
{
    m_client->exec(QStringLiteral("INSERT INTO applications (path, name, icon, version) VALUES "
                                  "('/usr/bin/known', 'Renamed', 'i', '2')"));
    m_client->system.runningApplications << QStringLiteral("/usr/bin/known") << QString();
    ApplicationsStat stat(&m_client->system, nullptr);
    stat.doUpdate(m_noon, false);
    const QString all = QStringLiteral("SELECT path, name, icon, version FROM applications "
                                       "ORDER BY path");
    QCOMPARE(m_client->rows(all),
             QStringLiteral("/usr/bin/editor|editor||,/usr/bin/known|Renamed|i|2"));
    m_client->exec(QStringLiteral("DELETE FROM applications"));
    stat.doUpdate(m_noon, false); // Each is looked up once in a run.
    QCOMPARE(m_client->rows(all), QString());
}

void UptimeStatsTest::recordsAnewAfterACleaning_data()
{
    QTest::addColumn<bool>("everything");
    QTest::newRow("the statistics") << false;
    QTest::newRow("everything counted") << true;
}

void UptimeStatsTest::recordsAnewAfterACleaning()
{
    QFETCH(bool, everything);
    BootTimeStat boot(&m_client->system, nullptr);
    ApplicationsStat applications(&m_client->system, nullptr);
    const auto recorded = [&](const QDateTime& now) {
        for (Stat* stat : {static_cast<Stat*>(&boot), static_cast<Stat*>(&applications)}) {
            stat->setEnabled(true);
            stat->flush(now);
        }
        return m_client->rows(QStringLiteral("SELECT boot_time, path FROM uptimes, applications"));
    };
    const QString before = recorded(m_noon);
    QVERIFY(!before.isEmpty());
    Database* database = m_client->database();
    QVERIFY(everything ? database->cleanDatabaseUser() : database->cleanDatabase());
    QCOMPARE(recorded(m_noon.addSecs(60)), before);
}

void UptimeStatsTest::leavesExcludedApplicationsOut()
{
    m_client->system.excludedApplications.insert(m_editor);
    ApplicationUptimeStat uptime(&m_client->system, nullptr);
    ApplicationsStat applications(&m_client->system, nullptr);
    uptime.flush(m_noon);
    applications.flush(m_noon);
    m_client->system.excludedApplications.clear();
    QCOMPARE(front(), QString());
    QCOMPARE(m_client->rows(QStringLiteral("SELECT * FROM application_uptime")), QString());
    QCOMPARE(m_client->rows(QStringLiteral("SELECT * FROM applications")), QString());
    QVERIFY(m_client->totals.unzurgedPerApplication().isEmpty());
}

REGISTER_TEST(UptimeStatsTest);
#include "UptimeStatsTest.moc"
