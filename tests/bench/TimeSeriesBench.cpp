// SPDX-License-Identifier: GPL-3.0-or-later
// What the time series of the last seven days of a long history costs; the budget is 50 ms. Beside
// it, the same rows read through SQLite's own interface and added up by hand, and the two compared.
//
// TALLYVANE_HISTORY names the database, which is copied; `tools/make-history` writes one.
#include "account/SeriesByHand.h"
#include "account/ZurgeGenerateTimeSeries.h"
#include "bench/DataDirectory.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

constexpr double BudgetMs = 50;
constexpr int Days = 7;

QDateTime lastCounted(Database& database)
{
    DSqlQuery query(&database, QStringLiteral("SELECT MAX(day) FROM keypresses"), true);
    query.next();
    return query.value(0).toDate().endOfDay();
}

void built(benchmark::State& state, const QDateTime& last)
{
    qsizetype entries = 0;
    for ([[maybe_unused]] auto iteration : state) {
        entries = ZurgeGenerateTimeSeries(last.addDays(-Days), last).getTimeSeries().size();
    }
    state.counters["entries"] = static_cast<double>(entries);
    state.counters["budget_ms"] = BudgetMs;
}

void byHand(benchmark::State& state, const QString& file, const QDate& last)
{
    for ([[maybe_unused]] auto iteration : state) {
        SeriesByHand series(file, last.addDays(-Days), last);
        benchmark::DoNotOptimize(series.everything());
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (historyDatabase().isEmpty()) {
        std::puts("Skipped: TALLYVANE_HISTORY names no database; tools/make-history writes one.");
        return 0;
    }
    const DataDirectory directory;
    TestPrompts prompts;
    Database database(directory.path(), prompts);
    Settings::instance().init(&database);
    // Half of the applications are known to the service.
    DSqlQuery(&database).exec(
        QStringLiteral("UPDATE applications SET online_app_id = rowid WHERE rowid % 2"));
    const QDateTime last = lastCounted(database);
    SeriesByHand expected(database.getDatabaseFileName(), last.date().addDays(-Days), last.date());
    const QString difference = SeriesByHand::difference(
        expected.everything(), ZurgeGenerateTimeSeries(last.addDays(-Days), last).getTimeSeries());
    std::printf("Series against the rows added by hand: %s\n",
                difference.isEmpty() ? "equal" : qPrintable(difference));

    benchmark::RegisterBenchmark("time series", built, last)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("reference, by hand", byHand, database.getDatabaseFileName(),
                                 last.date())
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    Settings::instance().close();
    return difference.isEmpty() ? 0 : 1;
}
