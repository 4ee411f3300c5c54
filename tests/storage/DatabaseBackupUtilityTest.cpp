// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseArchive.h"
#include "storage/DatabaseBackupUtility.h"
#include "storage/FailingVfs.h"
#include "storage/SampleDatabase.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/ScriptedServer.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <optional>

namespace {

constexpr std::chrono::milliseconds StallTimeout = std::chrono::seconds(1);

/// A client with a database of some size, a backup, and what it asks for connected as the
/// application does.
struct Client
{
    explicit Client(int rows = 2'000)
    {
        test.exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                 "WHERE i < %1) INSERT INTO applications (path, name) "
                                 "SELECT '/opt/application/' || i, hex(randomblob(100)) FROM n")
                      .arg(rows));
        Settings::instance().setValue(SettingsKeys::OnlineBackupLast, before);
        QObject::connect(&backup, &DatabaseBackupUtility::signalNeedUploadURL, &backup, [this] {
            backup.processGetDatabaseBackupUploadURL(QStringLiteral("another_type"), 200, {}, {});
            backup.processGetDatabaseBackupUploadURL(
                QStringLiteral("get_db_backup_upload_url"), addressStatus,
                {{QStringLiteral("url"),
                  address.value_or(server.url(QStringLiteral("/put?key=1")).toString())}},
                QStringLiteral("The service says no."));
        });
    }

    QString path(const QString& name) const { return test.directory() + QLatin1Char('/') + name; }

    QString archive() const { return path(QStringLiteral("backups/tallyvane.db.zip")); }

    QString copy() const { return path(QStringLiteral("backups/tallyvane.db")); }

    QDateTime lastBackup() const
    {
        return Settings::instance().value(SettingsKeys::OnlineBackupLast);
    }

    /// Whether all is as if no backup had been made: counting goes on, the database takes writes,
    /// and nothing else lies about.
    bool isAsBefore() const
    {
        return !backup.isInProgress() && paused.size() == resumed.size() &&
               !test.database()->isLent() && !QFile::exists(archive()) &&
               test.exec(QStringLiteral("UPDATE applications SET version = 'later'")) &&
               test.database()->checkDatabase() == QLatin1String("ok");
    }

    const QDateTime before = QDateTime::currentDateTime().addDays(-30);
    TestDatabase test;
    ScriptedServer server;
    int addressStatus = 200;
    std::optional<QString> address;
    DatabaseBackupUtility backup{*test.database(), Settings::instance(), nullptr, StallTimeout};
    QSignalSpy paused{&backup, &DatabaseBackupUtility::signalNeedCountingPaused};
    QSignalSpy resumed{&backup, &DatabaseBackupUtility::signalNeedCountingResumed};
    QSignalSpy failed{&backup, &DatabaseBackupUtility::signalErrorWhilePreparing};
    QSignalSpy finished{&backup, &DatabaseBackupUtility::signalBackupFinished};
};

} // namespace

class DatabaseBackupUtilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDue_data();
    void isDue();
    void uploadsAConsistentCopyWhileKeysFlow();
    void tellsItsSteps();
    void endsAFailedUpload_data();
    void endsAFailedUpload();
    void givesUpPreparing_data();
    void givesUpPreparing();
    void neverUploadsADamagedDatabase();
    void survivesAFullDisk_data();
    void survivesAFullDisk();
    void endsWithTheDatabase_data();
    void endsWithTheDatabase();
};

void DatabaseBackupUtilityTest::isDue_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QDateTime>("last");
    QTest::addColumn<bool>("due");
    const QDate day(2026, 3, 10);
    QTest::newRow("seven midnights ago") << true << day.addDays(-7).endOfDay() << true;
    QTest::newRow("six midnights ago") << true << day.addDays(-6).startOfDay() << false;
    QTest::newRow("long ago, switched off") << false << day.addDays(-70).startOfDay() << false;
    QTest::newRow("the clock went back") << true << day.addDays(70).startOfDay() << false;
}

void DatabaseBackupUtilityTest::isDue()
{
    QFETCH(bool, enabled);
    QFETCH(QDateTime, last);
    const TestDatabase test;
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::OnlineBackupEnabled, enabled);
    settings.setValue(SettingsKeys::OnlineBackupLast, last);
    QTEST(DatabaseBackupUtility::isDue(settings, QDate(2026, 3, 10).startOfDay()), "due");
}

void DatabaseBackupUtilityTest::uploadsAConsistentCopyWhileKeysFlow()
{
    Client client(50'000);
    const TestDatabase& test = client.test;
    QVERIFY(test.exec(QStringLiteral("CREATE TABLE one (v)")));
    QVERIFY(test.exec(QStringLiteral("CREATE TABLE two (v)")));
    int stored = 0;
    bool mannered = false;
    QTimer keys;
    connect(&keys, &QTimer::timeout, &keys, [&] {
        Settings::instance().setValue(SettingsKeys::OnlineRankKeys, qint64(stored));
        // Every other time, as someone who does not ask whether the database is lent.
        mannered = !mannered;
        QSqlDatabase connection = test.database()->connection();
        if ((mannered && test.database()->isLent()) || !connection.transaction()) {
            return;
        }
        const bool inserted =
            test.exec(QStringLiteral("INSERT INTO one VALUES (%1)").arg(stored)) &&
            test.exec(QStringLiteral("INSERT INTO two VALUES (%1)").arg(stored));
        if (inserted && connection.commit()) {
            ++stored;
        } else {
            connection.rollback();
        }
    });
    keys.start(1);
    client.backup.startBackup();
    QVERIFY(test.database()->isLent());
    QVERIFY(client.finished.wait(60'000));
    keys.stop();
    QCOMPARE(client.finished.last().at(0).toBool(), true);
    QVERIFY(stored > 0);
    QCOMPARE(test.value(QStringLiteral("SELECT COUNT(*) FROM two")).toInt(), stored);
    QCOMPARE(
        test.value(QStringLiteral("SELECT value FROM settings WHERE name = 'online_rank_keys'"))
            .toInt(),
        Settings::instance().value(SettingsKeys::OnlineRankKeys));

    QCOMPARE(client.server.requests.size(), 1);
    const QString archive = client.path(QStringLiteral("uploaded.zip"));
    const QString unpacked = client.path(QStringLiteral("unpacked.db"));
    QVERIFY(writeFile(archive, client.server.requests.first().body));
    QCOMPARE(DatabaseArchive::unpack(archive, unpacked, Q_INT64_C(1) << 30,
                                     [](qint64, qint64) { return true; }),
             DatabaseArchive::Unpacked::Done);
    QVERIFY(readFile(unpacked) == readFile(client.copy()));
    SampleDatabase copy(unpacked);
    QVERIFY(copy.isSound());
    QCOMPARE(copy.rows(QStringLiteral("SELECT COUNT(*) FROM applications")),
             QStringLiteral("50000"));
    QCOMPARE(copy.rows(QStringLiteral("SELECT COUNT(*) FROM one")),
             copy.rows(QStringLiteral("SELECT COUNT(*) FROM two")));
    QVERIFY(client.isAsBefore());
}

void DatabaseBackupUtilityTest::tellsItsSteps()
{
    Client client;
    QVERIFY(QDir().mkpath(client.path(QStringLiteral("backups"))));
    QVERIFY(writeFile(client.copy(), "older"));
    QVERIFY(writeFile(client.archive(), "older"));
    QSignalSpy status(&client.backup, &DatabaseBackupUtility::signalUpdateStatus);
    QSignalSpy sent(&client.backup, &DatabaseBackupUtility::signalUploadProgress);
    const LogCapture log;
    connect(&client.backup, &DatabaseBackupUtility::signalNeedCountingPaused, &client.backup,
            &DatabaseBackupUtility::startBackup);
    client.test.database()->lend();
    client.backup.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::WhenDue);
    client.test.database()->takeBack();
    QCOMPARE(log.text(), QString()); // Nobody is told what nobody asked for.
    client.backup.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::WhenDue);
    QVERIFY(client.finished.wait(60'000));
    const QString file = client.test.database()->getDatabaseFileName();
    qsizetype from = 0;
    const QString text = log.text();
    for (const QString& line :
         {QStringLiteral("info Starting online backup.."),
          QStringLiteral("info Backup already in progress, skipping request."),
          QStringLiteral("info Removed old backup file: ") + client.copy(),
          QStringLiteral("info Copied database file for backup: %1 to: %2")
              .arg(file, client.copy()),
          QStringLiteral(
              "info Copied data from production database (%1) to backup database (%2) in ")
              .arg(file, client.copy()),
          QStringLiteral("info Opening database file for backup: ") + client.copy(),
          QStringLiteral("info Database integrity check: ok"),
          QStringLiteral("info Retrieved database upload URL from website: %1\n")
              .arg(client.server.url(QStringLiteral("/put")).toString()),
          QStringLiteral("info Removing old backup file: ") + client.archive(),
          QStringLiteral("info Compressing %1 into %2").arg(client.copy(), client.archive()),
          QStringLiteral("info Starting upload of ") + client.archive(),
          QStringLiteral("info Successfully completed database backup!")}) {
        const qsizetype at = text.indexOf(line, from);
        QVERIFY2(at >= 0, qPrintable(line));
        from = at + line.size();
    }
    QCOMPARE(client.paused.size(), 1);
    QStringList told;
    for (const QList<QVariant>& arguments : status) {
        told << arguments.first().toString();
    }
    QCOMPARE(
        told,
        QStringList({QStringLiteral("Copying database.."), QStringLiteral("Checking database.."),
                     QStringLiteral("Zipping database.."), QStringLiteral("Starting upload..")}));
    const ScriptedServer::Request& request = client.server.requests.first();
    QCOMPARE(request.firstLine(), QByteArray("PUT /put?key=1 HTTP/1.1"));
    QCOMPARE(request.header("Content-Type"), QByteArray());
    QCOMPARE(sent.last().at(1).toLongLong(), request.body.size());
    QVERIFY(client.lastBackup().daysTo(QDateTime::currentDateTime()) == 0);
    QVERIFY(client.isAsBefore());
    QCOMPARE(QFile::permissions(client.copy()) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
}

void DatabaseBackupUtilityTest::endsAFailedUpload_data()
{
    using Manner = ScriptedServer::Manner;
    QTest::addColumn<int>("manner");
    QTest::addColumn<int>("status");
    QTest::newRow("refused") << static_cast<int>(Manner::Answer) << 403;
    QTest::newRow("sent elsewhere") << static_cast<int>(Manner::Answer) << 302;
    QTest::newRow("cut off") << static_cast<int>(Manner::CutRequest) << 200;
    QTest::newRow("stands still") << static_cast<int>(Manner::StandStill) << 200;
    QTest::newRow("nobody there") << -1 << 0;
}

void DatabaseBackupUtilityTest::endsAFailedUpload()
{
    QFETCH(int, manner);
    QFETCH(int, status);
    Client client;
    client.server.script = {.manner = static_cast<ScriptedServer::Manner>(manner),
                            .status = status,
                            .headers = "Location: /elsewhere\r\n"};
    if (manner < 0) {
        client.address = client.server.url(QStringLiteral("/put")).toString();
        client.server.close();
    }
    const LogCapture log;
    client.backup.startBackup();
    QVERIFY(client.finished.wait(60'000));
    QCOMPARE(client.finished.last().at(0).toBool(), false);
    QVERIFY(log.contains(QStringLiteral(
        "error Errors while completing database backup, see above logs for hints.")));
    QVERIFY(!log.contains(QStringLiteral("key=1")));
    QCOMPARE(client.lastBackup().daysTo(QDateTime::currentDateTime()), 0);
    QVERIFY(client.server.requests.size() <= 1);
    QVERIFY(QFile::exists(client.copy()));
    QVERIFY(client.isAsBefore());
    QCOMPARE(client.failed.size() + client.finished.size(), 1);
}

void DatabaseBackupUtilityTest::givesUpPreparing_data()
{
    QTest::addColumn<int>("addressStatus");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("prepare");
    QTest::addColumn<QString>("text");
    QTest::newRow("the service refuses")
        << 403 << QString() << QString() << QStringLiteral("The service says no.");
    const QString none = QStringLiteral("no address");
    QTest::newRow("no address") << 200 << QString() << QString() << none;
    QTest::newRow("a file") << 200 << QStringLiteral("file:///etc/passwd") << QString() << none;
    QTest::newRow("no room for backups")
        << 200 << QStringLiteral("http://127.0.0.1/") << QStringLiteral("backups")
        << QStringLiteral("Failed to create the 'backups' directory.");
    QTest::newRow("no room for the copy")
        << 200 << QStringLiteral("http://127.0.0.1/")
        << QStringLiteral("backups/tallyvane.db/inside")
        << QStringLiteral("Failed to create a backup of the database file");
}

void DatabaseBackupUtilityTest::givesUpPreparing()
{
    QFETCH(int, addressStatus);
    QFETCH(QString, address);
    QFETCH(QString, prepare);
    QFETCH(QString, text);
    Client client;
    client.addressStatus = addressStatus;
    client.address = address;
    if (!prepare.isEmpty()) {
        // Something that no one, not even root, can write over.
        QVERIFY(QDir().mkpath(QFileInfo(client.path(prepare)).absolutePath()));
        QVERIFY(writeFile(client.path(prepare), "in the way"));
    }
    client.backup.startBackup();
    QVERIFY(client.failed.size() == 1 || client.failed.wait(60'000));
    QVERIFY2(client.failed.last().at(0).toString().contains(text),
             qPrintable(client.failed.last().at(0).toString()));
    QCOMPARE(client.finished.size(), 0);
    QCOMPARE(client.lastBackup(), client.before);
    QVERIFY(client.isAsBefore());
    // Due as ever, but the maintenance is not to try again and again.
    client.backup.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::WhenDue);
    QVERIFY(!client.backup.isInProgress());
    client.test.database()->lend();
    client.backup.backgroundDatabaseBackup(DatabaseBackupUtility::Trigger::Now);
    QVERIFY(!client.backup.isInProgress());
    QCOMPARE(client.failed.size(), 2);
    client.test.database()->takeBack();
}

void DatabaseBackupUtilityTest::neverUploadsADamagedDatabase()
{
    Client client;
    // What only the full check sees: a row that its index does not know.
    constexpr auto redefine =
        "UPDATE sqlite_master SET sql = 'CREATE INDEX t_v ON t (v) WHERE v > 1' WHERE name = 't_v'";
    for (const char* statement :
         {"CREATE TABLE t (v)", "CREATE INDEX t_v ON t (v)", "INSERT INTO t VALUES (1)",
          "PRAGMA writable_schema = ON", redefine, "PRAGMA writable_schema = RESET"}) {
        QVERIFY(client.test.exec(QString::fromLatin1(statement)));
    }
    client.backup.startBackup();
    QVERIFY(client.failed.wait(60'000));
    QVERIFY(client.failed.last().at(0).toString().contains(QStringLiteral("damaged")));
    QVERIFY(!QFile::exists(client.copy()));
    QCOMPARE(client.server.requests.size(), 0);
    QVERIFY(client.isAsBefore());
}

void DatabaseBackupUtilityTest::survivesAFullDisk_data()
{
    QTest::addColumn<int>("failingWrite");
    QTest::addColumn<bool>("copied");
    QTest::newRow("with the first page") << 0 << false;
    QTest::newRow("half-way through the copy") << 60 << false;
    QTest::newRow("while zipping") << -1 << true;
}

void DatabaseBackupUtilityTest::survivesAFullDisk()
{
    QFETCH(int, failingWrite);
    QFETCH(bool, copied);
    Client client;
    const QByteArray content = readFile(client.test.database()->getDatabaseFileName());
    std::optional<FailingVfs> vfs;
    std::optional<FileSizeLimit> limit;
    if (failingWrite >= 0) {
        vfs.emplace(FailingVfs::Fault::DiskFull, failingWrite);
    } else {
        connect(&client.backup, &DatabaseBackupUtility::signalUpdateStatus, this,
                [&](const QString& status) {
                    if (status == QLatin1String("Zipping database..")) {
                        limit.emplace(static_cast<rlim_t>(content.size() / 10));
                    }
                });
    }
    client.backup.startBackup();
    QVERIFY(client.failed.wait(60'000));
    vfs.reset();
    limit.reset();
    QCOMPARE(QFile::exists(client.copy()), copied);
    QVERIFY(readFile(client.test.database()->getDatabaseFileName()) == content);
    QVERIFY(client.isAsBefore());
}

void DatabaseBackupUtilityTest::endsWithTheDatabase_data()
{
    QTest::addColumn<QString>("status");
    QTest::newRow("copying") << QStringLiteral("Copying database..");
    QTest::newRow("checking") << QStringLiteral("Checking database..");
    QTest::newRow("zipping") << QStringLiteral("Zipping database..");
    QTest::newRow("uploading") << QStringLiteral("Starting upload..");
}

void DatabaseBackupUtilityTest::endsWithTheDatabase()
{
    QFETCH(QString, status);
    Client client(20'000);
    client.server.script.manner = ScriptedServer::Manner::StandStill;
    connect(
        &client.backup, &DatabaseBackupUtility::signalUpdateStatus, this,
        [&](const QString& told) {
            if (told == status) {
                Settings::instance().close();
                client.test.database()->closeDatabase();
            }
        },
        Qt::QueuedConnection);
    client.backup.startBackup();
    QTRY_COMPARE_WITH_TIMEOUT(client.failed.size() + client.finished.size(), 1, 60'000);
    QVERIFY(!client.backup.isInProgress());
    QCOMPARE(client.paused.size(), client.resumed.size());
    QVERIFY(!client.test.database()->isLent());
    QVERIFY(!QFile::exists(client.archive()));
    QCOMPARE(client.lastBackup(), client.before);
    SampleDatabase database(client.test.database()->getDatabaseFileName());
    QVERIFY(database.isSound());
    QCOMPARE(database.rows(QStringLiteral("SELECT COUNT(*) FROM applications")),
             QStringLiteral("20000"));
}

REGISTER_TEST(DatabaseBackupUtilityTest);
#include "DatabaseBackupUtilityTest.moc"
