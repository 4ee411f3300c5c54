// SPDX-License-Identifier: GPL-3.0-or-later
// What the database's upkeep costs on ten years of history: a copy of the database that
// TALLYVANE_HISTORY names, which tools/make-history makes. Beside the checks stands the time to
// read the file, beside the rest that of a look at the same rows.
#include "bench/DataDirectory.h"
#include "storage/IntegrityCheck.h"
#include "storage/MousePointPruning.h"
#include "storage/StartupRepair.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

struct Client
{
    TestPrompts prompts;
    DataDirectory directory;
    Database database{directory.path(), prompts};
};

void openDatabase(benchmark::State& state)
{
    const DataDirectory directory;
    TestPrompts prompts;
    while (state.KeepRunning()) {
        const Database database(directory.path(), prompts);
        if (database.state() != Database::State::Open) {
            state.SkipWithError("the database did not open");
        }
    }
}

void quickCheck(benchmark::State& state)
{
    const Client client;
    while (state.KeepRunning()) {
        IntegrityCheck::run(client.database.connection(), IntegrityCheck::Depth::Quick);
    }
}

void referenceReadTheFile(benchmark::State& state)
{
    QFile file(historyDatabase());
    if (!file.open(QIODevice::ReadOnly)) {
        state.SkipWithError("the history cannot be read");
    }
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    while (state.KeepRunning()) {
        file.seek(0);
        while (file.read(buffer.data(), buffer.size()) > 0) {
        }
    }
    state.counters["MiB"] = static_cast<double>(file.size() >> 20);
}

void removeNegativeDistances(benchmark::State& state)
{
    Client client;
    while (state.KeepRunning()) {
        StartupRepair::removeNegativeDistances(client.database);
    }
}

void referenceSumDistances(benchmark::State& state)
{
    Client client;
    while (state.KeepRunning()) {
        DSqlQuery(&client.database,
                  QStringLiteral("SELECT (SELECT SUM(distance_inches) FROM mousedistance), "
                                 "(SELECT SUM(distance_inches) FROM input_per_application)"),
                  true)
            .next();
    }
}

/// Each time a day further on.
void pruneADayOfMousePoints(benchmark::State& state)
{
    Client client;
    Settings::instance().init(&client.database);
    MousePointPruning pruning(client.database, Settings::instance());
    QDateTime now = QDateTime::currentDateTime();
    pruning.start(now.addDays(-2));
    while (state.KeepRunning()) {
        state.PauseTiming();
        now = now.addDays(1);
        const DSqlQuery ageing(
            &client.database,
            QStringLiteral("UPDATE mousepoints SET day = date('now', '-4 months') WHERE day "
                           "= (SELECT MIN(day) FROM mousepoints)"),
            true);
        state.ResumeTiming();
        pruning.pruneMousePoints(now.addDays(1));
    }
    Settings::instance().close();
}

void cleanDatabase(benchmark::State& state)
{
    const QTemporaryDir directory;
    TestPrompts prompts;
    while (state.KeepRunning()) {
        state.PauseTiming();
        DataDirectory::copyHistory(directory.path());
        Database database(directory.path(), prompts);
        state.ResumeTiming();
        database.cleanDatabase();
    }
}

// Each name once; what else should be fast on ten years is added here.
BENCHMARK(openDatabase)->Unit(benchmark::kMillisecond);
BENCHMARK(quickCheck)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(referenceReadTheFile)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(removeNegativeDistances)->Unit(benchmark::kMillisecond);
BENCHMARK(referenceSumDistances)->Unit(benchmark::kMillisecond);
BENCHMARK(pruneADayOfMousePoints)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(cleanDatabase)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (!QFile::exists(historyDatabase())) {
        std::fputs("skipped: TALLYVANE_HISTORY names no database\n", stderr);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
