// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SampleDatabase.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

namespace {

constexpr int PageBytes = 4096;
constexpr int WaitMs = 60'000;

/// Zeroes the page at that share of the file.
void damage(const QString& file, double where)
{
    QFile opened(file);
    QVERIFY(opened.open(QIODevice::ReadWrite));
    const auto page = static_cast<qint64>(static_cast<double>(opened.size()) * where) / PageBytes;
    opened.seek(page * PageBytes);
    QCOMPARE(opened.write(QByteArray(PageBytes, '\0')), PageBytes);
}

void makeOld(const QString& file)
{
    QFile opened(file);
    QVERIFY(opened.open(QIODevice::ReadWrite));
    QVERIFY(opened.setFileTime(QDateTime::currentDateTime().addDays(-2),
                               QFileDevice::FileModificationTime));
}

} // namespace

/// Databases that are too large to be checked before they are used.
class BackgroundCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void cleanup() { m_test.reset(); }

    void findsDamageAndLetsTheNextStartRescue();
    void findsDamageToTheSchemaAtOnce();
    void takesNoWriterForDamage();
    void isAbandonedAtAnyMoment_data();
    void isAbandonedAtAnyMoment();

private:
    QString file() const { return m_test->directory() + QStringLiteral("/tallyvane.db"); }

    QTemporaryDir m_directory{fastTemporaryDirectory()};
    const QString m_large = m_directory.filePath(QStringLiteral("large.db"));
    std::unique_ptr<TestDatabase> m_test;
};

/// Some 40 MiB.
void BackgroundCheckTest::initTestCase()
{
    const TestDatabase test;
    QVERIFY(test.exec(QStringLiteral(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 90000) "
        "INSERT INTO applications (path, name) SELECT '/opt/' || i, hex(randomblob(200)) FROM n")));
    QVERIFY(test.database()->getDatabaseFileSize() > Database::LargestCheckedAtOpening);
    QVERIFY(QFile::copy(test.database()->getDatabaseFileName(), m_large));
}

/// A closed large database, and a ".backup" of it that is due to be refreshed.
void BackgroundCheckTest::init()
{
    m_test = std::make_unique<TestDatabase>();
    m_test->close();
    const QString backup = file() + QStringLiteral(".backup");
    QFile::remove(backup);
    QVERIFY(QFile::remove(file()));
    QVERIFY(QFile::copy(m_large, file()));
    QVERIFY(QFile::copy(m_large, backup));
    makeOld(backup);
}

void BackgroundCheckTest::findsDamageAndLetsTheNextStartRescue()
{
    const QByteArray good = readFile(file());
    damage(file(), 0.5);
    const LogCapture log;
    m_test->reopen();
    QCOMPARE(m_test->database()->state(), Database::State::Open);
    QVERIFY(!log.contains(QStringLiteral("Database check: ")));

    QSignalSpy found(m_test->database(), &Database::damageFound);
    m_test->database()->checkInBackground();
    QVERIFY(found.wait(WaitMs));
    QVERIFY(!log.contains(QStringLiteral("Database check: ok")));
    QCOMPARE(readFile(file() + QStringLiteral(".backup")), good);

    m_test->reopen();
    QVERIFY(log.contains(QStringLiteral("Recovered database from backup file!")));
    QVERIFY(QFile::exists(m_test->database()->keptDamagedFile()));
    QCOMPARE(m_test->value(QStringLiteral("SELECT COUNT(*) FROM applications")).toInt(), 90'000);

    // That start ended well: the one after it need not wait for a check.
    const qsizetype checks = log.count(QStringLiteral("Database check: "));
    m_test->reopen();
    QCOMPARE(log.count(QStringLiteral("Database check: ")), checks);
}

void BackgroundCheckTest::findsDamageToTheSchemaAtOnce()
{
    damage(file(), 0);
    const LogCapture log;
    m_test->reopen();
    QVERIFY(log.contains(QStringLiteral("Recovered database from backup file!")));
    QCOMPARE(m_test->database()->state(), Database::State::Open);
}

/// The writer moves pages about for as long as the check lasts.
void BackgroundCheckTest::takesNoWriterForDamage()
{
    const LogCapture log;
    m_test->reopen();
    const QSignalSpy found(m_test->database(), &Database::damageFound);
    QSignalSpy refreshed(m_test->database(), &Database::backupFinished);
    m_test->database()->checkInBackground();
    while (!log.contains(QStringLiteral("Database check: "))) {
        QVERIFY(m_test->exec(
            QStringLiteral("UPDATE applications SET name = hex(randomblob(abs(random() % 900))) "
                           "WHERE rowid IN (SELECT abs(random() % 90000) FROM sqlite_master)")));
        QCoreApplication::processEvents();
    }
    QVERIFY(log.contains(QStringLiteral("Database check: ok")));
    QCOMPARE(found.count(), 0);
    QVERIFY(refreshed.count() > 0 || refreshed.wait(WaitMs));
    QVERIFY(refreshed.first().first().toBool());
}

void BackgroundCheckTest::isAbandonedAtAnyMoment_data()
{
    QTest::addColumn<int>("afterMs");
    for (const int ms : {0, 1, 5, 20}) {
        QTest::addRow("after %d ms", ms) << ms;
    }
}

void BackgroundCheckTest::isAbandonedAtAnyMoment()
{
    QFETCH(const int, afterMs);
    const LogCapture log;
    m_test->reopen();
    m_test->database()->checkInBackground();
    QThread::msleep(static_cast<unsigned long>(afterMs));
    QVERIFY(m_test->exec(QStringLiteral("DELETE FROM applications WHERE rowid % 2")));
    m_test->close();
    QVERIFY(!log.contains(QStringLiteral(" error ")));
    QVERIFY(SampleDatabase(file()).isSound());
}

REGISTER_TEST(BackgroundCheckTest);

#include "BackgroundCheckTest.moc"
