// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace {

const QString Editor = QStringLiteral("/usr/bin/editor");
const QString Browser = QStringLiteral("/usr/bin/browser");

/// One run of the program: a database and the counters, set up on a data directory.
class Run final
{
public:
    explicit Run(const QString& directory)
        : database(directory, m_prompts)
        , stats(nullptr, [] { return QByteArray("0123456789abcdef"); })
    {
        stats.setup(directory);
    }

    void count(int keys)
    {
        stats.increaseKeys(keys);
        stats.increaseAppKeys(Editor, keys);
    }

    bool sql(const QString& statement) { return DSqlQuery(&database).exec(statement); }

    bool emptyTables()
    {
        return sql(QStringLiteral("DELETE FROM unzurged_stats")) &&
               sql(QStringLiteral("DELETE FROM pending_applications_stats"));
    }

    QString value(const QString& select)
    {
        DSqlQuery query(&database, select, true);
        return query.next() ? query.value(0).toString() : QString();
    }

    quint64 editorKeys() const { return stats.unzurgedPerApplication().value(Editor).keys; }

private:
    TestPrompts m_prompts;

public:
    Database database;
    LocalStats stats;
};

QString total(const char* name)
{
    return QStringLiteral("SELECT value FROM unzurged_stats WHERE name = '%1'")
        .arg(QLatin1String(name));
}

} // namespace

class LocalStatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsFromTheNewerPlace_data();
    void startsFromTheNewerPlace();
    void keepsOldCountsOfARestoredDatabaseOut();
    void copiesEveryCounter();
    void writesOnlyWhatChanged();
    void writesAgainWhatTheTablesLost();
    void readsAbsurdValues_data();
    void readsAbsurdValues();
    void addsUpToTheLimit();
    void keepsCountingWhileTheDatabaseIsClosed();
    void survivesBeingKilled();

private:
    QString directory() const { return m_directory->path(); }

    QString filePath() const { return m_directory->filePath(TvwFile::FileName); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void LocalStatsTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void LocalStatsTest::startsFromTheNewerPlace_data()
{
    // Each character is one thing done: K counts ten keys, F saves the file, T copies to the
    // tables, f loses the file, d damages it, t empties the tables.
    QTest::addColumn<QByteArray>("history");
    QTest::addColumn<quint64>("keys");
    QTest::newRow("nothing ever") << QByteArray() << Q_UINT64_C(0);
    QTest::newRow("file newer") << QByteArray("KTKF") << Q_UINT64_C(20);
    QTest::newRow("tables newer") << QByteArray("KFKT") << Q_UINT64_C(20);
    QTest::newRow("counted after both") << QByteArray("KFTK") << Q_UINT64_C(10);
    QTest::newRow("file missing") << QByteArray("KTKFf") << Q_UINT64_C(10);
    QTest::newRow("file damaged") << QByteArray("KTKFd") << Q_UINT64_C(10);
    QTest::newRow("tables empty") << QByteArray("KFKTt") << Q_UINT64_C(10);
    QTest::newRow("both empty") << QByteArray("KFTft") << Q_UINT64_C(0);
}

void LocalStatsTest::startsFromTheNewerPlace()
{
    QFETCH(QByteArray, history);
    QFETCH(quint64, keys);
    {
        Run run(directory());
        for (const char step : history) {
            switch (step) {
            case 'K':
                run.count(10);
                break;
            case 'F':
                QVERIFY(run.stats.saveSettings());
                break;
            case 'T':
                run.stats.writeDatabaseCopy();
                break;
            case 'f':
                QVERIFY(QFile::remove(filePath()));
                break;
            case 'd':
                QVERIFY(QFile::resize(filePath(), 60));
                break;
            case 't':
                QVERIFY(run.emptyTables());
                break;
            }
        }
    }
    const Run next(directory());
    QCOMPARE(next.stats.unzurged().keys, keys);
    QCOMPARE(next.editorKeys(), keys);
}

void LocalStatsTest::keepsOldCountsOfARestoredDatabaseOut()
{
    const QTemporaryDir elsewhere;
    {
        // Many generations, of a data directory that is lost; its database comes from a backup.
        Run lost(elsewhere.path());
        for (int i = 0; i < 20; ++i) {
            lost.count(10);
            lost.stats.writeDatabaseCopy();
        }
    }
    {
        Run fresh(directory());
        fresh.count(3);
        QVERIFY(fresh.stats.saveSettings());
    }
    const QString name = QStringLiteral("/tallyvane.db");
    QVERIFY(QFile::remove(directory() + name));
    QVERIFY(QFile::copy(elsewhere.path() + name, directory() + name));
    Run next(directory());
    QCOMPARE(next.stats.unzurged().keys, 3U);
    QCOMPARE(next.editorKeys(), 3U);
    next.stats.writeDatabaseCopy();
    QCOMPARE(next.value(total("keys")), QStringLiteral("3"));
}

void LocalStatsTest::copiesEveryCounter()
{
    Run run(directory());
    run.stats.increaseKeys(1);
    run.stats.increaseClicks(2);
    run.stats.increaseScrolls(3);
    run.stats.increaseDistanceInches(4);
    run.stats.increaseUptime(5999);
    run.stats.increaseAppClicks(Editor, 6);
    run.stats.increaseAppScrolls(Editor, 7);
    run.stats.increaseAppDistanceInches(Editor, 8);
    run.stats.increaseAppUptime(Editor, 9, QDateTime::currentDateTime());
    run.stats.increaseKeys(-1);
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.value(QStringLiteral("SELECT group_concat(name || '=' || value) FROM "
                                      "(SELECT * FROM unzurged_stats WHERE name <> 'lineage' "
                                      "ORDER BY name)")),
             QStringLiteral("clicks=2,distance_inches=4,download=0,generation=1,keys=1,scrolls=3,"
                            "settled=0,upload=0,uptime=5"));
    QCOMPARE(
        run.value(QStringLiteral("SELECT path || ',' || keys || ',' || clicks || ',' || scrolls "
                                 "|| ',' || distance_inches || ',' || uptime FROM "
                                 "pending_applications_stats")),
        Editor + QStringLiteral(",0,6,7,8,9"));

    const UnzurgedCounts before = run.stats.unzurged();
    LocalStats fromTables(nullptr, systemMachineId);
    fromTables.setup(directory());
    QCOMPARE(fromTables.unzurged().uptime, 5000U);
    QCOMPARE(fromTables.unzurged().scrolls, before.scrolls);
    QVERIFY(fromTables.unzurgedPerApplication() == run.stats.unzurgedPerApplication());
}

void LocalStatsTest::writesOnlyWhatChanged()
{
    Run run(directory());
    run.count(1);
    run.stats.increaseAppKeys(Browser, 1);
    run.stats.writeDatabaseCopy();
    // What is not written again keeps the mark.
    QVERIFY(run.sql(QStringLiteral("UPDATE pending_applications_stats SET clicks = 77")));
    QVERIFY(run.sql(QStringLiteral("UPDATE unzurged_stats SET value = 77 WHERE name = 'clicks'")));
    const QString marked =
        QStringLiteral("SELECT group_concat(path) FROM pending_applications_stats "
                       "WHERE clicks = 77");
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.value(total("clicks")), QStringLiteral("77"));
    run.count(1);
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.value(total("clicks")), QStringLiteral("0"));
    QCOMPARE(run.value(marked), Browser);
}

void LocalStatsTest::writesAgainWhatTheTablesLost()
{
    Run run(directory());
    run.stats.increaseAppKeys(Browser, 5);
    run.stats.writeDatabaseCopy();
    QVERIFY(run.database.connection().transaction());
    run.count(10);
    run.stats.writeDatabaseCopy();
    QVERIFY(run.database.connection().rollback());
    QCOMPARE(run.value(total("keys")), QStringLiteral("0"));

    run.stats.writeDatabaseCopy(); // Nothing was counted since: the tables alone tell.
    QCOMPARE(run.value(total("keys")), QStringLiteral("10"));
    const QString applicationKeys =
        QStringLiteral("SELECT sum(keys) FROM pending_applications_stats");
    QCOMPARE(run.value(applicationKeys), QStringLiteral("15"));

    QVERIFY(run.emptyTables());
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.value(total("keys")), QStringLiteral("10"));
    QCOMPARE(run.value(applicationKeys), QStringLiteral("15"));
}

void LocalStatsTest::readsAbsurdValues_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<quint64>("keys");
    QTest::addColumn<quint64>("uptime");
    const auto row = [](const char* name, const char* stored, quint64 keys, quint64 uptime) {
        QTest::newRow(name) << QString::fromLatin1(stored) << keys << uptime;
    };
    constexpr quint64 full = CounterLimit;
    constexpr quint64 fullSeconds = full / 1000 * 1000;
    row("ordinary", "12", 12, 12'000);
    row("negative", "-12", 0, 0);
    row("largest", "9223372036854775807", full, fullSeconds);
    row("one more", "9223372036854775808", full, fullSeconds);
    row("infinite", "9e999", full, fullSeconds);
    row("word", "'many'", 0, 0);
    row("blob", "x'00ff'", 0, 0);
}

void LocalStatsTest::readsAbsurdValues()
{
    QFETCH(QString, stored);
    {
        Run run(directory());
        run.count(1);
        run.stats.writeDatabaseCopy();
        for (const char* name : {"keys", "uptime"}) {
            QVERIFY(run.sql(QStringLiteral("UPDATE unzurged_stats SET value = %1 WHERE name = '%2'")
                                .arg(stored, QLatin1String(name))));
            QVERIFY(run.sql(QStringLiteral("UPDATE pending_applications_stats SET %2 = %1")
                                .arg(stored, QLatin1String(name))));
        }
    }
    const Run next(directory());
    QTEST(next.stats.unzurged().keys, "keys");
    QTEST(next.stats.unzurged().uptime, "uptime");
    QTEST(next.editorKeys(), "keys");
}

void LocalStatsTest::addsUpToTheLimit()
{
    LocalStats stats;
    stats.increaseDistanceInches(CounterLimit - 1);
    stats.increaseDistanceInches(1);
    QCOMPARE(stats.unzurged().distanceInches, CounterLimit);
    stats.increaseDistanceInches(std::numeric_limits<quint64>::max());
    QCOMPARE(stats.unzurged().distanceInches, CounterLimit);
}

void LocalStatsTest::keepsCountingWhileTheDatabaseIsClosed()
{
    Run run(directory());
    run.count(10);
    run.stats.writeDatabaseCopy();
    run.database.closeDatabase();
    run.count(10);
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.stats.unzurged().keys, 20U);
    QVERIFY(run.stats.saveSettings());
    QVERIFY(run.database.reconnectIfNeeded());
    run.stats.writeDatabaseCopy();
    QCOMPARE(run.value(total("keys")), QStringLiteral("20"));
}

namespace {

/// Counts and stores, reporting each count that was stored, until it is killed.
[[noreturn]] void countUntilKilled(const QString& directory, int report)
{
    Run run(directory);
    for (int i = 1;; ++i) {
        run.count(1);
        if (i % 5 == 0) {
            run.stats.saveSettings();
        } else {
            run.database.connection().transaction();
            run.stats.writeDatabaseCopy();
            run.database.connection().commit();
        }
        const quint64 stored = run.stats.unzurged().keys;
        if (::write(report, &stored, sizeof stored) != sizeof stored) {
            std::abort();
        }
    }
}

/// Runs `countUntilKilled` in a process of its own; returns the last count it reported.
quint64 countAndKill(const QString& directory, std::chrono::microseconds lifetime)
{
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) {
        return 0;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        countUntilKilled(directory, pipe[1]);
    }
    ::close(pipe[1]);
    quint64 stored = 0;
    quint64 last = 0;
    // The time runs from the first count, so that starting up does not use it up.
    bool killed = false;
    while (::read(pipe[0], &stored, sizeof stored) == sizeof stored) {
        last = stored;
        if (!killed) {
            ::usleep(static_cast<useconds_t>(lifetime.count()));
            ::kill(child, SIGKILL);
            killed = true;
        }
    }
    ::close(pipe[0]);
    ::waitpid(child, nullptr, 0);
    return last;
}

} // namespace

void LocalStatsTest::survivesBeingKilled()
{
    constexpr int kills = 30;
    quint64 reported = 0;
    for (int i = 0; i < kills; ++i) {
        reported = countAndKill(
            directory(), std::chrono::microseconds(QRandomGenerator::global()->bounded(20'000)));
        QVERIFY(reported > 0);
        const Run next(directory());
        // The last count stored, or the one after it, stored but not yet reported.
        const quint64 keys = next.stats.unzurged().keys;
        QVERIFY2(keys == reported || keys == reported + 1,
                 qPrintable(QStringLiteral("%1 after %2").arg(keys).arg(reported)));
        QCOMPARE(next.editorKeys(), keys);
    }
    // A kill in the midst of a save leaves the temporary file, which is none of these.
    const QStringList aside{QStringLiteral("tallyvane.tvw.damaged-*")};
    QCOMPARE(QDir(directory()).entryList(aside, QDir::Files), QStringList());
}

REGISTER_TEST(LocalStatsTest);
#include "LocalStatsTest.moc"
