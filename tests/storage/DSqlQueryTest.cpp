// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

class DSqlQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsFailures_data();
    void logsFailures();
    void doesNothingWithoutAStatement();
    void logsSlowStatementsOnlyWhenAsked();
    void runsScripts_data();
    void runsScripts();
    void rebinds();
};

void DSqlQueryTest::logsFailures_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<bool>("prepares");
    QTest::addColumn<QStringList>("lines");
    const QString broken = QStringLiteral("SELECT * FROM nowhere");
    QTest::newRow("prepare") << broken << true
                             << QStringList{
                                    QStringLiteral("error prepare(%1) failed").arg(broken),
                                    QStringLiteral("error   Database error: no such table: "),
                                    QStringLiteral("error   Driver error: ")};
    QTest::newRow("exec") << broken << false
                          << QStringList{QStringLiteral("error exec(%1) failed").arg(broken),
                                         QStringLiteral("error ") + broken,
                                         QStringLiteral("error   Database error: no such table: ")};
}

void DSqlQueryTest::logsFailures()
{
    QFETCH(QString, statement);
    QFETCH(bool, prepares);
    QFETCH(QStringList, lines);
    const TestDatabase test;
    const LogCapture log;
    DSqlQuery query(test.database());
    QVERIFY(!(prepares ? query.prepare(statement) : query.exec(statement)));
    for (const QString& line : lines) {
        QVERIFY2(log.contains(line), qPrintable(line + QStringLiteral(" not in\n") + log.text()));
    }
}

void DSqlQueryTest::doesNothingWithoutAStatement()
{
    const TestDatabase test;
    const LogCapture log(Log::Level::Trace);
    QVERIFY(DSqlQuery(test.database()).exec(QString()));
    QCOMPARE(log.text(), QString());
    QVERIFY(!DSqlQuery(test.database()).exec());
    QVERIFY(log.contains(QStringLiteral("error exec() failed")));
    QVERIFY(log.contains(QStringLiteral("  No last query?!")));
}

void DSqlQueryTest::logsSlowStatementsOnlyWhenAsked()
{
    const TestDatabase test;
    const LogCapture log(Log::Level::Trace);
    const QString statement = QStringLiteral("SELECT 1");
    DSqlQuery(test.database(), statement, true);
    QVERIFY(!log.contains(QStringLiteral("took too much time")));
    DSqlQuery::setTimeCheckEnabled(true);
    DSqlQuery(test.database(), statement, true);
    DSqlQuery::setTimeCheckThreshold(60'000);
    DSqlQuery(test.database(), QStringLiteral("SELECT 2"), true);
    DSqlQuery::setTimeCheckEnabled(false);
    DSqlQuery::setTimeCheckThreshold(0);
    QCOMPARE(log.text().count(QStringLiteral("trace Query exec(...) took too much time!")), 1);
    QVERIFY(log.contains(QStringLiteral("  Query string: SELECT 1")));
}

void DSqlQueryTest::runsScripts_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("succeeds");
    QTest::addColumn<QString>("rows");
    const QByteArray create("CREATE TABLE t (v)");
    const auto rows = [](const char* text) { return QString::fromLatin1(text); };
    QTest::newRow("LF") << create + ";\nINSERT INTO t VALUES (1);\n" << true << rows("1");
    QTest::newRow("CRLF, blanks") << create + ";  \r\n\r\nINSERT INTO t VALUES (1);\r\n"
                                  << true << rows("1");
    QTest::newRow("semicolons inside a line")
        << create + ";\nINSERT INTO t VALUES ('a;b');\nINSERT INTO t VALUES ('c')" << true
        << rows("a;b,c");
    QTest::newRow("goes on after a failure")
        << create + ";\nINSERT INTO u VALUES (1);\nINSERT INTO t VALUES (2);\n"
        << false << rows("2");
}

void DSqlQueryTest::runsScripts()
{
    QFETCH(QByteArray, script);
    const TestDatabase test;
    QFile file(test.directory() + QStringLiteral("/script.sql"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(script);
    file.close();
    DSqlQuery query(test.database());
    QTEST(query.executeSqlFile(file.fileName()), "succeeds");
    QTEST(test.rows(QStringLiteral("SELECT v FROM t ORDER BY rowid")), "rows");
    // The script's transaction is closed: another one can begin.
    QVERIFY(test.database()->connection().transaction());
    QVERIFY(test.database()->connection().rollback());
    QVERIFY(!query.executeSqlFile(QStringLiteral(":/no-such-script.sql")));
}

void DSqlQueryTest::rebinds()
{
    const TestDatabase test;
    {
        QSqlDatabase other =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(other.open());
        DSqlQuery query(test.database(), QStringLiteral("SELECT COUNT(*) FROM sqlite_master"),
                        true);
        QVERIFY(query.next() && query.value(0).toInt() > 0);
        query.setDb(other);
        QVERIFY(query.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master")) && query.next());
        QCOMPARE(query.value(0).toInt(), 0);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}

REGISTER_TEST(DSqlQueryTest);
#include "DSqlQueryTest.moc"
