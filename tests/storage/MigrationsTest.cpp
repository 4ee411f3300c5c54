// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/FailingVfs.h"
#include "storage/Migrations.h"
#include "storage/SampleDatabase.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString& schemaQuery()
{
    static const QString query =
        QStringLiteral("SELECT sql FROM sqlite_master ORDER BY type, name");
    return query;
}

/// Runs the steps on a connection of its own; the failure is empty where there was none.
QString upgrade(const QString& file, int from, int to, const QString& scripts)
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

/// The schema of a database of version 4 as it stands after its upgrade to `version`.
QString schemaAt(int version)
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, 4);
    upgrade(file, 4, version, QStringLiteral(":/db-upgrades"));
    return SampleDatabase(file).rows(schemaQuery());
}

} // namespace

class MigrationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createsTheSchema_data();
    void createsTheSchema();
    void upgrades_data();
    void upgrades();
    void joinsTheTwoIgnoreLists_data();
    void joinsTheTwoIgnoreLists();
    void createsMissingTablesInTheirFinalForm();
    void endsWholeWhereAStatementFails();
    void endsWholeWhereTheDiskIsFull();
    void survivesAKill();

private:
    using Rows = QMap<QString, QString>;
    static Rows rowsOf(SampleDatabase& database, const QMap<QString, QStringList>& columns);
    static QMap<QString, QStringList> columnsOf(SampleDatabase& database);
    static void verifyUpgraded(const QString& file, const QMap<QString, QStringList>& columns,
                               const Rows& rows);
};

QMap<QString, QStringList> MigrationsTest::columnsOf(SampleDatabase& database)
{
    QMap<QString, QStringList> columns;
    for (const QString& table : database.tables()) {
        columns.insert(table, database.columns(table));
    }
    return columns;
}

MigrationsTest::Rows MigrationsTest::rowsOf(SampleDatabase& database,
                                            const QMap<QString, QStringList>& columns)
{
    Rows rows;
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

void MigrationsTest::verifyUpgraded(const QString& file, const QMap<QString, QStringList>& columns,
                                    const Rows& rows)
{
    SampleDatabase database(file);
    QCOMPARE(database.version(), 11);
    QVERIFY(database.isSound());
    QCOMPARE(rowsOf(database, columns), rows);
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

void MigrationsTest::createsTheSchema_data()
{
    QTest::addColumn<QString>("expected");
    const QMap<QString, QString> tables = expectedSchema(QStringLiteral("schema.txt"));
    for (auto table = tables.begin(); table != tables.end(); ++table) {
        QTest::newRow(qPrintable(table.key())) << *table;
    }
    QTest::newRow("") << tables.keys().join(QLatin1Char(' '));
}

void MigrationsTest::createsTheSchema()
{
    static QTemporaryDir directory;
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
    }
    SampleDatabase sample(directory.filePath(DatabaseFiles::Name));
    const QString table = QString::fromLatin1(QTest::currentDataTag());
    QTEST(table.isEmpty() ? sample.tables().join(QLatin1Char(' ')) : sample.description(table),
          "expected");
}

void MigrationsTest::upgrades_data()
{
    QTest::addColumn<int>("version");
    for (int version = 1; version <= 10; ++version) {
        QTest::addRow("from %d", version) << version;
    }
}

void MigrationsTest::upgrades()
{
    QFETCH(int, version);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, version);
    QMap<QString, QStringList> columns;
    Rows before;
    {
        SampleDatabase sample(file);
        columns = columnsOf(sample);
        before = rowsOf(sample, columns);
    }
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
        QCOMPARE(database.state(), Database::State::Open);
    }
    verifyUpgraded(file, columns, before);
    QCOMPARE(prompts.texts, QStringList());

    const QString copy = file + QStringLiteral(".v%1").arg(version);
    QCOMPARE(QFile::permissions(copy) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    SampleDatabase sample(copy);
    QCOMPARE(sample.version(), version);
    QCOMPARE(columnsOf(sample), columns);
    QCOMPARE(rowsOf(sample, columns), before);
}

void MigrationsTest::joinsTheTwoIgnoreLists_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("ignored");
    QTest::newRow("merged by step 2")
        << 1 << QStringLiteral("/opt/bandwidth; /opt/both; /opt/uptime; path 1; path 2");
    QTest::newRow("left over after step 2") << 3 << QStringLiteral("/opt/left; path 1; path 2");
    QTest::newRow("merged before") << 4 << QStringLiteral("path 1; path 2");
}

void MigrationsTest::joinsTheTwoIgnoreLists()
{
    QFETCH(int, version);
    const QTemporaryDir directory(fastTemporaryDirectory());
    SampleDatabase::create(directory.filePath(DatabaseFiles::Name), version);
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
    }
    SampleDatabase sample(directory.filePath(DatabaseFiles::Name));
    QTEST(sample.rows(QStringLiteral("SELECT path FROM application_ignore ORDER BY path")),
          "ignored");
}

void MigrationsTest::createsMissingTablesInTheirFinalForm()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, 4);
    QMap<QString, QStringList> columns;
    Rows before;
    {
        SampleDatabase sample(file);
        for (const char* table :
             {"keypresses", "application_bandwidth", "mousepoints", "milestones"}) {
            sample.exec(QStringLiteral("DROP TABLE ") + QLatin1String(table));
        }
        sample.exec(QStringLiteral("DROP INDEX mouseclicks_day"));
        columns = columnsOf(sample);
        before = rowsOf(sample, columns);
    }
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
    }
    verifyUpgraded(file, columns, before);
}

void MigrationsTest::endsWholeWhereAStatementFails()
{
    // The n-th statement of the upgrade is one that fails, for n = 0, 1, 2, ...
    const int firstStep = 5;
    QStringList scripts;
    QList<QStringList> statements;
    TestPrompts prompts;
    for (int step = firstStep; step <= 11; ++step) {
        statements
            << DSqlQuery::readSqlFile(QStringLiteral(":/db-upgrades/%1.sql").arg(step)).value();
    }
    int broken = 0;
    for (int step = 0; step < statements.size(); ++step) {
        const QString schema = schemaAt(firstStep + step - 1);
        for (int index = 0; index < statements.at(step).size(); ++index, ++broken) {
            const QTemporaryDir directory(fastTemporaryDirectory());
            for (int i = 0; i < statements.size(); ++i) {
                QStringList script = statements.at(i);
                if (i == step) {
                    script[index] = QStringLiteral("INSERT INTO no_such_table VALUES (1)");
                }
                QFile file(directory.filePath(QStringLiteral("%1.sql").arg(firstStep + i)));
                QVERIFY(file.open(QIODevice::WriteOnly));
                file.write(script.join(QStringLiteral(";\n")).toUtf8() + ";\n");
            }
            const QString fileName = directory.filePath(DatabaseFiles::Name);
            SampleDatabase::create(fileName, 4);
            QMap<QString, QStringList> columns;
            Rows before;
            {
                SampleDatabase sample(fileName);
                columns = columnsOf(sample);
                before = rowsOf(sample, columns);
            }
            QCOMPARE(upgrade(fileName, 4, 11, directory.path()),
                     QStringLiteral("no such table: no_such_table"));
            {
                SampleDatabase sample(fileName);
                QCOMPARE(sample.version(), firstStep + step - 1);
                QCOMPARE(sample.rows(schemaQuery()), schema);
                QCOMPARE(rowsOf(sample, columns), before);
            }
            {
                const Database database(directory.path(), prompts);
            }
            verifyUpgraded(fileName, columns, before);
        }
    }
    QVERIFY(broken > 50);
}

void MigrationsTest::endsWholeWhereTheDiskIsFull()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString original = directory.filePath(QStringLiteral("original"));
    const QString fileName = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(original, 9);
    QMap<QString, QStringList> columns;
    Rows before;
    {
        SampleDatabase sample(original);
        columns = columnsOf(sample);
        before = rowsOf(sample, columns);
    }
    bool struck = true;
    int write = 0;
    for (; struck; ++write) {
        QFile::remove(fileName);
        QFile::copy(original, fileName);
        TestPrompts prompts;
        {
            const FailingVfs full(FailingVfs::Fault::DiskFull, write);
            const Database database(directory.path(), prompts);
            struck = full.hasStruck();
            QCOMPARE(database.state(), struck ? Database::State::Failed : Database::State::Open);
        }
        QCOMPARE(prompts.titles.size(), struck ? 1 : 0);
        QCOMPARE(prompts.questions, QStringList());
        {
            const Database database(directory.path(), prompts);
        }
        verifyUpgraded(fileName, columns, before);
    }
    QVERIFY(write > 20);
}

void MigrationsTest::survivesAKill()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString original = directory.filePath(QStringLiteral("original"));
    const QString fileName = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(original, 8);
    QMap<QString, QStringList> columns;
    Rows before;
    {
        SampleDatabase sample(original);
        columns = columnsOf(sample);
        before = rowsOf(sample, columns);
    }
    bool killed = true;
    int write = 0;
    for (; killed; write += 3) {
        QFile::remove(fileName);
        QFile::copy(original, fileName);
        const pid_t child = ::fork();
        if (child == 0) {
            const FailingVfs kill(FailingVfs::Fault::Kill, write);
            TestPrompts prompts;
            const Database database(directory.path(), prompts);
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        killed = WEXITSTATUS(status) == FailingVfs::KilledExitCode;
        TestPrompts prompts;
        {
            const Database database(directory.path(), prompts);
        }
        QCOMPARE(prompts.texts, QStringList());
        verifyUpgraded(fileName, columns, before);
    }
    QVERIFY(write > 20);
}

REGISTER_TEST(MigrationsTest);
#include "MigrationsTest.moc"
