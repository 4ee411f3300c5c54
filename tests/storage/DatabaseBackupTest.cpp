// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SampleDatabase.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

class DatabaseBackupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isRefreshedWhenDue_data();
    void isRefreshedWhenDue();
    void carriesWhatIsWrittenMeanwhile();
    void isAbandonedCleanly();
    void neverComesFromADamagedDatabase();

private:
    static void fill(const TestDatabase& test, int rows);
    static QString backupOf(const TestDatabase& test);
    static bool setAge(const QString& file, qint64 seconds);
};

void DatabaseBackupTest::fill(const TestDatabase& test, int rows)
{
    test.exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                             "WHERE i < %1) INSERT INTO applications (path, name) "
                             "SELECT '/opt/application/' || i, hex(randomblob(100)) FROM n")
                  .arg(rows));
}

QString DatabaseBackupTest::backupOf(const TestDatabase& test)
{
    return test.database()->getDatabaseFileName() + QStringLiteral(".backup");
}

bool DatabaseBackupTest::setAge(const QString& file, qint64 seconds)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadWrite) &&
           opened.setFileTime(QDateTime::currentDateTime().addSecs(-seconds),
                              QFileDevice::FileModificationTime);
}

void DatabaseBackupTest::isRefreshedWhenDue_data()
{
    QTest::addColumn<qint64>("ageSeconds");
    QTest::addColumn<bool>("refreshed");
    QTest::newRow("missing") << Q_INT64_C(-1) << true;
    QTest::newRow("a day old, less a minute") << Q_INT64_C(86'340) << false;
    QTest::newRow("more than a day old") << Q_INT64_C(86'460) << true;
}

void DatabaseBackupTest::isRefreshedWhenDue()
{
    QFETCH(qint64, ageSeconds);
    QFETCH(bool, refreshed);
    TestDatabase test;
    const QString backup = backupOf(test);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(backup), 20'000);
    fill(test, 10);
    if (ageSeconds < 0) {
        QVERIFY(QFile::remove(backup));
    } else {
        QVERIFY(setAge(backup, ageSeconds));
    }
    test.reopen();
    QSignalSpy finished(test.database(), &Database::backupFinished);
    QCOMPARE(finished.wait(refreshed ? 20'000 : 300), refreshed);
    QCOMPARE(QFile::permissions(backup) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    QVERIFY(!QFile::exists(backup + QStringLiteral(".part")));
    SampleDatabase copy(backup);
    QVERIFY(copy.isSound());
    QCOMPARE(copy.rows(QStringLiteral("SELECT COUNT(*) FROM applications")),
             refreshed ? QStringLiteral("10") : QStringLiteral("0"));
}

void DatabaseBackupTest::carriesWhatIsWrittenMeanwhile()
{
    const TestDatabase test;
    QSignalSpy finished(test.database(), &Database::backupFinished);
    QVERIFY(finished.wait(20'000));
    fill(test, 20'000);
    test.database()->backupDatabase();
    int writes = 0;
    QTimer writer;
    connect(&writer, &QTimer::timeout, &writer, [&] {
        // A transaction that stays open over a turn of the event loop, as none should, only delays.
        QSqlDatabase connection = test.database()->connection();
        if (++writes % 2 == 1) {
            connection.transaction();
            test.exec(QStringLiteral("UPDATE applications SET version = '%1'").arg(writes));
        } else {
            connection.commit();
        }
    });
    writer.start(15);
    QVERIFY(finished.wait(60'000));
    writer.stop();
    test.database()->connection().commit();
    QVERIFY(finished.last().at(0).toBool());
    QVERIFY(writes >= 2);
    SampleDatabase copy(backupOf(test));
    QVERIFY(copy.isSound());
    QCOMPARE(
        copy.rows(QStringLiteral("SELECT COUNT(*), COUNT(DISTINCT version) FROM applications")),
        QStringLiteral("20000|1"));
    QVERIFY(copy.rows(QStringLiteral("SELECT MAX(version) FROM applications")).toInt() > 0);
}

void DatabaseBackupTest::isAbandonedCleanly()
{
    TestDatabase test;
    QSignalSpy finished(test.database(), &Database::backupFinished);
    QVERIFY(finished.wait(20'000));
    const QString backup = backupOf(test);
    const QByteArray content = readFile(backup);
    fill(test, 50'000);
    for (const int waitMs : {0, 25, 200, 400}) {
        test.database()->backupDatabase();
        QTest::qWait(waitMs);
        test.reopen();
        QVERIFY(!QFile::exists(backup + QStringLiteral(".part")));
        QCOMPARE(test.value(QStringLiteral("SELECT COUNT(*) FROM applications")).toInt(), 50'000);
    }
    QVERIFY(SampleDatabase(backup).isSound());
    QVERIFY(!content.isEmpty());
}

void DatabaseBackupTest::neverComesFromADamagedDatabase()
{
    TestDatabase test;
    QSignalSpy finished(test.database(), &Database::backupFinished);
    QVERIFY(finished.wait(20'000));
    // What the quick check at start does not see: a row that its index does not know.
    constexpr auto redefine =
        "UPDATE sqlite_master SET sql = 'CREATE INDEX t_v ON t (v) WHERE v > 1' WHERE name = 't_v'";
    for (const char* statement :
         {"CREATE TABLE t (v)", "CREATE INDEX t_v ON t (v)", "INSERT INTO t VALUES (1)",
          "PRAGMA writable_schema = ON", redefine, "PRAGMA writable_schema = RESET"}) {
        QVERIFY(test.exec(QString::fromLatin1(statement)));
    }
    QVERIFY(setAge(backupOf(test), 100'000));
    test.reopen();
    QCOMPARE(test.database()->state(), Database::State::Open);
    QSignalSpy checked(test.database(), &Database::backupFinished);
    QVERIFY(checked.wait(20'000));
    QCOMPARE(checked.last().at(0).toBool(), false);
    SampleDatabase copy(backupOf(test));
    QVERIFY(copy.isSound());
    QVERIFY(!copy.tables().contains(QStringLiteral("t")));
}

REGISTER_TEST(DatabaseBackupTest);
#include "DatabaseBackupTest.moc"
