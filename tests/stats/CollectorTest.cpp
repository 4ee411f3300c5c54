// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "base/Log.h"
#include "stats/Collector.h"
#include "stats/KeypressesStat.h"
#include "storage/ReadingConnection.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

#include <functional>
#include <memory>

namespace {

/// Counts its normal updates, and does within one what a test asks for.
class HookedStat : public Stat
{
    Q_OBJECT

public:
    using Stat::Stat;

    int getUpdateMilliSecondMod() const override { return 60'000; }

    int getUpdateMilliSecondModUI() const override { return 500; }

    int getFrequentUpdateMilliSecond() const override { return 60'000; }

    int getFrequentUpdateMilliSecondUI() const override { return 60'000; }

    int getInfrequentUpdateMilliSecond() const override { return 60'000; }

    void doUpdate(QDateTime, bool) override
    {
        ++updates;
        profile = statsProfileId();
        if (hook) {
            hook();
        }
    }

    int updates = 0;
    int profile = -1;
    std::function<void()> hook;
};

} // namespace

class CollectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void startsAndPausesInTheOrderAsked();
    void ticksByItself();
    void tellsStatisticsWindowAndProfile();
    void skipsDisabledAndRemovedStatistics();
    void updatesAllAfterALongPause();
    void doesNothingWithoutADatabase();
    void waitsForTheClockAndGoesOn();
    void neverNestsTicks();
    void storesTheLastKeysAtTheEnd();
    void copiesTheTotalsOnceAMinute();
    void survivesAFailingCommit();
    void keepsWhatItCannotBegin();
    void movesTheHistoryAgainAfterAFailingCommit();

private:
    int storedKeys() { return m_client->value(m_keysQuery).toInt(); }

    const QString m_keysQuery = QStringLiteral("SELECT coalesce(sum(count), 0) "
                                               "FROM keypress_frequency");
    QDateTime m_now;
    std::unique_ptr<Client> m_client;
    std::unique_ptr<KeypressesStat> m_keys;
    std::unique_ptr<HookedStat> m_hooked;
    std::unique_ptr<Collector> m_collector;
};

void CollectorTest::init()
{
    m_client = std::make_unique<Client>();
    m_now = QDateTime::currentDateTime();
    m_keys = std::make_unique<KeypressesStat>(&m_client->system, nullptr);
    m_hooked = std::make_unique<HookedStat>(&m_client->system, nullptr);
    m_collector = std::make_unique<Collector>(nullptr);
    m_collector->addStat(m_keys.get());
    m_collector->addStat(m_hooked.get());
    m_keys->setEnabled(true);
    m_hooked->setEnabled(true);
    m_collector->start();
}

void CollectorTest::cleanup()
{
    m_collector.reset();
    m_hooked.reset();
    m_keys.reset();
    m_client.reset();
}

void CollectorTest::startsAndPausesInTheOrderAsked()
{
    m_collector->startCollector();
    QVERIFY(!m_collector->isCollecting());
    QTRY_VERIFY(m_collector->isCollecting());
    m_collector->pauseCollector();
    m_collector->startCollector();
    m_collector->pauseCollector();
    QTRY_VERIFY(!m_collector->isCollecting());
    QCoreApplication::processEvents();
    m_collector->pauseCollector();
    m_collector->startCollector();
    QTRY_VERIFY(m_collector->isCollecting());
}

void CollectorTest::ticksByItself()
{
    m_collector->startCollector();
    QTRY_VERIFY(m_hooked->updates > 0);
    m_collector->finish();
    QVERIFY(m_collector->isFinished());
}

void CollectorTest::tellsStatisticsWindowAndProfile()
{
    m_client->run(QStringLiteral("INSERT INTO profiles (id, name) VALUES (4, 'Work')"));
    m_client->profiles.setActiveStatsProfile(4, QStringLiteral("Work"));
    bool isWindowOpen = false;
    m_collector->setUiModeSource([&isWindowOpen] { return isWindowOpen; });
    m_collector->update(m_now);
    m_collector->update(m_now.addMSecs(500));
    QCOMPARE(m_hooked->updates, 1);
    QCOMPARE(m_hooked->profile, 4);
    isWindowOpen = true;
    m_collector->update(m_now.addMSecs(1'000));
    QCOMPARE(m_hooked->updates, 2);
}

void CollectorTest::skipsDisabledAndRemovedStatistics()
{
    m_hooked->setEnabled(false);
    m_collector->update(m_now);
    m_hooked->setEnabled(true);
    const QString name = QStringLiteral("HookedStat");
    QCOMPARE(m_collector->getStat<HookedStat>(name), m_hooked.get());
    QVERIFY(m_collector->getStat<KeypressesStat>(name) == nullptr);

    HookedStat replacement(&m_client->system, nullptr);
    replacement.setEnabled(true);
    m_collector->addStat(&replacement);
    m_collector->removeStat(m_hooked.get()); // No longer ticked: takes nothing out.
    m_collector->update(m_now);
    m_collector->removeStat(&replacement);
    m_collector->update(m_now.addSecs(60));
    QCOMPARE(replacement.updates, 1);
    QCOMPARE(m_hooked->updates, 0);
}

void CollectorTest::updatesAllAfterALongPause()
{
    m_collector->update(m_now);
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now.addMSecs(4'999));
    QCOMPARE(storedKeys(), 0);
    m_collector->update(m_now.addSecs(61));
    QCOMPARE(storedKeys(), 1);
    QCOMPARE(m_hooked->updates, 2);
}

void CollectorTest::doesNothingWithoutADatabase()
{
    Log::start(m_client->directory.path());
    m_client->database.closeDatabase();
    QFile log(m_client->directory.filePath(QStringLiteral("app.log")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    log.seek(log.size());
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now);
    QCOMPARE(log.readAll(), QByteArray());
    Log::stop();
    QCOMPARE(m_hooked->updates, 0);

    QVERIFY(m_client->database.reconnectIfNeeded());
    m_collector->update(m_now);
    QCOMPARE(storedKeys(), 1);
}

void CollectorTest::waitsForTheClockAndGoesOn()
{
    m_collector->update(m_now.addDays(3));
    m_collector->update(m_now.addDays(3).addMSecs(500));
    m_hooked->updates = 0;
    for (int tick = 0; tick < 10; ++tick) {
        m_collector->update(m_now);
        QCOMPARE(m_hooked->updates, 0);
    }
    m_collector->update(m_now.addMSecs(1));
    QCOMPARE(m_hooked->updates, 1);
}

void CollectorTest::neverNestsTicks()
{
    m_hooked->hook = [this] { m_collector->update(m_now.addSecs(120)); };
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now);
    QCOMPARE(m_hooked->updates, 1);
    QCOMPARE(storedKeys(), 1);
    QVERIFY(m_client->run(QStringLiteral("BEGIN"))); // None is left open.
}

void CollectorTest::storesTheLastKeysAtTheEnd()
{
    m_collector->startCollector();
    QTRY_VERIFY(m_hooked->updates > 0);
    m_client->system.keys = {Qt::Key_A, Qt::Key_B};
    m_collector->stopCollector();
    QVERIFY(m_keys->isEnabled());
    m_collector->finish(); // No event loop turns in between.
    QCOMPARE(storedKeys(), 2);
    QVERIFY(!m_keys->isEnabled());
    QVERIFY(!m_collector->isCollecting());
    QCOMPARE(m_client->system.inputHolders, 0);
    QCOMPARE(m_client->value(QStringLiteral("SELECT value FROM unzurged_stats WHERE name='keys'")),
             QStringLiteral("2"));
}

void CollectorTest::copiesTheTotalsOnceAMinute()
{
    const QString copied = QStringLiteral("SELECT value FROM unzurged_stats WHERE name='keys'");
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now);
    QCOMPARE(m_client->value(copied), QStringLiteral("1"));
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now.addMSecs(59'500));
    QCOMPARE(m_client->value(copied), QStringLiteral("1"));
    m_collector->update(m_now.addMSecs(60'000));
    QCOMPARE(m_client->value(copied), QStringLiteral("2"));
}

void CollectorTest::survivesAFailingCommit()
{
    m_collector->update(m_now);
    Log::start(m_client->directory.path());
    m_client->run(QStringLiteral("PRAGMA busy_timeout=0"));
    {
        // Another program in the middle of reading.
        const ReadingConnection other(m_client->database.getDatabaseFileName());
        DSqlQuery reader(other.database());
        QVERIFY(reader.exec(QStringLiteral("SELECT * FROM sqlite_master")) && reader.next());
        for (int second = 5; second <= 25; second += 5) {
            m_client->system.keys = {Qt::Key_A};
            m_collector->update(m_now.addSecs(second));
        }
    }
    Log::stop();
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now.addSecs(30));
    QCOMPARE(storedKeys(), 1);                        // The rows of five ticks are gone,
    QCOMPARE(m_client->totals.unzurged().keys, 6ULL); // the account totals are not,
    QFile log(m_client->directory.filePath(QStringLiteral("app.log")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll().count("Unable to commit the collector's transaction"),
             1); // and the log says so, once a minute.
}

void CollectorTest::keepsWhatItCannotBegin()
{
    QVERIFY(m_client->run(QStringLiteral("BEGIN")));
    m_client->system.keys = {Qt::Key_A};
    m_collector->update(m_now);
    QVERIFY(m_client->run(QStringLiteral("COMMIT")));
    QCOMPARE(storedKeys(), 0);
    m_collector->update(m_now.addSecs(1));
    QCOMPARE(storedKeys(), 1);
}

void CollectorTest::movesTheHistoryAgainAfterAFailingCommit()
{
    m_client->run(QStringLiteral("PRAGMA busy_timeout=0"));
    m_client->run(QStringLiteral("INSERT INTO last_update_time VALUES "
                                 "(datetime('now', 'localtime', '3 days', '1 hours'))"));
    m_client->run(QStringLiteral("INSERT INTO mouseclicks (day) VALUES ('2026-03-14')"));
    const auto tick = [this](int times) {
        for (int i = 0; i < times; ++i) {
            m_collector->update(m_now);
        }
    };
    {
        const ReadingConnection other(m_client->database.getDatabaseFileName());
        DSqlQuery reader(other.database());
        QVERIFY(reader.exec(QStringLiteral("SELECT * FROM sqlite_master")) && reader.next());
        tick(11);
    }
    const QString day = QStringLiteral("SELECT day FROM mouseclicks");
    QCOMPARE(m_client->value(day), QStringLiteral("2026-03-14"));
    tick(11);
    QCOMPARE(m_client->value(day), QStringLiteral("2026-03-11"));
}

REGISTER_TEST(CollectorTest);
#include "CollectorTest.moc"
