// SPDX-License-Identifier: GPL-3.0-or-later
// What the views' questions cost on a long history: from the sums of days, and beside them from the
// hourly rows, over one day, 30 days, a year and all time. The budget for a whole view is 200 ms.
// Before that, how long it takes to sum all days, the longest slice of that work, and the longest
// time that one statement kept writers from the client's database.
//
// TALLYVANE_HISTORY names the database, which is copied; `tools/make-history` writes one.
#include "storage/DSqlQuery.h"
#include "storage/DatabaseFiles.h"
#include "ui/history/History.h"
#include "ui/history/RollUp.h"
#include "ui/network/NetworkFigures.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr double BudgetMs = 200;
constexpr double ReadBudgetMs = 16; ///< The main thread waits for it where it writes.
constexpr int Limit = 50;           ///< Combinations.

struct Question
{
    const char* name;
    std::function<void(History& history, const HistoryScope& scope)> ask;
};

double milliseconds(const QElapsedTimer& timer)
{
    constexpr double nanoseconds = 1e6;
    return static_cast<double>(timer.nsecsElapsed()) / nanoseconds;
}

/// Those of the applications that a chart would show.
QStringList topApplications(History& history)
{
    constexpr int shown = 5;
    const QDate today = QDate::currentDate();
    const auto applications =
        history.applications({.first = today.addYears(-1), .last = today, .profileId = {}});
    QStringList paths;
    for (const ApplicationTotals& application : applications->mid(0, shown)) {
        paths += application.path;
    }
    return paths;
}

std::vector<Question> questions(const QStringList& paths)
{
    return {
        {"totals", [](History& history, const HistoryScope& scope) { history.totals(scope); }},
        {"days", [](History& history, const HistoryScope& scope) { history.days(scope); }},
        {"weekHours",
         [](History& history, const HistoryScope& scope) { history.weekHours(scope); }},
        {"keys", [](History& history, const HistoryScope& scope) { history.keys(scope); }},
        {"combinations",
         [](History& history, const HistoryScope& scope) { history.combinations(scope, Limit); }},
        {"buttons", [](History& history, const HistoryScope& scope) { history.buttons(scope); }},
        {"scrolls", [](History& history, const HistoryScope& scope) { history.scrolls(scope); }},
        {"clickCells",
         [](History& history, const HistoryScope& scope) { history.clickCells(scope); }},
        {"applications",
         [](History& history, const HistoryScope& scope) { history.applications(scope); }},
        {"applicationDays",
         [paths](History& history, const HistoryScope& scope) {
             history.applicationDays(scope, paths);
         }},
        {"trafficDays",
         [](History& history, const HistoryScope& scope) { history.trafficDays(scope); }},
        {"network page",
         [](History& history, const HistoryScope& scope) { NetworkFigures::read(history, scope); }},
        {"boots", [](History& history, const HistoryScope& scope) { history.boots(scope); }},
    };
}

struct Range
{
    const char* name;
    HistoryScope scope;
};

std::array<Range, 4> ranges()
{
    const QDate today = QDate::currentDate();
    return {{{"1 day", {.first = today, .last = today, .profileId = {}}},
             {"30 days", {.first = today.addDays(-29), .last = today, .profileId = {}}},
             {"1 year", {.first = today.addDays(-364), .last = today, .profileId = {}}},
             {"all time", {.first = {}, .last = today, .profileId = {}}}}};
}

/// The longest time that one statement over as many days as are read at once holds the database,
/// over its busiest days.
double longestRead(History& history)
{
    constexpr int days = 20;
    const auto counted = history.days({.first = {}, .last = QDate::currentDate(), .profileId = {}});
    QList<DayTotals> busiest = *counted;
    std::ranges::sort(busiest, std::ranges::greater(),
                      [](const DayTotals& day) { return day.totals.keys + day.totals.clicks; });
    double longest = 0;
    for (const DayTotals& day : busiest.mid(0, days)) {
        for (const CountTable table : CountTables) {
            DSqlQuery query(history.connection());
            query.prepare(CountTableTexts::of(table).hourly);
            const QDate first = day.day.addDays(1 - RollUpCoverage::DaysAtOnce);
            query.bindValue(QStringLiteral(":first"), first.toString(Qt::ISODate));
            query.bindValue(QStringLiteral(":last"), day.day.toString(Qt::ISODate));
            query.bindValue(QStringLiteral(":profile"), QVariant());
            QElapsedTimer timer;
            timer.start();
            query.exec();
            while (query.next()) {
            }
            longest = std::max(longest, milliseconds(timer));
        }
    }
    return longest;
}

void buildAll(History& history, const QString& directory)
{
    QElapsedTimer all;
    all.start();
    history.totals(ranges().back().scope);
    std::printf("first answer %.1f ms\n", milliseconds(all));
    std::vector<double> slices;
    bool isMore = true;
    while (isMore) {
        QElapsedTimer slice;
        slice.start();
        isMore = history.prepareMore();
        slices.push_back(milliseconds(slice));
    }
    const double total = milliseconds(all);
    std::ranges::sort(slices);
    std::printf("all days summed in %.1f s: %zu slices, median %.1f ms, longest %.1f ms\n",
                total / 1e3, slices.size(), slices.at(slices.size() / 2), slices.back());
    const QFileInfo file(directory + QLatin1Char('/') + RollUp::FileName);
    std::printf("size of the sums %.1f MiB\n", static_cast<double>(file.size()) / 1024 / 1024);
    std::printf("longest read of the client's database %.1f ms, budget %.0f ms\n",
                longestRead(history), ReadBudgetMs);
}

void addQuestions(const char* source, History& history, const std::vector<Question>& asked)
{
    for (const Question& question : asked) {
        for (const Range& range : ranges()) {
            const std::string name = std::string(question.name) + ", " + range.name + ", " + source;
            benchmark::RegisterBenchmark(name.c_str(), [=, &history](benchmark::State& state) {
                for ([[maybe_unused]] auto iteration : state) {
                    question.ask(history, range.scope);
                }
                state.counters["budget_ms"] = BudgetMs;
            })->Unit(benchmark::kMillisecond);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QString source = qEnvironmentVariable("TALLYVANE_HISTORY");
    if (source.isEmpty()) {
        std::puts("Skipped: TALLYVANE_HISTORY names no database; tools/make-history writes one.");
        return 0;
    }
    const QTemporaryDir directory;
    const QString file = directory.filePath(DatabaseFiles::Name);
    if (!QFile::copy(source, file)) {
        std::fprintf(stderr, "Unable to copy: %s\n", qPrintable(source));
        return 1;
    }
    History summed(file);
    History hourly(file, History::RollUps::None);
    buildAll(summed, directory.path());
    const std::vector<Question> asked = questions(topApplications(summed));
    addQuestions("sums", summed, asked);
    addQuestions("hourly", hourly, asked);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
