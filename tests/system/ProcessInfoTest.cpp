// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/FixtureRoot.h"
#include "system/ProcessInfo.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

class ProcessInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsThePathOfAReplacedExecutable();
    void readsLinks_data();
    void readsLinks();
    void forgetsProcessesThatEnded();
    void tellsOfOtherUsersByTheirCommandLine();
};

void ProcessInfoTest::keepsThePathOfAReplacedExecutable()
{
    const FixtureRoot place;
    const QString program = place.filePath(QStringLiteral("sleeper"));
    QVERIFY(QFile::copy(QStringLiteral("/bin/sleep"), program));
    QProcess process;
    process.start(program, {QStringLiteral("60")});
    QVERIFY(process.waitForStarted());
    const ProcessInfo processes(QStringLiteral("/"));
    QCOMPARE(processes.processPath(process.processId()), program);
    QVERIFY(QFile::remove(program));
    QCOMPARE(processes.processPath(process.processId()), program);
    process.kill();
    process.waitForFinished();
}

void ProcessInfoTest::readsLinks_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("path");
    QTest::newRow("deleted") << QStringLiteral("/opt/a b (deleted)") << QStringLiteral("/opt/a b");
    QTest::newRow("not ASCII") << QString::fromUtf8("/opt/Zürich")
                               << QString::fromUtf8("/opt/Zürich");
}

void ProcessInfoTest::readsLinks()
{
    QFETCH(QString, target);
    const FixtureRoot root;
    QVERIFY(root.link(QStringLiteral("proc/42/exe"), target));
    QTEST(ProcessInfo(root.path()).processPath(42), "path");
}

void ProcessInfoTest::forgetsProcessesThatEnded()
{
    const ProcessInfo processes(QStringLiteral("/"));
    QProcess process;
    process.start(QStringLiteral("/bin/true"), {});
    QVERIFY(process.waitForStarted());
    const qint64 id = process.processId();
    QVERIFY(process.waitForFinished());
    QCOMPARE(processes.processPath(id), QString());
    for (const qint64 none : {qint64{0}, qint64{-1}, qint64{2}}) { // 2 is a kernel thread
        QCOMPARE(processes.processPath(none), QString());
    }
}

void ProcessInfoTest::tellsOfOtherUsersByTheirCommandLine()
{
    if (geteuid() != 0) {
        QSKIP("only root can become another user");
    }
    QProcess process;
    process.start(QStringLiteral("/bin/sleep"), {QStringLiteral("60")});
    QVERIFY(process.waitForStarted());
    const QString expected = QFileInfo(QStringLiteral("/bin/sleep")).canonicalFilePath();
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        const bool isOther = setuid(nobody) == 0;
        const QString found = ProcessInfo(QStringLiteral("/")).processPath(process.processId());
        _exit(isOther && found == expected ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    process.kill();
    process.waitForFinished();
    QCOMPARE(status, 0);
}

REGISTER_TEST(ProcessInfoTest);
#include "ProcessInfoTest.moc"
