// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"
#include "storage/FailingVfs.h"
#include "storage/HistoryStamp.h"
#include "storage/SampleDatabase.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace {

using Damage = std::function<void(const QString& file)>;

enum class Backup
{
    None,
    Good,
    Damaged,
};

constexpr int RowsInDatabase = 3000;
constexpr int RowsInBackup = 1000;

Damage noDatabase(int size)
{
    return [size](const QString& file) {
        writeFile(file, QByteArray("\x9d\x00\xfeSQ", 5).repeated(size).first(size));
    };
}

Damage zeroedPage(double where)
{
    return [where](const QString& file) {
        constexpr int pageBytes = 4096;
        QByteArray bytes = readFile(file);
        const auto page =
            static_cast<qsizetype>(static_cast<double>(bytes.size()) * where) / pageBytes;
        bytes.replace(page * pageBytes, pageBytes, QByteArray(pageBytes, '\0'));
        writeFile(file, bytes);
    };
}

Damage truncated(double share)
{
    return [share](const QString& file) {
        QFile::resize(file, static_cast<qint64>(static_cast<double>(QFile(file).size()) * share));
    };
}

void directoryInItsPlace(const QString& file)
{
    QFile::remove(file);
    QDir().mkdir(file);
    writeFile(file + QStringLiteral("/inside"), "kept");
}

/// Runs `work` in a process whose user is not root, and returns its result, 0 to 255.
int runUnprivileged(const std::function<int()>& work)
{
    constexpr uid_t nobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
            ::_exit(255);
        }
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

Q_DECLARE_METATYPE(Damage)
Q_DECLARE_METATYPE(Backup)

class DatabaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesDamage_data();
    void survivesDamage();
    void leavesEverythingWhereTheUserDeclines();
    void offersNoNewDatabaseForLackOfSpace();
    void leavesANewerDatabaseUntouched();
    void tellsOfAFullDiskAtFirstUse();
    void runsOnReadOnly_data();
    void runsOnReadOnly();
    void keepsTheBackupOfAMissingDatabase();
    void keepsFilesPrivate();
    void restoresNothingFromAStrayJournal();
    void opensWithTheExactOptions();
    void cleans_data();
    void cleans();
    void filtersByProfile();
    void closesAndReconnects();

private:
    static void prepare(const QTemporaryDir& directory, Backup backup, const Damage& damage);
    static int rowsIn(const Database& database);
    static QStringList filesIn(const QTemporaryDir& directory, const char* pattern);
};

void DatabaseTest::prepare(const QTemporaryDir& directory, Backup backup, const Damage& damage)
{
    const QString file = directory.filePath(DatabaseFiles::Name);
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
    }
    const auto fill = [&file](int first, int last) {
        SampleDatabase(file).exec(
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM n WHERE "
                           "i < %2) INSERT INTO applications (path) SELECT '/opt/' || i FROM n")
                .arg(first)
                .arg(last));
    };
    fill(1, RowsInBackup);
    if (backup != Backup::None) {
        QFile::copy(file, file + QStringLiteral(".backup"));
    }
    if (backup == Backup::Damaged) {
        zeroedPage(0.5)(file + QStringLiteral(".backup"));
    }
    fill(RowsInBackup + 1, RowsInDatabase);
    damage(file);
}

int DatabaseTest::rowsIn(const Database& database)
{
    DSqlQuery query(database.connection());
    return query.exec(QStringLiteral("SELECT COUNT(*) FROM applications")) && query.next()
               ? query.value(0).toInt()
               : -1;
}

QStringList DatabaseTest::filesIn(const QTemporaryDir& directory, const char* pattern)
{
    return QDir(directory.path())
        .entryList({QString::fromLatin1(pattern)}, QDir::AllEntries | QDir::NoDotAndDotDot);
}

void DatabaseTest::survivesDamage_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<Backup>("backup");
    QTest::addColumn<int>("questions");
    QTest::addColumn<int>("rows");
    const std::pair<const char*, Damage> damages[] = {
        {"empty", [](const QString& file) { writeFile(file, {}); }},
        {"one byte", noDatabase(1)},
        {"random bytes", noDatabase(100'000)},
        {"first page zeroed", zeroedPage(0)},
        {"schema page zeroed", zeroedPage(0.02)},
        {"page in the middle zeroed", zeroedPage(0.5)},
        {"last page zeroed", zeroedPage(0.999)},
        {"half of it", truncated(0.5)},
        {"a few bytes short", truncated(0.9999)},
        {"a directory", directoryInItsPlace},
    };
    for (const auto& [name, damage] : damages) {
        const bool isEmpty = qstrcmp(name, "empty") == 0;
        QTest::addRow("%s, good backup", name) << damage << Backup::Good << 0 << RowsInBackup;
        QTest::addRow("%s, damaged backup", name) << damage << Backup::Damaged << 1 << 0;
        // An empty file alone is what a first start leaves that ends at once.
        QTest::addRow("%s, no backup", name) << damage << Backup::None << (isEmpty ? 0 : 1) << 0;
    }
}

void DatabaseTest::survivesDamage()
{
    QFETCH(Damage, damage);
    QFETCH(Backup, backup);
    QFETCH(int, questions);
    QFETCH(int, rows);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    prepare(directory, backup, damage);
    const QByteArray damaged = readFile(file);
    const QByteArray oldBackup = readFile(file + QStringLiteral(".backup"));

    const LogCapture log;
    TestPrompts prompts;
    const Database database(directory.path(), prompts);
    QCOMPARE(database.state(), Database::State::Open);
    QCOMPARE(rowsIn(database), rows);
    QCOMPARE(prompts.questions.size(), questions);
    QCOMPARE(prompts.texts, QStringList());
    if (questions == 0 && backup == Backup::None) {
        QCOMPARE(database.keptDamagedFile(), QString());
        return;
    }
    QVERIFY(log.contains(QStringLiteral("Unable to open database: ")));
    QVERIFY(log.contains(QStringLiteral("Detected a database failure..trying to restore!")));
    QCOMPARE(log.contains(QStringLiteral("Recovered database from backup file!")),
             backup == Backup::Good);
    QCOMPARE(log.contains(QStringLiteral("Unable to recover from database backup file!")),
             backup != Backup::Good);
    QVERIFY(HistoryStamp::read(database.connection()).has_value());
    const QString kept = database.keptDamagedFile();
    QCOMPARE(filesIn(directory, "tallyvane.db.damaged-*[0-9]"),
             QStringList(QFileInfo(kept).fileName()));
    QCOMPARE(readFile(kept), damaged);
    QCOMPARE(QFileInfo(kept).isDir(), QFile::exists(kept + QStringLiteral("/inside")));
    if (backup == Backup::Damaged) {
        const QStringList keptBackups = filesIn(directory, "tallyvane.db.backup-*");
        QCOMPARE(keptBackups.size(), 1);
        QCOMPARE(readFile(directory.filePath(keptBackups.first())), oldBackup);
    }
}

void DatabaseTest::leavesEverythingWhereTheUserDeclines()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    prepare(directory, Backup::Damaged, zeroedPage(0.5));
    const QString file = directory.filePath(DatabaseFiles::Name);
    const QByteArray damaged = readFile(file);
    const QByteArray backup = readFile(file + QStringLiteral(".backup"));
    const LogCapture log;
    TestPrompts prompts;
    prompts.answer = TestPrompts::Answer::No;
    for (int run = 1; run <= 2; ++run) {
        const Database database(directory.path(), prompts);
        QCOMPARE(database.state(), Database::State::Failed);
        QCOMPARE(prompts.questions.size(), run);
    }
    QCOMPARE(prompts.titles.first(), QStringLiteral("Database failure"));
    QCOMPARE(prompts.texts.first(), QStringLiteral("Critical database error!"));
    QVERIFY(log.contains(QStringLiteral("User declined fresh database")));
    QCOMPARE(readFile(file), damaged);
    QCOMPARE(readFile(file + QStringLiteral(".backup")), backup);
}

void DatabaseTest::offersNoNewDatabaseForLackOfSpace()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    prepare(directory, Backup::Good, zeroedPage(0.5));
    const QString file = directory.filePath(DatabaseFiles::Name);
    const QByteArray damaged = readFile(file);
    TestPrompts prompts;
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit tight{8192, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &tight);
    {
        const Database database(directory.path(), prompts);
        QCOMPARE(database.state(), Database::State::Failed);
    }
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    QCOMPARE(prompts.questions, QStringList());
    QVERIFY(prompts.texts.value(0).startsWith(QStringLiteral("Unable to setup database: ")));
    QVERIFY(prompts.texts.value(0).endsWith(
        QStringLiteral("\n\nPlease check your permissions on: ") + directory.path()));
    QCOMPARE(readFile(file), damaged);
    QCOMPARE(filesIn(directory, "*.part"), QStringList());
    const Database database(directory.path(), prompts);
    QCOMPARE(rowsIn(database), RowsInBackup);
}

void DatabaseTest::leavesANewerDatabaseUntouched()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    {
        SampleDatabase sample(file);
        // In this mode a mere look by SQLite would leave files beside it.
        sample.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
        sample.exec(QStringLiteral("CREATE TABLE unknown (v)"));
        sample.exec(QStringLiteral("PRAGMA user_version = 12"));
    }
    const QByteArray before = readFile(file);
    const QStringList files = filesIn(directory, "*");
    const LogCapture log;
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
        QCOMPARE(database.state(), Database::State::NewerVersion);
        QVERIFY(!database.connection().isOpen());
    }
    QCOMPARE(readFile(file), before);
    QCOMPARE(filesIn(directory, "*"), files);
    QCOMPARE(prompts.titles, QStringList(QStringLiteral("Version")));
    QCOMPARE(prompts.texts, QStringList(QStringLiteral(
                                "It is not supported to downgrade the Tallyvane client, please "
                                "install the latest version and try again.")));
    QVERIFY(log.contains(QStringLiteral(
        "Database version (12) is higher then supported (11). This is very bad and I "
        "will now reset the database to be safe!")));
}

void DatabaseTest::tellsOfAFullDiskAtFirstUse()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    TestPrompts prompts;
    {
        const FailingVfs full(FailingVfs::Fault::DiskFull, 0);
        const Database database(directory.path(), prompts);
        QCOMPARE(database.state(), Database::State::Failed);
    }
    QCOMPARE(prompts.titles, QStringList(QStringLiteral("Database failure")));
    QVERIFY(prompts.texts.first().startsWith(
        QStringLiteral("Unable to setup database: database or disk is full")));
    const Database database(directory.path(), prompts);
    QCOMPARE(database.state(), Database::State::Open);
    QCOMPARE(rowsIn(database), 0);
}

void DatabaseTest::runsOnReadOnly_data()
{
    QTest::addColumn<unsigned int>("fileMode");
    QTest::addColumn<unsigned int>("directoryMode");
    QTest::addColumn<bool>("opens");
    QTest::newRow("file") << 0444U << 0777U << true;
    QTest::newRow("directory") << 0666U << 0555U << true;
    QTest::newRow("both") << 0444U << 0555U << true;
    QTest::newRow("unreadable") << 0000U << 0777U << false;
}

void DatabaseTest::runsOnReadOnly()
{
    QFETCH(unsigned int, fileMode);
    QFETCH(unsigned int, directoryMode);
    QFETCH(bool, opens);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    prepare(directory, Backup::Good, [](const QString&) {});
    QFile::remove(file + QStringLiteral("-journal"));
    ::chmod(QFile::encodeName(file).constData(), fileMode);
    ::chmod(QFile::encodeName(directory.path()).constData(), directoryMode);
    const int result = runUnprivileged([&] {
        TestPrompts prompts;
        const Database database(directory.path(), prompts);
        const bool told =
            prompts.titles == QStringList(QStringLiteral("Database failure")) &&
            prompts.texts.first() ==
                (opens
                     ? QStringLiteral("The database '%1' is read-only. Tallyvane cannot store any "
                                      "statistics until you fix this problem.")
                           .arg(file)
                     : QStringLiteral("Unable to open database: unable to open database file Error "
                                      "opening database"));
        const bool asExpected = opens ? database.state() == Database::State::ReadOnly &&
                                            rowsIn(database) == RowsInDatabase &&
                                            !DSqlQuery(database.connection())
                                                 .exec(QStringLiteral("DELETE FROM applications"))
                                      : database.state() == Database::State::Failed;
        return (told ? 1 : 0) + (asExpected ? 2 : 0) + (prompts.questions.isEmpty() ? 4 : 0);
    });
    ::chmod(QFile::encodeName(directory.path()).constData(), 0700U);
    QCOMPARE(result, 7);
    QCOMPARE(filesIn(directory, "*damaged*"), QStringList());
}

void DatabaseTest::keepsTheBackupOfAMissingDatabase()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    prepare(directory, Backup::Good, [](const QString& file) { QFile::remove(file); });
    const QByteArray backup = readFile(directory.filePath(QStringLiteral("tallyvane.db.backup")));
    const LogCapture log;
    TestPrompts prompts;
    const Database database(directory.path(), prompts);
    QCOMPARE(rowsIn(database), 0);
    QVERIFY(log.contains(QStringLiteral("Database file: %1 does not exist, starting fresh!")
                             .arg(directory.filePath(DatabaseFiles::Name))));
    QVERIFY(
        log.contains(QStringLiteral("First time database use detected, setting version to: 11")));
    const QStringList kept = filesIn(directory, "tallyvane.db.backup-*");
    QCOMPARE(kept.size(), 1);
    QCOMPARE(readFile(directory.filePath(kept.first())), backup);
}

void DatabaseTest::keepsFilesPrivate()
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const mode_t oldMask = ::umask(0);
    prepare(directory, Backup::Good, zeroedPage(0.5));
    ::chmod(QFile::encodeName(directory.filePath(DatabaseFiles::Name)).constData(), 0644U);
    TestPrompts prompts;
    {
        const Database database(directory.path(), prompts);
        DSqlQuery(database.connection()).exec(QStringLiteral("DELETE FROM applications"));
    }
    ::umask(oldMask);
    for (const QString& name : {DatabaseFiles::Name, QStringLiteral("tallyvane.db-journal"),
                                filesIn(directory, "*damaged*").value(0)}) {
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(directory.filePath(name)).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777U, 0600U);
    }
}

void DatabaseTest::restoresNothingFromAStrayJournal()
{
    // A client killed inside a transaction leaves a journal, which is not the restored file's.
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    prepare(directory, Backup::Good, [](const QString&) {});
    const pid_t child = ::fork();
    if (child == 0) {
        SampleDatabase sample(file);
        sample.exec(QStringLiteral("PRAGMA cache_size = 1"));
        sample.exec(QStringLiteral("BEGIN"));
        sample.exec(QStringLiteral("UPDATE applications SET name = hex(randomblob(500))"));
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    QVERIFY(QFileInfo(file + QStringLiteral("-journal")).size() > 0);
    writeFile(file, {});
    TestPrompts prompts;
    const Database database(directory.path(), prompts);
    QCOMPARE(rowsIn(database), RowsInBackup);
    QVERIFY(QFile::exists(database.keptDamagedFile() + QStringLiteral("-journal")));
}

void DatabaseTest::opensWithTheExactOptions()
{
    const LogCapture log;
    const TestDatabase test;
    QCOMPARE(test.database()->connection().connectionName(), QStringLiteral("tv-db-connection"));
    QVERIFY(log.contains(
        QStringLiteral("Database connection options: ;QSQLITE_BUSY_TIMEOUT=300000\n")));
    QVERIFY(log.contains(QStringLiteral("Database check: ok\n")));
    const std::pair<const char*, const char*> pragmas[] = {
        {"secure_delete", "0"},     {"journal_mode", "truncate"}, {"temp_store", "2"},
        {"synchronous", "1"},       {"cache_size", "-30720"},     {"soft_heap_limit", "36700160"},
        {"busy_timeout", "300000"}, {"user_version", "11"},
    };
    for (const auto& [pragma, expected] : pragmas) {
        QCOMPARE(test.value(QStringLiteral("PRAGMA ") + QLatin1String(pragma)).toString(),
                 QLatin1String(expected));
    }
    QCOMPARE(test.database()->checkDatabaseFull(), QStringLiteral("ok"));
}

void DatabaseTest::cleans_data()
{
    QTest::addColumn<bool>("everything");
    QTest::addColumn<QString>("left");
    QTest::newRow("statistics")
        << false
        << QStringLiteral(
               "applications_upgrades computer_info fact keycombo_frequency_application "
               "keypress_frequency_application keypresses last_update_time milestones "
               "milestones_log mouseclicks mouseclicks_frequency_application mousedistance "
               "mousescrolls network_interfaces_ignore profiles settings uptime_hour "
               "usage_stats_events usage_stats_time website_pending_messages");
    QTest::newRow("all that was counted")
        << true
        << QStringLiteral("fact keypresses last_update_time milestones mouseclicks "
                          "network_interfaces_ignore profiles settings");
}

void DatabaseTest::cleans()
{
    QFETCH(bool, everything);
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(DatabaseFiles::Name);
    SampleDatabase::create(file, 10);
    TestPrompts prompts;
    {
        Database database(directory.path(), prompts);
        QVERIFY(everything ? database.cleanDatabaseUser() : database.cleanDatabase());
    }
    SampleDatabase sample(file);
    QStringList left;
    for (const QString& table : sample.tables()) {
        if (sample.rows(QStringLiteral("SELECT COUNT(*) FROM ") + table) != QStringLiteral("0")) {
            left << table;
        }
    }
    QTEST(left.join(QLatin1Char(' ')), "left");
    QCOMPARE(sample.rows(QStringLiteral("SELECT COUNT(*) FROM settings WHERE name = "
                                        "'history_stamp'")),
             QStringLiteral("1"));
    const QString today = QDate::currentDate().toString(Qt::ISODate);
    for (const char* table : {"keypresses", "mouseclicks"}) {
        QCOMPARE(sample.rows(QStringLiteral("SELECT day, hour, count, profile_id FROM ") +
                             QLatin1String(table)),
                 today + QStringLiteral("|0|0|0"));
    }
}

void DatabaseTest::filtersByProfile()
{
    const TestDatabase test;
    Database& database = *test.database();
    QCOMPARE(database.generateWhereQueryProfileFilter(QString()), QStringLiteral("1"));
    database.setProfileFilter(0);
    QCOMPARE(database.generateWhereQueryProfileFilter(QString()), QStringLiteral("profile_id = 0"));
    database.setProfileFilter(3);
    QCOMPARE(database.generateWhereQueryProfileFilter(QStringLiteral("k")),
             QStringLiteral("k.profile_id = 3"));
}

void DatabaseTest::closesAndReconnects()
{
    const TestDatabase test;
    Database& database = *test.database();
    database.closeDatabase();
    QCOMPARE(database.state(), Database::State::Closed);
    QCOMPARE(database.checkDatabase(), QStringLiteral("db isn't open!"));
    // What is cached still reads, and what cannot be stored is not lost to this run.
    QCOMPARE(Settings::instance().value(SettingsKeys::ClientApiHttpPort), 3490);
    QVERIFY(!Settings::instance().setValue(SettingsKeys::ClientApiHttpPort, 5));
    QCOMPARE(Settings::instance().value(SettingsKeys::ClientApiHttpPort), 5);
    QVERIFY(database.reconnectIfNeeded());
    QCOMPARE(database.state(), Database::State::Open);
    QCOMPARE(database.checkDatabase(), QStringLiteral("ok"));
    QVERIFY(test.exec(QStringLiteral("SELECT * FROM application_bandwidth_second")));
}

REGISTER_TEST(DatabaseTest);
#include "DatabaseTest.moc"
