// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/HistoryStamp.h"
#include "storage/MousePointPruning.h"
#include "storage/SampleDatabase.h"
#include "storage/StartupRepair.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

/// What is done to the database beside counting: pruning, and what a start puts right.
class UpkeepTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void prunesOnceADay_data();
    void prunesOnceADay();
    void appliesAPendingRestore_data();
    void appliesAPendingRestore();
    void staysWithTheOldDatabaseWhereRenamingFails();
    void keepsWhatARestoreReplaces();
    void takesNoNewerDatabase();
    void goesOnAfterAStartCutShort();
    void removesNegativeDistances();
};

void UpkeepTest::prunesOnceADay_data()
{
    QTest::addColumn<qint64>("secondsSince");
    QTest::addColumn<bool>("prunes");
    QTest::newRow("a second before") << Q_INT64_C(86'399) << false;
    QTest::newRow("a day") << Q_INT64_C(86'400) << true;
    QTest::newRow("the clock went back") << Q_INT64_C(-5) << false;
}

void UpkeepTest::prunesOnceADay()
{
    QFETCH(qint64, secondsSince);
    QFETCH(bool, prunes);
    const TestDatabase test;
    for (const char* table : {"mousepoints", "mouseclicks_frequency"}) {
        test.exec(QStringLiteral("INSERT INTO %1 (day, hour) VALUES (date('now', '-4 months'), 1), "
                                 "(date('now', '-3 months'), 1), (date('now'), 1)")
                      .arg(QLatin1String(table)));
    }
    const QDateTime last = QDateTime::currentDateTime();
    MousePointPruning(*test.database(), Settings::instance()).start(last);
    MousePointPruning pruning(*test.database(), Settings::instance());
    pruning.start(last.addDays(2)); // A later run, which counts from what the first one stored.
    const QDateTime now = last.addSecs(secondsSince);
    QCOMPARE(pruning.pruneMousePoints(now), prunes);
    const int left = prunes ? 2 : 3;
    QCOMPARE(test.value(QStringLiteral("SELECT COUNT(*) FROM mousepoints")).toInt(), left);
    QCOMPARE(test.value(QStringLiteral("SELECT COUNT(*) FROM mouseclicks_frequency")).toInt(),
             left);
    QCOMPARE(Settings::instance().value(SettingsKeys::LastPruneMousepoints), prunes ? now : last);
    QVERIFY(!pruning.pruneMousePoints(now.addSecs(prunes ? 3600 : 0)));
}

void UpkeepTest::appliesAPendingRestore_data()
{
    QTest::addColumn<bool>("hasDatabase");
    QTest::newRow("over a database") << true;
    QTest::newRow("alone") << false;
}

void UpkeepTest::appliesAPendingRestore()
{
    QFETCH(bool, hasDatabase);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    const QString restore = directory.filePath(DatabaseFiles::RestoreName);
    const LogCapture log;
    QVERIFY(!StartupRepair::applyPendingRestore(directory.path()));
    QCOMPARE(log.text(), QString());
    SampleDatabase::create(restore, 10);
    if (hasDatabase) {
        SampleDatabase(file).exec(QStringLiteral("CREATE TABLE old (v)"));
        QVERIFY(writeFile(file + QStringLiteral("-journal"), "of the old one"));
    }
    QVERIFY(StartupRepair::applyPendingRestore(directory.path()));
    QVERIFY(log.contains(QStringLiteral("info Successfully renamed restored database: %1 to: %2")
                             .arg(restore, file)));
    const QString kept = DatabaseFiles::ReplacedName;
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files),
             hasDatabase
                 ? QStringList({kept, kept + QStringLiteral("-journal"), DatabaseFiles::Name})
                 : QStringList(DatabaseFiles::Name));
    TestPrompts prompts;
    const Database database(directory.path(), prompts);
    QVERIFY(HistoryStamp::read(database.connection()).has_value());
    DSqlQuery query(database.connection());
    QVERIFY(query.exec(QStringLiteral("SELECT COUNT(*) FROM keypresses")) && query.next());
    QCOMPARE(query.value(0).toInt(), 2);
}

void UpkeepTest::staysWithTheOldDatabaseWhereRenamingFails()
{
    // A directory in the database's place is what a rename fails on for root as well.
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    QVERIFY(QDir().mkpath(file + QStringLiteral("/inside")));
    const QString journal = file + QStringLiteral("-journal");
    QVERIFY(writeFile(journal, "of the old one"));
    SampleDatabase::create(directory.filePath(DatabaseFiles::RestoreName), 10);
    const LogCapture log;
    QVERIFY(!StartupRepair::applyPendingRestore(directory.path()));
    QVERIFY(log.contains(QStringLiteral("warn Unable to rename restored database: ")));
    QVERIFY(QFileInfo(file + QStringLiteral("/inside")).isDir());
    QVERIFY(QFile::exists(journal));
    QVERIFY(QFile::exists(directory.filePath(DatabaseFiles::RestoreName)));
}

void UpkeepTest::keepsWhatARestoreReplaces()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    const QString kept = directory.filePath(DatabaseFiles::ReplacedName);
    const QString journal = QStringLiteral("-journal");
    const auto restore = [&] {
        SampleDatabase::create(directory.filePath(DatabaseFiles::RestoreName), 10);
        return StartupRepair::applyPendingRestore(directory.path());
    };
    QVERIFY(writeFile(file, "first"));
    QVERIFY(writeFile(file + journal, "of the first"));
    // An attempt that ended before the journal had moved, or behind that: the next one goes on.
    QCOMPARE(::link(QFile::encodeName(file).constData(), QFile::encodeName(kept).constData()), 0);
    QVERIFY(restore());
    QCOMPARE(readFile(kept), QByteArray("first"));
    QCOMPARE(readFile(kept + journal), QByteArray("of the first"));
    QVERIFY(!QFile::exists(file + journal));
    QVERIFY(writeFile(file, "second"));
    QVERIFY(restore());
    QCOMPARE(readFile(kept), QByteArray("second"));
    QVERIFY(!QFile::exists(kept + journal));
    const QStringList older = QDir(directory.path())
                                  .entryList({DatabaseFiles::ReplacedName + QStringLiteral("-2*")},
                                             QDir::Files, QDir::Name);
    QCOMPARE(older.size(), 2);
    QCOMPARE(readFile(directory.filePath(older.first())), QByteArray("first"));
    QCOMPARE(older.last(), older.first() + journal);
}

void UpkeepTest::takesNoNewerDatabase()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    const QString staged = directory.filePath(DatabaseFiles::RestoreName);
    QVERIFY(writeFile(file, "the old one"));
    SampleDatabase::create(staged, 10);
    SampleDatabase(staged).exec(
        QStringLiteral("PRAGMA user_version = %1").arg(Database::SchemaVersion + 1));
    const LogCapture log;
    for (const bool isDatabase : {true, false}) {
        QVERIFY(isDatabase || writeFile(staged, "no database"));
        QVERIFY(!StartupRepair::applyPendingRestore(directory.path()));
        QCOMPARE(readFile(file), QByteArray("the old one"));
    }
    QCOMPARE(log.count(QStringLiteral("warn Unable to rename restored database: ")), 2);
}

void UpkeepTest::goesOnAfterAStartCutShort()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString staged = directory.filePath(DatabaseFiles::RestoreName);
    SampleDatabase::create(staged, 10);
    const pid_t child = ::fork();
    if (child == 0) {
        SampleDatabase sample(staged);
        for (const char* statement :
             {"PRAGMA cache_size = 1", "BEGIN", "DELETE FROM keypresses",
              "CREATE TABLE t AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
              "WHERE i < 1000) SELECT i, randomblob(100) AS b FROM n"}) {
            sample.exec(QString::fromLatin1(statement));
        }
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    QVERIFY(QFileInfo(staged + QStringLiteral("-journal")).size() > 0);
    QVERIFY(StartupRepair::applyPendingRestore(directory.path()));
    SampleDatabase database(directory.filePath(DatabaseFiles::Name));
    QVERIFY(database.isSound());
    QCOMPARE(database.rows(QStringLiteral("SELECT COUNT(*) FROM keypresses")), QStringLiteral("2"));
}

void UpkeepTest::removesNegativeDistances()
{
    const TestDatabase test;
    test.exec(QStringLiteral("INSERT INTO mousedistance (day, hour, distance_inches) "
                             "VALUES ('2020-01-01', 1, -0.5), ('2020-01-01', 2, 0.5)"));
    test.exec(QStringLiteral("INSERT INTO input_per_application (day, hour, keys, distance_inches) "
                             "VALUES ('2020-01-01', 1, 7, -3), ('2020-01-01', 2, 8, 3)"));
    StartupRepair::removeNegativeDistances(*test.database());
    QCOMPARE(test.rows(QStringLiteral("SELECT hour FROM mousedistance")), QStringLiteral("2"));
    QCOMPARE(test.rows(QStringLiteral("SELECT keys, distance_inches FROM input_per_application")),
             QStringLiteral("7|0,8|3"));
}

REGISTER_TEST(UpkeepTest);
#include "UpkeepTest.moc"
