// SPDX-License-Identifier: GPL-3.0-or-later
// What deleting a profile costs on ten years of history: on copies of the database that
// TALLYVANE_HISTORY names, for each of its profiles, beside the budget of 2 s and beside one plain
// statement a table that adds the profile's rows to those of the default one.
#include "profiles/ProfileDeletion.h"
#include "profiles/ProfileManager.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

/// A copy of its own for each measurement.
struct Client
{
    Client()
    {
        QFile::copy(qEnvironmentVariable("TALLYVANE_HISTORY"),
                    directory.filePath(QStringLiteral("tallyvane.db")));
        database = std::make_unique<Database>(directory.path(), prompts);
        Settings::instance().init(database.get());
    }

    QTemporaryDir directory;
    TestPrompts prompts;
    std::unique_ptr<Database> database;
    ProfileManager profiles;
};

void fold(benchmark::State& state, int profile)
{
    while (state.KeepRunning()) {
        state.PauseTiming();
        Client client;
        ProfileDeletion deletion(client.profiles);
        QEventLoop loop;
        auto result = ProfileFold::Result::Failed;
        QObject::connect(&deletion, &ProfileDeletion::finished, &loop, [&](auto ended) {
            result = ended;
            loop.quit();
        });
        state.ResumeTiming();
        if (deletion.start(profile)) {
            loop.exec();
        }
        state.PauseTiming();
        if (result != ProfileFold::Result::Deleted) {
            state.SkipWithError("the profile was not deleted");
        }
        state.ResumeTiming();
    }
    state.SetLabel("budget 2 s");
}

QString plainStatement(const ProfileFold::Table& table)
{
    QStringList sameKey;
    for (const QString& key : table.keys) {
        sameKey += QStringLiteral("%1 = k.%1").arg(key);
    }
    QStringList sums;
    for (const QString& value : table.values) {
        sums += QStringLiteral("%1 + COALESCE((SELECT %1 FROM %2 WHERE %3 AND profile_id = 0), 0)")
                    .arg(value, table.name, sameKey.join(QStringLiteral(" AND ")));
    }
    // The one table with further columns is the one without hours.
    const QString further = table.keys.contains(QStringLiteral("hour"))
                                ? QString()
                                : QStringLiteral("last_active, last_used, ");
    return QStringLiteral("INSERT OR REPLACE INTO %1 (%2, %3, %4profile_id) SELECT %2, %5, %4 0 "
                          "FROM %1 k WHERE profile_id = ?")
        .arg(table.name, table.keys.join(u','), table.values.join(u','), further, sums.join(u','));
}

void referencePlainStatements(benchmark::State& state, int profile)
{
    while (state.KeepRunning()) {
        state.PauseTiming();
        Client client;
        QSqlDatabase connection = client.database->connection();
        state.ResumeTiming();
        connection.transaction();
        for (const ProfileFold::Table& table : ProfileFold::tables()) {
            DSqlQuery query(connection);
            query.prepare(plainStatement(table));
            query.addBindValue(profile);
            if (!query.exec()) {
                state.SkipWithError("a plain statement failed");
            }
        }
        connection.commit();
    }
}

void addBenchmarks()
{
    const Client client;
    for (const Profile& profile : client.profiles.profiles()) {
        const std::string name = profile.name.toStdString();
        for (auto [kind, function] : {std::pair{"fold/", &fold},
                                      {"referencePlainStatements/", &referencePlainStatements}}) {
            benchmark::RegisterBenchmark((kind + name).c_str(), function, profile.id)
                ->Unit(benchmark::kMillisecond)
                ->Iterations(1)
                ->MeasureProcessCPUTime()
                ->UseRealTime();
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (!QFile::exists(qEnvironmentVariable("TALLYVANE_HISTORY"))) {
        std::fputs("skipped: TALLYVANE_HISTORY names no database\n", stderr);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    addBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
