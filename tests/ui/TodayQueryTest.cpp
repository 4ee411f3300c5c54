// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "storage/DSqlQuery.h"
#include "support/TestRegistry.h"
#include "ui/HourSlots.h"
#include "ui/TodayQuery.h"

#include <QTest>

class TodayQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsEachHourOnce_data();
    void countsEachHourOnce();
    void addsUpProfilesAndHours();
    void listsTheMostUsedOfOneDayFirst();
    void saysThatItFailed();
    void cutsTheDayIntoHours_data();
    void cutsTheDayIntoHours();

private:
    const QDate m_day{2026, 11, 21};
};

void TodayQueryTest::countsEachHourOnce_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<qint64>("perKey");
    QTest::addColumn<qint64>("perApplication");
    QTest::addColumn<qint64>("shown");
    const auto row = [](const char* name, qint64 total, qint64 perKey, qint64 perApplication,
                        qint64 shown) {
        QTest::newRow(name) << total << perKey << perApplication << shown;
    };
    row("the total lacks the first batch", 90, 100, 100, 100);
    row("unknown keys lack their own count", 95, 60, 100, 100);
    row("heat map off", 90, 0, 100, 100);
    row("an application is excluded", 90, 100, 40, 100);
    row("only the total is kept", 90, 0, 0, 90);
    row("nothing", 0, 0, 0, 0);
}

void TodayQueryTest::countsEachHourOnce()
{
    QFETCH(qint64, total);
    QFETCH(qint64, perKey);
    QFETCH(qint64, perApplication);
    UiDatabase database;
    database.addHour(m_day, 9, total);
    database.addKey(m_day, 9, Qt::Key_A, perKey / 2);
    database.addKey(m_day, 9, Qt::Key_B, perKey / 2);
    database.addApplication(m_day, 9, QStringLiteral("/usr/bin/kate"), perApplication);
    const std::optional<TodayFigures> figures = TodayQuery::run(database.connection(), m_day);
    QVERIFY(figures);
    QTEST(figures->keys, "shown");
    QTEST(TodayQuery::keys(database.connection(), m_day), "shown");
}

void TodayQueryTest::addsUpProfilesAndHours()
{
    UiDatabase database;
    // The larger count differs from profile to profile, within one hour.
    database.addHour(m_day, 9, 10, 0);
    database.addKey(m_day, 9, Qt::Key_A, 15, 0);
    database.addHour(m_day, 9, 30, 3);
    database.addKey(m_day, 9, Qt::Key_A, 20, 3);
    database.addHour(m_day, 23, 7, 3);
    const std::optional<TodayFigures> figures = TodayQuery::run(database.connection(), m_day);
    QVERIFY(figures);
    const QList<TodayFigures::HourCount> hours{{9, 45}, {23, 7}};
    QCOMPARE(figures->hours, hours);
    QCOMPARE(figures->keys, 52);
    const QList<TodayFigures::KeyCount> keys{{Qt::Key_A, 35}};
    QCOMPARE(figures->keyCounts, keys);
}

void TodayQueryTest::listsTheMostUsedOfOneDayFirst()
{
    UiDatabase database;
    database.addBusyDay(m_day.addDays(-1));
    database.addBusyDay(m_day.addDays(1));
    database.addKey(m_day, 9, Qt::Key_A, 3);
    database.addKey(m_day, 9, Qt::Key_B, 2);
    database.addKey(m_day, 10, Qt::Key_B, 2);
    database.addApplication(m_day, 9, QStringLiteral("/usr/bin/kate"), 5);
    database.addApplication(m_day, 9, QStringLiteral("/usr/bin/firefox"), 6);
    database.addApplication(m_day, 9, QStringLiteral("/usr/bin/only-clicked"), 0);
    const std::optional<TodayFigures> figures = TodayQuery::run(database.connection(), m_day);
    QVERIFY(figures);
    const QList<TodayFigures::KeyCount> keys{{Qt::Key_B, 4}, {Qt::Key_A, 3}};
    QCOMPARE(figures->keyCounts, keys);
    const QList<TodayFigures::ApplicationCount> applications{
        {QStringLiteral("/usr/bin/firefox"), 6}, {QStringLiteral("/usr/bin/kate"), 5}};
    QCOMPARE(figures->applications, applications);
}

void TodayQueryTest::saysThatItFailed()
{
    UiDatabase database;
    QVERIFY(DSqlQuery(database.connection()).exec(QStringLiteral("DROP TABLE keypress_frequency")));
    QVERIFY(!TodayQuery::run(database.connection(), m_day));
    QVERIFY(!TodayQuery::dataVersion(QSqlDatabase()));
}

void TodayQueryTest::cutsTheDayIntoHours_data()
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

void TodayQueryTest::cutsTheDayIntoHours()
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

REGISTER_TEST(TodayQueryTest);
#include "TodayQueryTest.moc"
