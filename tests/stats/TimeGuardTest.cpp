// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "stats/TimeGuard.h"
#include "storage/HistoryStamp.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <memory>

class TimeGuardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void movesTheTablesThatFollowTheClock_data();
    void movesTheTablesThatFollowTheClock();
    void movesEachFormOfValue_data();
    void movesEachFormOfValue();
    void movesRowsOntoDaysThatOthersLeave();
    void waitsOutAGlitch();
    void noticesWhatHappenedWhileNotRunning();
    void judgesTheDoubledHour_data();
    void judgesTheDoubledHour();
    void storesTheTimeEverySixtyUpdates();
    void movesAllOrNothing();

private:
    static constexpr int WaitingUpdates = 10;

    int updatesUntilCounting(const QDateTime& now);
    void setBack(const QString& from, const QString& to);
    static QDateTime time(const QString& text);

    std::unique_ptr<Client> m_client;
};

void TimeGuardTest::init()
{
    m_client = std::make_unique<Client>();
}

void TimeGuardTest::cleanup()
{
    m_client.reset();
}

QDateTime TimeGuardTest::time(const QString& text)
{
    return QDateTime::fromString(text, Qt::ISODate);
}

/// The number of blocked updates before counting goes on.
int TimeGuardTest::updatesUntilCounting(const QDateTime& now)
{
    int blocked = 0;
    for (TimeGuard::instance().update(now); TimeGuard::instance().isBlocked() && blocked < 100;
         TimeGuard::instance().update(now)) {
        ++blocked;
    }
    return blocked;
}

void TimeGuardTest::setBack(const QString& from, const QString& to)
{
    TimeGuard::instance().update(time(from)); // The first run only notes that there was one.
    TimeGuard::instance().rolledBack();
    m_client->exec(QStringLiteral("UPDATE last_update_time SET time='%1'").arg(from));
    QCOMPARE(updatesUntilCounting(time(to)), WaitingUpdates);
    QVERIFY(TimeGuard::instance().wasClockSetBack());
}

void TimeGuardTest::movesTheTablesThatFollowTheClock_data()
{
    QTest::addColumn<QString>("columns");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("moved");
    const auto row = [](const char* table, const char* columns, const char* values,
                        const char* moved) {
        QTest::newRow(table) << QString::fromLatin1(columns) << QString::fromLatin1(values)
                             << QString::fromLatin1(moved);
    };
    const auto date = [&row](const char* table, const char* columns) {
        row(table, columns, "'2026-03-14', 1, 'a'", "'2026-03-11', 1, 'a'");
    };
    const auto stays = [&row](const char* table, const char* columns) {
        row(table, columns, "'2026-03-14', 1, 'a'", "'2026-03-14', 1, 'a'");
    };
    const auto time = [&row](const char* table, const char* columns) {
        row(table, columns, "'2026-03-14 01:30:00', 'a'", "'2026-03-10 23:30:00', 'a'");
    };
    date("keypresses", "day, hour, count");
    date("keypress_frequency", "day, hour, key");
    date("mouseclicks", "day, hour, count");
    date("mouseclicks_frequency", "day, hour, button");
    row("uptimes", "boot_time, end_time", "'2026-03-13 08:00:00', '2026-03-14 01:30:00'",
        "'2026-03-10 06:00:00', '2026-03-10 23:30:00'");
    row("application_uptime", "last_active, last_used, path",
        "'2026-03-14 01:30:00', '2026-03-14 01:30:00', 'a'",
        "'2026-03-10 23:30:00', '2026-03-14 01:30:00', 'a'");
    date("application_active_hour", "day, hour, path");
    time("network_interfaces", "last_update, mac_address");
    date("network_interface_bandwidth", "day, hour, mac_address");
    time("network_interface_bandwidth_second", "time, mac_address");
    date("application_bandwidth", "day, hour, path");
    time("application_bandwidth_second", "time, path");
    stays("keypress_frequency_application", "day, hour, path");
    stays("keycombo_frequency", "day, hour, combo");
    row("keycombo_frequency_application", "day, combo, path", "'2026-03-14', 'a', 'a'",
        "'2026-03-14', 'a', 'a'");
    stays("mousepoints", "day, hour, x");
    stays("mouseclicks_frequency_application", "day, hour, path");
    stays("input_per_application", "day, hour, path");
    stays("mousescrolls", "day, hour, count");
    stays("mousedistance", "day, hour, distance_inches");
    stays("uptime_hour", "day, hour, msec_active");
    stays("country_bandwidth", "day, hour, country");
    stays("network_protocol_bandwidth", "day, hour, protocol");
}

void TimeGuardTest::movesTheTablesThatFollowTheClock()
{
    QFETCH(QString, columns);
    QFETCH(QString, values);
    QFETCH(QString, moved);
    const QString table = QString::fromLatin1(QTest::currentDataTag());
    const QString indexes = QStringLiteral("SELECT name, sql FROM sqlite_master WHERE type='index' "
                                           "UNION ALL SELECT name, sql FROM sqlite_temp_master "
                                           "WHERE type='index' ORDER BY name");
    const QString indexesBefore = m_client->rows(indexes);
    QVERIFY(m_client->exec(
        QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table, columns, values)));

    const auto stamp = HistoryStamp::read(m_client->database()->connection());
    setBack(QStringLiteral("2026-03-14T01:30:00"), QStringLiteral("2026-03-10T23:30:00"));
    QVERIFY(stamp != HistoryStamp::read(m_client->database()->connection()));
    QCOMPARE(m_client
                 ->value(QStringLiteral("SELECT count(*) FROM %1 WHERE (%2)=(%3)")
                             .arg(table, columns, moved))
                 .toInt(),
             1);
    QCOMPARE(m_client->rows(indexes), indexesBefore);
}

void TimeGuardTest::movesEachFormOfValue_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("moved");
    const auto row = [](const char* value, const char* moved) {
        QTest::newRow(value) << QString::fromLatin1(value) << QString::fromLatin1(moved);
    };
    row("2026-03-14T01:30:00", "2026-03-10T23:30:00");
    row("2026-03-14T01:30:00.250Z", "2026-03-10T23:30:00.250Z");
    row("2026-03-14 01:30:00+01:00", "2026-03-10 23:30:00+01:00");
    row("2026-03-01 00:30:00", "2026-02-25 22:30:00");
    row("0000-00-00 00:00:00", "0000-00-00 00:00:00");
    row("2026-02-31 01:30:00", "2026-02-31 01:30:00");
    row("2026-03-14 99:30:00", "2026-03-14 99:30:00");
    row("now", "now");
    row("1773450000", "1773450000");
    row("", "");
}

void TimeGuardTest::movesEachFormOfValue()
{
    QFETCH(QString, value);
    QVERIFY(m_client->exec(
        QStringLiteral(
            "INSERT INTO network_interfaces (mac_address, last_update) VALUES ('aa', '%1')")
            .arg(value)));
    setBack(QStringLiteral("2026-03-14T01:30:00"), QStringLiteral("2026-03-10T23:30:00"));
    QTEST(m_client->value(QStringLiteral("SELECT last_update FROM network_interfaces")).toString(),
          "moved");
}

void TimeGuardTest::movesRowsOntoDaysThatOthersLeave()
{
    // Later days first, as they lie in a database whose clock went back before.
    for (int day = 20; day > 1; --day) {
        QVERIFY(m_client->exec(QStringLiteral("INSERT INTO keypresses (day, hour, count) "
                                              "VALUES ('2026-03-%1', 8, %2)")
                                   .arg(day, 2, 10, QLatin1Char('0'))
                                   .arg(day)));
    }
    QVERIFY(m_client->exec(
        QStringLiteral("INSERT INTO keypresses (day, hour, count) VALUES ('0000-00-00', 8, 1)")));
    setBack(QStringLiteral("2026-03-20T12:00:00"), QStringLiteral("2026-03-17T10:00:00"));
    QCOMPARE(m_client->value(QStringLiteral("SELECT count(*) FROM keypresses WHERE day="
                                            "date('2026-02-26', (count - 1) || ' days')")),
             19);
    QCOMPARE(m_client->value(QStringLiteral("SELECT day FROM keypresses WHERE count=1")),
             QStringLiteral("0000-00-00"));
    QVERIFY(!m_client->exec(
        QStringLiteral("INSERT INTO keypresses (day, hour, count) VALUES ('2026-03-17', 8, 1)")));
}

void TimeGuardTest::waitsOutAGlitch()
{
    m_client->exec(QStringLiteral("INSERT INTO keypresses (day, hour) VALUES ('2026-03-14', 8)"));
    const QDateTime start = time(QStringLiteral("2026-03-14T12:00:00"));
    TimeGuard& guard = TimeGuard::instance();
    guard.update(start);
    guard.rolledBack();
    m_client->exec(QStringLiteral("UPDATE last_update_time SET time='2026-03-14T12:00:00'"));
    // Three seconds back, for four and a half; twice, so that the count must begin anew.
    for (int glitch = 0; glitch < 2; ++glitch) {
        for (int tick = 0; tick < WaitingUpdates - 1; ++tick) {
            guard.update(start.addSecs(-3));
            QVERIFY(guard.isBlocked());
        }
        guard.update(start.addSecs(5 + glitch));
        QVERIFY(!guard.isBlocked());
        QVERIFY(!guard.wasClockSetBack());
    }
    QCOMPARE(m_client->value(QStringLiteral("SELECT day FROM keypresses")),
             QStringLiteral("2026-03-14"));
}

void TimeGuardTest::noticesWhatHappenedWhileNotRunning()
{
    // The last run ended when the clock was three days and two hours ahead of the real one.
    const QString days =
        QStringLiteral("SELECT count(*) FROM keypresses WHERE day=date('now', 'localtime')");
    const QDateTime now = QDateTime::currentDateTime();
    m_client->exec(
        QStringLiteral("INSERT INTO last_update_time VALUES (datetime('now', 'localtime', "
                       "'3 days', '2 hours'))"));
    m_client->exec(QStringLiteral(
        "INSERT INTO keypresses (day, hour) VALUES (date('now', 'localtime', '3 days'), 8)"));
    QCOMPARE(updatesUntilCounting(now), WaitingUpdates);
    QCOMPARE(m_client->value(days), 1);

    // A client that ends right after the shift finds nothing to move when it starts again.
    m_client->reopen();
    QCOMPARE(updatesUntilCounting(QDateTime::currentDateTime().addSecs(1)), 0);
    QCOMPARE(m_client->value(days), 1);
}

void TimeGuardTest::judgesTheDoubledHour_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("nowUtc");
    QTest::addColumn<bool>("isBehind");
    const auto row = [](const char* name, const char* stored, const char* nowUtc, bool isBehind) {
        QTest::newRow(name) << QString::fromLatin1(stored) << QString::fromLatin1(nowUtc)
                            << isBehind;
    };
    // In Berlin, 02:00 to 03:00 passes twice on 25 October 2026: from 00:00 and from 01:00 UTC.
    row("on from the first pass", "2026-10-25 02:50:00", "2026-10-25T00:51:00Z", false);
    row("into the second pass", "2026-10-25 02:50:00", "2026-10-25T01:10:00Z", false);
    row("back within the first pass", "2026-10-25 02:50:00", "2026-10-25T00:10:00Z", true);
    row("back from after it", "2026-10-25 03:10:00", "2026-10-25T01:50:00Z", true);
    row("an ordinary hour", "2026-10-26 02:50:00", "2026-10-26T01:10:00Z", true);
}

void TimeGuardTest::judgesTheDoubledHour()
{
    QFETCH(QString, stored);
    QFETCH(QString, nowUtc);
    if (QDateTime(QDate(2026, 10, 26), QTime(0, 0)).offsetFromUtc() ==
        QDateTime(QDate(2026, 10, 24), QTime(0, 0)).offsetFromUtc()) {
        QSKIP("This time zone has no summer time; TZ=Europe/Berlin does.");
    }
    m_client->exec(QStringLiteral("INSERT INTO last_update_time VALUES ('%1')").arg(stored));
    // Which reading the C library prefers depends on the season of the time it converted before.
    for (const int month : {1, 7}) {
        QVERIFY(QDateTime(QDate(2026, month, 1), QTime(0, 0)).toMSecsSinceEpoch() > 0);
        TimeGuard::instance().rolledBack();
        TimeGuard::instance().update(time(nowUtc).toLocalTime());
        QTEST(TimeGuard::instance().isBlocked(), "isBehind");
    }
}

void TimeGuardTest::storesTheTimeEverySixtyUpdates()
{
    const QString stored =
        QStringLiteral("SELECT count(*) FROM last_update_time "
                       "WHERE time > datetime('now', 'localtime', '-1 minutes')");
    TimeGuard& guard = TimeGuard::instance();
    const QDateTime start = QDateTime::currentDateTime();
    guard.update(start);
    QCOMPARE(m_client->value(stored), 1); // The first run stores it at once.

    const QString age = QStringLiteral("UPDATE last_update_time SET time='2020-01-01 00:00:00'");
    m_client->exec(age);
    for (int tick = 0; tick < 60; ++tick) {
        guard.update(start.addMSecs(500LL * tick));
    }
    QCOMPARE(m_client->value(stored), 0);
    guard.update(start.addSecs(30));
    QCOMPARE(m_client->value(stored), 1);
    QCOMPARE(m_client->value(QStringLiteral("SELECT count(*) FROM last_update_time")), 1);
}

void TimeGuardTest::movesAllOrNothing()
{
    m_client->exec(QStringLiteral("INSERT INTO last_update_time VALUES ('2026-03-14 12:00:00')"));
    m_client->exec(QStringLiteral("INSERT INTO keypresses (day, hour) VALUES ('2026-03-14', 8)"));
    m_client->exec(QStringLiteral("ALTER TABLE application_bandwidth RENAME TO hidden"));
    const QDateTime now = time(QStringLiteral("2026-03-11T12:00:00"));
    for (int tick = 0; tick <= WaitingUpdates; ++tick) {
        TimeGuard::instance().update(now);
        QVERIFY(TimeGuard::instance().isBlocked());
    }
    QCOMPARE(m_client->value(QStringLiteral("SELECT day FROM keypresses")),
             QStringLiteral("2026-03-14"));
    QCOMPARE(m_client->value(QStringLiteral("SELECT time FROM last_update_time")),
             QStringLiteral("2026-03-14 12:00:00"));

    // It tries again, and then leaves the history where it is rather than not count at all.
    QCOMPARE(updatesUntilCounting(now), 2 * (WaitingUpdates + 1) - 1);
    QCOMPARE(m_client->value(QStringLiteral("SELECT day FROM keypresses")),
             QStringLiteral("2026-03-14"));
    TimeGuard::instance().update(now.addSecs(1));
    QVERIFY(!TimeGuard::instance().isBlocked());
}

REGISTER_TEST(TimeGuardTest);
#include "TimeGuardTest.moc"
