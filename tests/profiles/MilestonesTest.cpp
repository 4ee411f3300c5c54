// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/MilestoneTotals.h"
#include "profiles/Milestones.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

/// A database of its own for each test, in which each of the totals stands at 100.
class MilestonesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void firesOncePerStep_data();
    void firesOncePerStep();
    void staysSilent_data();
    void staysSilent();
    void startsFromTheCurrentTotal();
    void keepsItsStartUnlessTheTypeChanges();
    void takesChangedTotalsForNoGrowth();

private:
    void growTo(int total) const;

    QString hits() const
    {
        return m_test->rows(QStringLiteral("SELECT * FROM milestones_log ORDER BY rowid"));
    }

    bool insert(const QString& type, qint64 amount, const QString& message, int active = 1) const
    {
        return m_test->exec(
            QStringLiteral("INSERT INTO milestones (name, time_created, time_updated, "
                           "time_last_triggered, stats_type, stats_amount, milestone_active, "
                           "last_stats_when_triggered, custom_message) VALUES ('Name', "
                           "'2020-01-01', '2020-01-01', '', '%1', %2, %4, 90, '%3')")
                .arg(type, QString::number(amount), message, QString::number(active)));
    }

    std::unique_ptr<TestDatabase> m_test;
};

void MilestonesTest::init()
{
    m_test.reset(); // There is only one database at a time.
    m_test = std::make_unique<TestDatabase>();
    growTo(100);
}

void MilestonesTest::growTo(int total) const
{
    for (const QString& table : {QStringLiteral("keypresses"), QStringLiteral("mouseclicks")}) {
        m_test->exec(QStringLiteral("REPLACE INTO %1 (day, hour, count, profile_id) VALUES "
                                    "('2020-01-01', 1, %2 - 40, 0), ('2020-01-01', 1, 40, 1)")
                         .arg(table, QString::number(total)));
    }
    m_test->exec(QStringLiteral("REPLACE INTO network_interface_bandwidth VALUES ('2020-01-01', 1, "
                                "%1 * 1048576 + 7, %1 * 1048576 + 1048575, 'm')")
                     .arg(total));
    m_test->exec(QStringLiteral("REPLACE INTO uptimes VALUES ('2020-01-01 00:00:00', "
                                "datetime('2020-01-01 00:00:30', '+%1 minutes'))")
                     .arg(total));
}

void MilestonesTest::firesOncePerStep_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("text");
    for (const QString& type : MilestoneTotals::types()) {
        QTest::newRow(qPrintable(type))
            << type << QString() << QStringLiteral("Hit Milestone 'Name' with 10 %1").arg(type);
    }
    QTest::newRow("custom message")
        << QStringLiteral("Keys") << QStringLiteral("Well done") << QStringLiteral("Well done");
    QCOMPARE(MilestoneTotals::types().size(), 5);
}

void MilestonesTest::firesOncePerStep()
{
    QFETCH(QString, type);
    QFETCH(QString, message);
    QVERIFY(insert(type, 10, message));
    Milestones milestones;
    milestones.refreshSettings(Milestones::All);
    const QSignalSpy messages(&milestones, &Milestones::signalNeedTrayIconMessage);
    const LogCapture log;
    milestones.checkForMilestone(); // At 100, the amount exactly.
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.at(0).at(0).toString(), QStringLiteral("Milestone Hit!"));
    QTEST(messages.at(0).at(1).toString(), "text");
    growTo(109);
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 1);
    growTo(125); // More than twice the amount.
    milestones.checkForMilestone();
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(log.count(QStringLiteral("Milestone triggered!")), 2);
    growTo(50); // After a cleaning: it counts from here.
    milestones.checkForMilestone();
    growTo(59);
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 2);
    Milestones afterCleaning; // The next run of the client.
    afterCleaning.refreshSettings(Milestones::All);
    QCOMPARE(afterCleaning.list().constFirst().lastStatsWhenTriggered, 50);
    growTo(60);
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 3);
    QCOMPARE(m_test->rows(QStringLiteral("SELECT name, stats_type, stats_amount, "
                                         "stats_when_triggered FROM milestones_log")),
             QStringLiteral("Name|%1|10|100,Name|%1|10|125,Name|%1|10|60").arg(type));
    QCOMPARE(milestones.log().constFirst().statsWhenTriggered, 60);
    QVERIFY(milestones.log().constFirst().timeTriggered.isValid());
    Milestones next; // The next run of the client.
    next.refreshSettings(Milestones::All);
    QCOMPARE(next.list().constFirst().lastStatsWhenTriggered, 60);
    QVERIFY(next.list().constFirst().timeLastTriggered.isValid());
}

void MilestonesTest::staysSilent_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<qint64>("amount");
    QTest::addColumn<int>("active");
    QTest::addColumn<int>("logged");
    QTest::newRow("inactive") << QStringLiteral("Keys") << Q_INT64_C(1) << 0 << 0;
    QTest::newRow("unknown type") << QStringLiteral("Cups of Tea") << Q_INT64_C(1) << 1 << 1;
    QTest::newRow("no amount") << QStringLiteral("Keys") << Q_INT64_C(0) << 1 << 1;
    QTest::newRow("one more than there is") << QStringLiteral("Keys") << Q_INT64_C(11) << 1 << 0;
}

void MilestonesTest::staysSilent()
{
    QFETCH(QString, type);
    QFETCH(qint64, amount);
    QFETCH(int, active);
    QFETCH(int, logged);
    QVERIFY(insert(type, amount, QString(), active));
    Milestones milestones;
    const QSignalSpy messages(&milestones, &Milestones::signalNeedTrayIconMessage);
    const LogCapture log;
    milestones.refreshSettings(Milestones::All);
    milestones.checkForMilestone();
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 0);
    QCOMPARE(hits(), QString());
    QCOMPARE(log.count(QStringLiteral("Ignoring milestone Name")), logged);
    QCOMPARE(milestones.list().size(), 1);
}

void MilestonesTest::startsFromTheCurrentTotal()
{
    Milestones milestones;
    const QSignalSpy messages(&milestones, &Milestones::signalNeedTrayIconMessage);
    Milestones::Choice choice{QStringLiteral(" Tea "), QStringLiteral("Clicks"), 5, QString()};
    QVERIFY(milestones.add(choice));
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 0);
    growTo(103);
    const Milestones::Milestone added = milestones.list().constFirst();
    QCOMPARE(added.name, QStringLiteral("Tea"));
    QVERIFY(!added.timeLastTriggered.isValid());
    MilestoneTotals totals(m_test->database());
    QCOMPARE(Milestones::progress(added, totals), std::optional<qint64>(3));
    growTo(105);
    QVERIFY(milestones.setActive(added.id, false));
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 0);
    QVERIFY(milestones.setActive(added.id, true));
    milestones.checkForMilestone();
    QCOMPARE(messages.size(), 1);
    QVERIFY(milestones.remove(added.id));
    QVERIFY(!milestones.remove(added.id));
    QVERIFY(milestones.list().isEmpty());
    for (const auto& [name, type, amount] :
         {std::tuple{"", "Clicks", 5}, {"Tea", "Cups", 5}, {"Tea", "Clicks", 0}}) {
        choice = {QLatin1String(name), QLatin1String(type), amount, QString()};
        QVERIFY(!milestones.add(choice));
    }
}

void MilestonesTest::keepsItsStartUnlessTheTypeChanges()
{
    QVERIFY(insert(QStringLiteral("Keys"), 50, QString()));
    Milestones milestones;
    milestones.refreshSettings(Milestones::All);
    const qint64 id = milestones.list().constFirst().id;
    Milestones::Choice choice{QStringLiteral("Other"), QStringLiteral("Keys"), 60,
                              QStringLiteral("Text")};
    QVERIFY(milestones.update(id, choice));
    QCOMPARE(milestones.list().constFirst().lastStatsWhenTriggered, 90);
    QCOMPARE(milestones.list().constFirst().customMessage, QStringLiteral("Text"));
    choice.statsType = QStringLiteral("Uploaded MB");
    QVERIFY(milestones.update(id, choice));
    QCOMPARE(milestones.list().constFirst().lastStatsWhenTriggered, 100);
    QVERIFY(!milestones.update(id + 1, choice));
}

void MilestonesTest::takesChangedTotalsForNoGrowth()
{
    QVERIFY(insert(QStringLiteral("Keys"), 20, {}) && insert(QStringLiteral("Clicks"), 20, {}) &&
            insert(QStringLiteral("hours of sleep"), 20, {}));
    Milestones milestones;
    milestones.refreshSettings(Milestones::All);
    milestones.whileChangingTotals([this] { growTo(5'000); });
    milestones.checkForMilestone();
    QCOMPARE(hits(), QString());
    QCOMPARE(m_test->rows(QStringLiteral("SELECT last_stats_when_triggered FROM milestones")),
             QStringLiteral("4990,4990,90"));
    growTo(5'010); // As far as each was before: ten of twenty.
    milestones.checkForMilestone();
    QCOMPARE(hits().count(QStringLiteral("Name|")), 2);
}

REGISTER_TEST(MilestonesTest);
#include "MilestonesTest.moc"
