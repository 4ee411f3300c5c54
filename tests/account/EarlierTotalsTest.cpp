// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/EarlierTotals.h"
#include "storage/HistoryStamp.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

namespace {

const QStringList Tables{
    QStringLiteral("keypresses"),
    QStringLiteral("mouseclicks"),
    QStringLiteral("mousedistance"),
    QStringLiteral("mousescrolls"),
    QStringLiteral("uptimes"),
    QStringLiteral("network_interface_bandwidth"),
    QStringLiteral("network_interfaces"),
};

QVariantMap computerStats(qint64 keys = 1)
{
    return {{QStringLiteral("keys"), keys},          {QStringLiteral("clicks"), 2},
            {QStringLiteral("download"), 3},         {QStringLiteral("upload"), 4},
            {QStringLiteral("uptime"), 90'061},      {QStringLiteral("scrolls"), 6},
            {QStringLiteral("distance_inches"), 70}, {QStringLiteral("of a later service"), 0}};
}

} // namespace

class EarlierTotalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void importsOnce();
    void importsAllOrNothing_data();
    void importsAllOrNothing();
    void refusesWhatIsNoTotal_data();
    void refusesWhatIsNoTotal();
};

void EarlierTotalsTest::importsOnce()
{
    const TestDatabase database;
    QVERIFY(database.exec(
        QStringLiteral("INSERT INTO keypresses (day, hour, count) VALUES ('2026-11-21', 9, 5)")));
    for (const qint64 keys : {1, 10}) {
        QVERIFY(EarlierTotals::from(computerStats(keys))->store(*database.database()));
    }
    const auto rows = [&](const char* query) { return database.rows(QLatin1String(query)); };
    QCOMPARE(rows("SELECT day, hour, count, profile_id FROM keypresses"),
             QStringLiteral("2026-11-21|9|5|0,0000-00-00|0|10|0"));
    QCOMPARE(rows("SELECT * FROM mouseclicks"), QStringLiteral("0000-00-00|0|2|0"));
    QCOMPARE(rows("SELECT day, hour, distance_inches FROM mousedistance"),
             QStringLiteral("0000-00-00|0|70"));
    QCOMPARE(rows("SELECT day, hour, direction, count FROM mousescrolls"),
             QStringLiteral("0000-00-00|0|0|6"));
    QCOMPARE(rows("SELECT boot_time, end_time FROM uptimes"),
             QStringLiteral("1970-01-01 00:00:00|1970-01-02 01:01:01"));
    QCOMPARE(rows("SELECT day, hour, download, upload, mac_address FROM "
                  "network_interface_bandwidth"),
             QStringLiteral("0000-00-00|0|3145728|4194304|00:00:00:00:00:00"));
    QCOMPARE(rows("SELECT mac_address, description FROM network_interfaces"),
             QStringLiteral("00:00:00:00:00:00|Imported Data"));
    QVERIFY(HistoryStamp::read(database.database()->connection()));
}

void EarlierTotalsTest::importsAllOrNothing_data()
{
    QTest::addColumn<QString>("table"); ///< Where writing fails.
    for (const QString& table : Tables + QStringList{QStringLiteral("settings")}) {
        QTest::newRow(qPrintable(table)) << table;
    }
}

void EarlierTotalsTest::importsAllOrNothing()
{
    QFETCH(QString, table);
    const TestDatabase database;
    QVERIFY(database.exec(QStringLiteral("CREATE TEMP TRIGGER refuse BEFORE INSERT ON %1 BEGIN "
                                         "SELECT RAISE(ABORT, 'no'); END")
                              .arg(table)));
    QVERIFY(!EarlierTotals::from(computerStats())->store(*database.database()));
    for (const QString& each : Tables) {
        QCOMPARE(database.value(QStringLiteral("SELECT COUNT(*) FROM ") + each).toInt(), 0);
    }
    QVERIFY(database.exec(QStringLiteral("DROP TRIGGER refuse")));
    QVERIFY(EarlierTotals::from(computerStats())->store(*database.database()));
}

void EarlierTotalsTest::refusesWhatIsNoTotal_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* name, const char* field, const QVariant& value) {
        QTest::newRow(name) << QString::fromLatin1(field) << value;
    };
    row("missing", "keys", {});
    row("negative", "clicks", -1);
    row("text", "scrolls", QStringLiteral("6"));
    row("fraction", "distance_inches", 1.5);
    row("more bytes than there are", "download", Q_INT64_C(8'796'093'022'208));
    row("longer than the calendar", "uptime", Q_INT64_C(253'402'300'800));
}

void EarlierTotalsTest::refusesWhatIsNoTotal()
{
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QVariantMap stats = computerStats();
    stats.insert(field, value);
    QVERIFY(!EarlierTotals::from(stats));
    QVERIFY(!EarlierTotals::from({}));
}

REGISTER_TEST(EarlierTotalsTest);
#include "EarlierTotalsTest.moc"
