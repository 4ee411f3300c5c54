// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/HourSlots.h"

#include <QTest>

class HourSlotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsTheDayIntoHours_data();
    void cutsTheDayIntoHours();
};

void HourSlotsTest::cutsTheDayIntoHours_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("day");
    QTest::addColumn<int>("slotCount");
    QTest::addColumn<int>("oddHour"); ///< The hour that is missing or comes twice.
    QTest::newRow("usual") << QByteArray("Europe/Berlin") << QDate(2026, 11, 21) << 24 << -1;
    QTest::newRow("clock forward") << QByteArray("Europe/Berlin") << QDate(2026, 3, 29) << 23 << 2;
    QTest::newRow("clock back") << QByteArray("Europe/Berlin") << QDate(2026, 10, 25) << 25 << 2;
    QTest::newRow("midnight missing")
        << QByteArray("Africa/Cairo") << QDate(2026, 4, 24) << 23 << 0;
    QTest::newRow("no changes") << QByteArray("UTC") << QDate(2026, 3, 29) << 24 << -1;
}

void HourSlotsTest::cutsTheDayIntoHours()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDate, day);
    QFETCH(int, slotCount);
    QFETCH(int, oddHour);
    const QList<HourSlot> hours = hourSlots(day, QTimeZone(zone));
    QCOMPARE(hours.size(), slotCount);
    int found = 0;
    for (qsizetype i = 0; i < hours.size(); ++i) {
        QVERIFY(i == 0 || hours.at(i).hour >= hours.at(i - 1).hour);
        found += hours.at(i).hour == oddHour ? 1 : 0;
        QCOMPARE(hours.at(i).occurrences, hours.at(i).hour == oddHour ? 2 : 1);
    }
    QCOMPARE(found, slotCount == 25 ? 2 : 0);
}

REGISTER_TEST(HourSlotsTest);
#include "HourSlotsTest.moc"
