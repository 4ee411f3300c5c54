// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

class DSqlQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsFailures();
    void logsSlowStatementsOnlyWhenAsked();
    void runsScripts_data();
    void runsScripts();
};

void DSqlQueryTest::logsFailures()
{
    const TestDatabase test;
    const QString broken = QStringLiteral("SELECT * FROM nowhere");
    const LogCapture log(Log::Level::Trace);
    QVERIFY(DSqlQuery(test.database()).exec(QString()));
    QCOMPARE(log.text(), QString());
    QVERIFY(!DSqlQuery(test.database()).prepare(broken));
    QVERIFY(!DSqlQuery(test.database()).exec(broken));
    QVERIFY(!DSqlQuery(test.database()).exec());
    for (const QString& line : {QStringLiteral("prepare(%1) failed").arg(broken),
                                QStringLiteral("exec(%1) failed").arg(broken), broken,
                                QStringLiteral("  Database error: no such table: nowhere"),
                                QStringLiteral("  Driver error: "), QStringLiteral("exec() failed"),
                                QStringLiteral("  No last query?!")}) {
        QVERIFY2(log.contains(QStringLiteral("error ") + line), qPrintable(line));
    }
}

void DSqlQueryTest::logsSlowStatementsOnlyWhenAsked()
{
    const TestDatabase test;
    const LogCapture log(Log::Level::Trace);
    const QString statement = QStringLiteral("SELECT 1");
    QVERIFY(DSqlQuery(test.database(), statement, true).isActive());
    QVERIFY(!log.contains(QStringLiteral("took too much time")));
    DSqlQuery::setTimeCheckEnabled(true);
    QVERIFY(DSqlQuery(test.database(), statement, true).isActive());
    DSqlQuery::setTimeCheckThreshold(60'000);
    QVERIFY(DSqlQuery(test.database(), QStringLiteral("SELECT 2"), true).isActive());
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

REGISTER_TEST(DSqlQueryTest);
#include "DSqlQueryTest.moc"
