// SPDX-License-Identifier: GPL-3.0-or-later
// What a tick of the collector costs: with nothing to write, and with a busy minute of 200 distinct
// keys in one application. Beside each stands what SQLite alone takes for the same work. The time
// of a busy tick is mostly the disk's: with TMPDIR on a RAM disk it shows the program's own share.
// With TALLYVANE_HISTORY the client counts into a copy of that database; the references stay.
#include "account/LocalStats.h"
#include "bench/DataDirectory.h"
#include "profiles/ProfileManager.h"
#include "stats/Collector.h"
#include "stats/KeypressesStat.h"
#include "support/FakeSystem.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <cstdlib>

namespace {

constexpr int DistinctKeys = 200;
constexpr int PressesPerKey = 3;

/// A client that counts keys, and only those.
struct Client
{
    Client()
    {
        totals.setup(directory.path());
        system.activeApplication = QStringLiteral("/usr/bin/editor");
        keys.setPerApplication(true);
        keys.setEnabled(true);
        collector.addStat(&keys);
        collector.update(now);
        now = now.addMSecs(500);
        collector.update(now);
    }

    /// One tick, `ms` later than the one before.
    void tick(int ms)
    {
        now = now.addMSecs(ms);
        collector.update(now);
    }

    TestPrompts prompts;
    DataDirectory directory;
    Database database{directory.path(), prompts};
    LocalStats totals;
    ProfileManager profiles;
    FakeSystem system;
    KeypressesStat keys{&system, nullptr};
    Collector collector{nullptr};
    QDateTime now = QDateTime::currentDateTime();
};

QList<Qt::Key> busyMinute()
{
    QList<Qt::Key> keys;
    for (int i = 0; i < DistinctKeys * PressesPerKey; ++i) {
        keys += static_cast<Qt::Key>(Qt::Key_Space + i % DistinctKeys);
    }
    return keys;
}

/// SQLite's own interface on a database of the client.
class RawDatabase
{
public:
    RawDatabase()
    {
        const Database created(m_directory.path(), m_prompts);
        check(sqlite3_open(created.getDatabaseFileName().toUtf8().constData(), &m_connection));
        run("PRAGMA journal_mode=TRUNCATE");
        run("PRAGMA synchronous=NORMAL");
        run("PRAGMA cache_size=-30720");
    }

    RawDatabase(const RawDatabase&) = delete;
    RawDatabase& operator=(const RawDatabase&) = delete;

    ~RawDatabase() { sqlite3_close_v2(m_connection); }

    void run(const char* sql) { check(sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr)); }

    sqlite3_stmt* prepare(const char* sql)
    {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(m_connection, sql, -1, &statement, nullptr));
        return statement;
    }

    static void step(sqlite3_stmt* statement)
    {
        sqlite3_step(statement);
        check(sqlite3_reset(statement));
    }

private:
    static void check(int result)
    {
        if (result != SQLITE_OK) {
            std::abort();
        }
    }

    TestPrompts m_prompts;
    QTemporaryDir m_directory;
    sqlite3* m_connection = nullptr;
};

void tickWithNothingToWrite(benchmark::State& state)
{
    Client client;
    while (state.KeepRunning()) {
        client.tick(500);
    }
}

void referenceEmptyTransaction(benchmark::State& state)
{
    RawDatabase database;
    while (state.KeepRunning()) {
        database.run("BEGIN");
        database.run("COMMIT");
    }
}

void tickWithABusyMinute(benchmark::State& state)
{
    Client client;
    const QList<Qt::Key> keys = busyMinute();
    while (state.KeepRunning()) {
        client.system.keys = keys;
        client.tick(5'000);
    }
}

void referenceSameStatements(benchmark::State& state)
{
    RawDatabase database;
    const std::array insertions{
        "INSERT INTO keypresses VALUES (date('now', 'localtime'), 1, 0, 0)",
        "INSERT INTO input_per_application (day, hour, path) VALUES (date('now', 'localtime'), 1, "
        "'/usr/bin/editor')",
        "WITH RECURSIVE k(n) AS (SELECT 32 UNION ALL SELECT n+1 FROM k LIMIT 200) INSERT INTO "
        "keypress_frequency SELECT date('now', 'localtime'), 1, n, 1, 0 FROM k",
        "WITH RECURSIVE k(n) AS (SELECT 32 UNION ALL SELECT n+1 FROM k LIMIT 200) INSERT INTO "
        "keypress_frequency_application SELECT date('now', 'localtime'), 1, n, 1, "
        "'/usr/bin/editor', 0 FROM k"};
    for (const char* insertion : insertions) {
        database.run(insertion);
    }
    sqlite3_stmt* perKey = database.prepare(
        "UPDATE OR IGNORE keypress_frequency SET \"count\"=\"count\"+3 WHERE "
        "\"day\"=date('now', 'localtime') AND \"hour\"=1 AND \"key\"=? AND \"profile_id\"=0");
    sqlite3_stmt* perApplication = database.prepare(
        "UPDATE OR IGNORE keypress_frequency_application SET \"count\"=\"count\"+3 WHERE "
        "\"day\"=date('now', 'localtime') AND \"hour\"=1 AND \"key\"=? AND "
        "\"path\"='/usr/bin/editor' AND \"profile_id\"=0");
    while (state.KeepRunning()) {
        database.run("BEGIN");
        database.run("UPDATE keypresses SET \"count\"=\"count\"+600");
        database.run("UPDATE input_per_application SET \"keys\"=\"keys\"+600");
        for (int key = 0; key < DistinctKeys; ++key) {
            for (sqlite3_stmt* statement : {perKey, perApplication}) {
                sqlite3_bind_int(statement, 1, Qt::Key_Space + key);
                RawDatabase::step(statement);
            }
        }
        database.run("COMMIT");
    }
    sqlite3_finalize(perKey);
    sqlite3_finalize(perApplication);
}

BENCHMARK(tickWithNothingToWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(referenceEmptyTransaction)->Unit(benchmark::kMillisecond);
BENCHMARK(tickWithABusyMinute)->Unit(benchmark::kMillisecond);
BENCHMARK(referenceSameStatements)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
