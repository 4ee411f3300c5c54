// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/FailingVfs.h"
#include "storage/Migrations.h"
#include "storage/SampleDatabase.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Latest = Database::SchemaVersion;

/// The rows of each table, in the columns it had at first.
struct Content
{
    QMap<QString, QStringList> columns;
    QMap<QString, QString> rows;

    friend bool operator==(const Content&, const Content&) = default;
};

QMap<QString, QString> rowsOf(const SampleDatabase& database,
                              const QMap<QString, QStringList>& columns)
{
    QMap<QString, QString> rows;
    for (auto table = columns.begin(); table != columns.end(); ++table) {
        if (!table.key().endsWith(QStringLiteral("_ignore"))) {
            rows.insert(
                table.key(),
                database.rows(QStringLiteral("SELECT \"%1\" FROM %2 ORDER BY rowid")
                                  .arg(table->join(QStringLiteral("\", \"")), table.key())));
        }
    }
    return rows;
}

Content contentOf(const QString& file)
{
    SampleDatabase database(file);
    QMap<QString, QStringList> columns;
    for (const QString& table : database.tables()) {
        columns.insert(table, database.columns(table));
    }
    return {columns, rowsOf(database, columns)};
}

QString schemaOf(const QString& file)
{
    return SampleDatabase(file).rows(
        QStringLiteral("SELECT sql FROM sqlite_master ORDER BY type, name"));
}

/// Runs the steps on a connection of its own; the failure is empty where there was none.
QString upgrade(const QString& file, int from, int to,
                const QString& scripts = QStringLiteral(":/db-upgrades"))
{
    QString failure;
    {
        QSqlDatabase connection =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("upgrade"));
        connection.setDatabaseName(file);
        connection.open();
        Migrations migrations(connection, scripts);
        failure = migrations.run(from, to) ? QString() : migrations.failure();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("upgrade"));
    return failure;
}

/// What a start of the client makes of the database, and how often it has to say something.
std::pair<Database::State, qsizetype> start(const QTemporaryDir& directory)
{
    TestPrompts prompts;
    const Database database(directory.path(), prompts);
    return {database.state(), prompts.texts.size() + prompts.questions.size()};
}

const std::pair<Database::State, qsizetype> Well{Database::State::Open, 0};

} // namespace

Q_DECLARE_METATYPE(FailingVfs::Fault)

class MigrationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createsTheSchema();
    void upgrades_data();
    void upgrades();
    void createsMissingTablesInTheirFinalForm();
    void endsWholeWhereAStatementFails();
    void endsWholeAtAnyWrite_data();
    void endsWholeAtAnyWrite();

private:
    static void verifyUpgraded(const QString& file, const Content& before);
};

void MigrationsTest::verifyUpgraded(const QString& file, const Content& before)
{
    SampleDatabase database(file);
    QCOMPARE(database.version(), Latest);
    QVERIFY(database.isSound());
    QCOMPARE(rowsOf(database, before.columns), before.rows);
    const QMap<QString, QString> expected = expectedSchema(QStringLiteral("schema.txt"));
    QCOMPARE(database.tables(), QStringList(expected.keys()));
    // Columns that a step adds stand last; some are wider or have a default that a new one has not.
    const auto normalised = [](QString text) {
        text.replace(QStringLiteral("distance_inches REAL"),
                     QStringLiteral("distance_inches INTEGER"));
        text.replace(QStringLiteral("hour INTEGER NOT NULL DEFAULT 0"),
                     QStringLiteral("hour INTEGER NOT NULL"));
        const QStringList parts = text.split(QStringLiteral(" | "));
        QStringList columnTexts = parts.first().split(QStringLiteral("; "));
        columnTexts.sort();
        return columnTexts.join(QStringLiteral("; ")) + QStringLiteral(" | ") + parts.last();
    };
    for (auto table = expected.begin(); table != expected.end(); ++table) {
        QCOMPARE(normalised(database.description(table.key())), normalised(*table));
    }
}

void MigrationsTest::createsTheSchema()
{
    const TestDatabase test;
    const std::pair<const char*, const char*> schemas[] = {{"main", "schema.txt"},
                                                           {"temp", "temp-schema.txt"}};
    for (const auto& [schema, file] : schemas) {
        const QMap<QString, QString> expected = expectedSchema(QLatin1String(file));
        QVERIFY(expected.size() > 1);
        for (auto table = expected.begin(); table != expected.end(); ++table) {
            QCOMPARE(SampleDatabase::description(test.database()->connection(), table.key(),
                                                 QLatin1String(schema)),
                     *table);
        }
    }
    QCOMPARE(SampleDatabase(test.database()->getDatabaseFileName()).tables(),
             expectedSchema(QStringLiteral("schema.txt")).keys());
}

void MigrationsTest::upgrades_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("ignored");
    // The two old lists of excluded applications become one in step 2, or in step 4 what is left.
    const QMap<int, QString> added{
        {1, QStringLiteral("/opt/bandwidth; /opt/both; /opt/uptime; ")},
        {3, QStringLiteral("/opt/left; ")},
    };
    for (int version = 1; version < Latest; ++version) {
        QTest::addRow("from %d", version)
            << version << added.value(version) + QStringLiteral("path 1; path 2");
    }
}

void MigrationsTest::upgrades()
{
    QFETCH(int, version);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, version);
    const Content before = contentOf(file);
    QVERIFY(start(directory) == Well);
    verifyUpgraded(file, before);
    QTEST(SampleDatabase(file).rows(
              QStringLiteral("SELECT path FROM application_ignore ORDER BY path")),
          "ignored");

    const QString copy = file + QStringLiteral(".v%1").arg(version);
    QCOMPARE(QFile::permissions(copy) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    QCOMPARE(SampleDatabase(copy).version(), version);
    QVERIFY(contentOf(copy) == before);
}

void MigrationsTest::createsMissingTablesInTheirFinalForm()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, 4);
    for (const char* missing : {"TABLE keypresses", "TABLE application_bandwidth",
                                "TABLE mousepoints", "TABLE milestones", "INDEX mouseclicks_day"}) {
        SampleDatabase(file).exec(QStringLiteral("DROP ") + QLatin1String(missing));
    }
    const Content before = contentOf(file);
    start(directory);
    verifyUpgraded(file, before);
}

void MigrationsTest::endsWholeWhereAStatementFails()
{
    const int from = 4;
    for (int broken = from + 1; broken <= Latest; ++broken) {
        const QTemporaryDir directory(fastTemporaryDirectory());
        const QString file = directory.filePath(DatabaseFiles::Name);
        for (int step = from + 1; step <= Latest; ++step) {
            QByteArray script = readFile(QStringLiteral(":/db-upgrades/%1.sql").arg(step));
            if (step == broken) {
                script.replace("PRAGMA user_version",
                               "INSERT INTO nowhere VALUES (1);\nPRAGMA user_version");
            }
            QVERIFY(writeFile(directory.filePath(QStringLiteral("%1.sql").arg(step)), script));
        }
        SampleDatabase::create(file, from);
        const Content before = contentOf(file);
        upgrade(file, from, broken - 1);
        const QString schema = schemaOf(file);
        QFile::remove(file);
        SampleDatabase::create(file, from);

        QCOMPARE(upgrade(file, from, Latest, directory.path()),
                 QStringLiteral("no such table: nowhere"));
        QCOMPARE(SampleDatabase(file).version(), broken - 1);
        QCOMPARE(schemaOf(file), schema);
        QCOMPARE(rowsOf(SampleDatabase(file), before.columns), before.rows);
        QVERIFY(start(directory) == Well);
        verifyUpgraded(file, before);
    }
}

void MigrationsTest::endsWholeAtAnyWrite_data()
{
    QTest::addColumn<FailingVfs::Fault>("fault");
    QTest::newRow("the disk is full") << FailingVfs::Fault::DiskFull;
    QTest::newRow("the client is killed") << FailingVfs::Fault::Kill;
}

void MigrationsTest::endsWholeAtAnyWrite()
{
    QFETCH(FailingVfs::Fault, fault);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString original = directory.filePath(QStringLiteral("original"));
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(original, 8);
    const Content before = contentOf(original);
    int outcome = FailingVfs::KilledExitCode;
    int write = 0;
    for (; outcome != 0; write += 2) {
        QFile::remove(file);
        QFile::copy(original, file);
        const pid_t child = ::fork();
        if (child == 0) {
            const FailingVfs failing(fault, write);
            const auto result = start(directory);
            const bool told = result == std::pair(Database::State::Failed, qsizetype{1});
            if (failing.hasStruck()) {
                ::_exit(told ? FailingVfs::KilledExitCode : 1);
            }
            ::_exit(result == Well ? 0 : 2);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        outcome = WEXITSTATUS(status);
        QVERIFY(outcome == 0 || outcome == FailingVfs::KilledExitCode);
        QVERIFY(start(directory) == Well);
        verifyUpgraded(file, before);
    }
    QVERIFY(write > 20);
}

REGISTER_TEST(MigrationsTest);
#include "MigrationsTest.moc"
