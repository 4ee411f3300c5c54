// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "profiles/ProfileDeletion.h"
#include "stats/Collector.h"
#include "stats/KeypressesStat.h"
#include "storage/ReadingConnection.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
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

/// Another program in the middle of reading, which lets nobody commit.
class Reader
{
public:
    explicit Reader(const Client& client)
        : m_connection(client.database()->getDatabaseFileName())
        , m_query(m_connection.database())
    {
        client.exec(QStringLiteral("PRAGMA busy_timeout=0"));
        m_query.exec(QStringLiteral("SELECT * FROM sqlite_master"));
        m_query.next();
    }

private:
    ReadingConnection m_connection;
    DSqlQuery m_query;
};

/// Another program that holds the right to write until it lets go, and writes nothing. Letting go
/// waits for nobody: unlike a commit, which waits for all readers to end, even of an empty
/// transaction.
class Writer
{
public:
    explicit Writer(const QString& fileName)
        : m_connection(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName()))
    {
        m_connection.setDatabaseName(fileName);
        m_connection.open();
    }

    ~Writer()
    {
        m_connection = QSqlDatabase();
        QSqlDatabase::removeDatabase(connectionName());
    }

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    bool hold() const { return DSqlQuery(m_connection).exec(QStringLiteral("BEGIN IMMEDIATE")); }

    bool letGo() const { return DSqlQuery(m_connection).exec(QStringLiteral("ROLLBACK")); }

private:
    static QString connectionName() { return QStringLiteral("another-program"); }

    QSqlDatabase m_connection;
};

} // namespace

class CollectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void startsPausesAndTicksByItself();
    void tellsStatisticsWindowAndProfile();
    void skipsDisabledAndRemovedStatistics();
    void doesNothingWithoutADatabase();
    void waitsForTheClockAndGoesOn();
    void neverNestsTicks();
    void storesTheLastKeysAtTheEnd();
    void copiesTheTotalsOnceAMinute();
    void survivesAFailingCommit();
    void keepsWhatItCannotBegin();
    void movesTheHistoryAgainAfterAFailingCommit();
    void keepsCountsWhileAProfileIsDeleted_data();
    void keepsCountsWhileAProfileIsDeleted();

private:
    void typeAndTick(int elapsedMs)
    {
        m_client->system.keys = {Qt::Key_A};
        m_collector->update(m_now.addMSecs(elapsedMs));
    }

    int storedKeys()
    {
        return m_client->value(QStringLiteral("SELECT sum(count) FROM keypress_frequency")).toInt();
    }

    QString copiedKeys()
    {
        return m_client->value(QStringLiteral("SELECT value FROM unzurged_stats WHERE name='keys'"))
            .toString();
    }

    QDateTime m_now;
    std::unique_ptr<Client> m_client;
    std::unique_ptr<KeypressesStat> m_keys;
    std::unique_ptr<HookedStat> m_hooked;
    std::unique_ptr<Collector> m_collector;
};

void CollectorTest::init()
{
    m_client = std::make_unique<Client>();
    // Not before the second that the first tick stores by SQLite's own clock.
    m_now = QDateTime::currentDateTime().addSecs(1);
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

void CollectorTest::startsPausesAndTicksByItself()
{
    m_collector->startCollector();
    QVERIFY(!m_collector->isCollecting());
    QTRY_VERIFY(m_hooked->updates > 0);
    m_collector->pauseCollector();
    m_collector->startCollector();
    m_collector->pauseCollector();
    QTRY_VERIFY(!m_collector->isCollecting());
    m_collector->finish();
    QVERIFY(m_collector->isFinished());
}

void CollectorTest::tellsStatisticsWindowAndProfile()
{
    m_client->exec(QStringLiteral("INSERT INTO profiles (id, name) VALUES (4, 'Work')"));
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
    HookedStat replacement(&m_client->system, nullptr);
    m_collector->addStat(&replacement);
    m_collector->removeStat(m_hooked.get()); // No longer ticked: takes nothing out.
    m_collector->update(m_now);
    replacement.setEnabled(true);
    m_collector->update(m_now);
    m_collector->removeStat(&replacement);
    m_collector->update(m_now.addSecs(60));
    QCOMPARE(replacement.updates, 1);
    QCOMPARE(m_hooked->updates, 0);
}

void CollectorTest::doesNothingWithoutADatabase()
{
    const LogCapture log;
    m_client->database()->closeDatabase();
    const QString before = log.text();
    typeAndTick(0);
    QCOMPARE(log.text(), before);
    QCOMPARE(m_hooked->updates, 0);

    QVERIFY(m_client->database()->reconnectIfNeeded());
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
    typeAndTick(0);
    QCOMPARE(m_hooked->updates, 1);
    QCOMPARE(storedKeys(), 1);
    QVERIFY(m_client->exec(QStringLiteral("BEGIN"))); // None is left open.
}

void CollectorTest::storesTheLastKeysAtTheEnd()
{
    m_collector->update(m_now);
    m_client->system.keys = {Qt::Key_A, Qt::Key_B};
    m_collector->stopCollector();
    m_collector->finish(); // No event loop turns in between.
    QCOMPARE(storedKeys(), 2);
    QVERIFY(!m_keys->isEnabled());
    QCOMPARE(m_client->system.inputHolders, 0);
    QCOMPARE(copiedKeys(), QStringLiteral("2"));
}

void CollectorTest::copiesTheTotalsOnceAMinute()
{
    typeAndTick(0);
    QCOMPARE(copiedKeys(), QStringLiteral("1"));
    typeAndTick(59'500);
    QCOMPARE(copiedKeys(), QStringLiteral("1"));
    m_collector->update(m_now.addMSecs(60'000));
    QCOMPARE(copiedKeys(), QStringLiteral("2"));
}

void CollectorTest::survivesAFailingCommit()
{
    m_collector->update(m_now);
    const LogCapture log;
    {
        const Reader reader(*m_client);
        for (const int elapsedMs : {5'000, 10'000, 15'000, 20'000, 25'000}) {
            typeAndTick(elapsedMs);
        }
    }
    typeAndTick(30'000);
    QCOMPARE(storedKeys(), 1);                        // The rows of five ticks are gone,
    QCOMPARE(m_client->totals.unzurged().keys, 6ULL); // the account totals are not,
    const QString failure = QStringLiteral("Unable to commit the collector's transaction");
    QCOMPARE(log.text().count(failure), 1); // and the log says so, once a minute.
}

void CollectorTest::keepsWhatItCannotBegin()
{
    QVERIFY(m_client->exec(QStringLiteral("BEGIN")));
    typeAndTick(0);
    QVERIFY(m_client->exec(QStringLiteral("COMMIT")));
    QCOMPARE(storedKeys(), 0);
    m_collector->update(m_now.addSecs(1));
    QCOMPARE(storedKeys(), 1);
}

void CollectorTest::movesTheHistoryAgainAfterAFailingCommit()
{
    m_client->exec(QStringLiteral("INSERT INTO last_update_time VALUES "
                                  "(datetime('now', 'localtime', '3 days', '1 hours'))"));
    m_client->exec(QStringLiteral("INSERT INTO mouseclicks (day) VALUES ('2026-03-14')"));
    const auto dayAfterTicks = [this] {
        for (int tick = 0; tick < 11; ++tick) {
            m_collector->update(m_now);
        }
        return m_client->value(QStringLiteral("SELECT day FROM mouseclicks")).toString();
    };
    {
        const Reader reader(*m_client);
        QCOMPARE(dayAfterTicks(), QStringLiteral("2026-03-14"));
    }
    QCOMPARE(dayAfterTicks(), QStringLiteral("2026-03-11"));
}

void CollectorTest::keepsCountsWhileAProfileIsDeleted_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<bool>("flushed"); ///< Before the first tick that follows.
    QTest::addColumn<QString>("stored");
    QTest::newRow("deleted") << false << false << QStringLiteral("0|3");
    QTest::newRow("deleted, then flushed") << false << true << QStringLiteral("0|3");
    QTest::newRow("cancelled") << true << false << QStringLiteral("4|3");
}

void CollectorTest::keepsCountsWhileAProfileIsDeleted()
{
    QFETCH(bool, cancelled);
    QFETCH(bool, flushed);
    m_client->exec(QStringLiteral("INSERT INTO profiles (id, name) VALUES (4, 'Work')"));
    ProfileManager& profiles = m_client->profiles;
    connect(&profiles, &ProfileManager::signalNeedFlush, m_collector.get(), &Collector::flush);
    profiles.setActiveStatsProfile(4, QStringLiteral("Work"));
    m_client->system.keys = {Qt::Key_A}; // Not yet written when the deletion begins.
    // Without the right to write, the deletion cannot be over before it is cancelled.
    const Writer writer(m_client->database()->getDatabaseFileName());
    bool held = false;
    connect(
        &profiles, &ProfileManager::signalNeedFlush, this, [&] { held = writer.hold(); },
        Qt::SingleShotConnection);
    ProfileDeletion deletion(profiles);
    QSignalSpy finished(&deletion, &ProfileDeletion::finished);
    const LogCapture log;
    QVERIFY(deletion.start(4));
    QVERIFY(held);
    QCOMPARE(m_client->system.keys.size(), 0);
    m_client->system.keys = {Qt::Key_A, Qt::Key_A};
    m_collector->flush();
    m_collector->update(m_now.addSecs(60));
    QCOMPARE(m_client->system.keys.size(), 2);
    if (cancelled) {
        deletion.cancel();
    }
    QVERIFY(writer.letGo());
    QVERIFY(finished.size() == 1 || finished.wait());
    if (flushed) {
        m_collector->flush();
    }
    m_collector->update(m_now.addSecs(120));
    QVERIFY(!log.contains(QStringLiteral("error")));
    QTEST(m_client->rows(QStringLiteral("SELECT profile_id, SUM(count) FROM keypress_frequency "
                                        "GROUP BY profile_id")),
          "stored");
}

REGISTER_TEST(CollectorTest);
#include "CollectorTest.moc"
