// SPDX-License-Identifier: GPL-3.0-or-later
// What a tick of the collector costs with all local statistics: where none is due, where all are
// and nothing happened, and where all are after a busy minute of 200 distinct keys, 60 clicks,
// scrolling and travel among 20 applications. Beside them stands what SQLite alone takes for the
// same work. The time of a busy tick is mostly the disk's: with TMPDIR on a RAM disk it shows the
// program's own share.
// With TALLYVANE_HISTORY the client counts into a copy of that database; the references stay.
#include "account/LocalStats.h"
#include "bench/DataDirectory.h"
#include "profiles/ProfileManager.h"
#include "stats/AllStats.h"
#include "stats/Collector.h"
#include "stats/LiveRates.h"
#include "stats/Stat.h"
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
constexpr int Clicks = 60;
constexpr int Buttons = 3;
constexpr int Applications = 20;
constexpr int MinuteMs = 60'000;

/// A client that counts all it can without a network.
struct Client
{
    Client()
    {
        totals.setup(directory.path());
        system.activeApplication = QStringLiteral("/usr/bin/editor");
        for (int i = 0; i < Applications; ++i) {
            system.runningApplications << QStringLiteral("/usr/bin/application%1").arg(i);
        }
        AllStats::addTo(collector, &system, rates, &owner);
        for (Stat* stat : owner.findChildren<Stat*>()) {
            stat->setPerApplication(true);
            stat->setEnabled(true);
        }
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
    LiveRates rates;
    QObject owner;
    Collector collector{nullptr};
    QDateTime now = QDateTime::currentDateTime();
};

/// What a busy minute leaves to be taken.
struct BusyMinute
{
    BusyMinute()
    {
        for (int i = 0; i < DistinctKeys * PressesPerKey; ++i) {
            keys += static_cast<Qt::Key>(Qt::Key_Space + i % DistinctKeys);
        }
        for (int i = 0; i < Clicks; ++i) {
            clicks += static_cast<unsigned short>(i % Buttons);
            points += QPointF(0.01 * i, 0.5);
        }
    }

    void happenTo(FakeSystem& system) const
    {
        system.keys = keys;
        system.clicks = clicks;
        system.points = points;
        system.distanceInches = 40;
        system.scrolls = {{Utils::ScrollDirection::Up, 30}, {Utils::ScrollDirection::Down, 30}};
    }

    QList<Qt::Key> keys;
    QList<unsigned short> clicks;
    QList<QPointF> points;
};

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

void tickWithAllDue(benchmark::State& state)
{
    Client client;
    while (state.KeepRunning()) {
        client.tick(MinuteMs);
    }
}

void tickWithABusyMinute(benchmark::State& state)
{
    Client client;
    const BusyMinute minute;
    while (state.KeepRunning()) {
        minute.happenTo(client.system);
        client.tick(MinuteMs);
    }
}

/// One of the statements of a busy minute, run so many times, each time with the next number.
struct Repeated
{
    int times = 0;
    const char* sql = nullptr;
    sqlite3_stmt* statement = nullptr;
};

void referenceSameStatements(benchmark::State& state)
{
    RawDatabase database;
    const std::array insertions{
        "INSERT INTO input_per_application (day, hour, path) VALUES (date('now', 'localtime'), 1, "
        "'/usr/bin/editor')",
        "WITH RECURSIVE k(n) AS (SELECT 0 UNION ALL SELECT n+1 FROM k LIMIT 200) INSERT INTO "
        "keypress_frequency SELECT date('now', 'localtime'), 1, n, 1, 0 FROM k",
        "WITH RECURSIVE k(n) AS (SELECT 0 UNION ALL SELECT n+1 FROM k LIMIT 200) INSERT INTO "
        "keypress_frequency_application SELECT date('now', 'localtime'), 1, n, 1, "
        "'/usr/bin/editor', 0 FROM k",
        "WITH RECURSIVE k(n) AS (SELECT 0 UNION ALL SELECT n+1 FROM k LIMIT 20) INSERT INTO "
        "application_uptime SELECT datetime('now'), NULL, 1, '/usr/bin/application' || n, 0 FROM "
        "k"};
    for (const char* insertion : insertions) {
        database.run(insertion);
    }
    std::array statements{
        Repeated{DistinctKeys, "UPDATE keypress_frequency SET count=count+3 WHERE day="
                               "date('now', 'localtime') AND hour=1 AND key=? AND profile_id=0"},
        Repeated{DistinctKeys,
                 "UPDATE keypress_frequency_application SET count=count+3 WHERE "
                 "day=date('now', 'localtime') AND hour=1 AND key=? AND path='/usr/bin/editor' "
                 "AND profile_id=0"},
        Repeated{Clicks, "INSERT INTO mousepoints VALUES (date('now', 'localtime'), 1, ?, 0.5, 0)"},
        Repeated{Applications, "UPDATE application_uptime SET last_active=datetime('now'), "
                               "time=time+60 WHERE path='/usr/bin/application' || ?"},
        Repeated{1, "UPDATE input_per_application SET keys=keys+600, clicks=clicks+?"},
    };
    for (Repeated& repeated : statements) {
        repeated.statement = database.prepare(repeated.sql);
    }
    while (state.KeepRunning()) {
        database.run("BEGIN");
        for (const Repeated& repeated : statements) {
            for (int i = 0; i < repeated.times; ++i) {
                sqlite3_bind_int(repeated.statement, 1, i);
                RawDatabase::step(repeated.statement);
            }
        }
        database.run("COMMIT");
    }
    for (const Repeated& repeated : statements) {
        sqlite3_finalize(repeated.statement);
    }
}

BENCHMARK(tickWithNothingToWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(referenceEmptyTransaction)->Unit(benchmark::kMillisecond);
BENCHMARK(tickWithAllDue)->Unit(benchmark::kMillisecond);
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
