// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseArchive.h"
#include "storage/DatabaseFiles.h"
#include "storage/DatabaseRestore.h"
#include "storage/SampleDatabase.h"
#include "support/ArchiveBytes.h"
#include "support/FileSizeLimit.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

#include <functional>

namespace {

using Outcome = DatabaseRestore::Outcome;

/// Bytes of a sample database, after `statements`.
QByteArray databaseBytes(int version, const QStringList& statements = {})
{
    const QTemporaryDir directory(fastTemporaryDirectory());
    const QString file = directory.filePath(QStringLiteral("sample.db"));
    SampleDatabase::create(file, version);
    for (const QString& statement : statements) {
        SampleDatabase(file).exec(statement);
    }
    return readFile(file);
}

QByteArray archiveOf(const QByteArray& database)
{
    return ArchiveBytes::of(DatabaseFiles::Name, database);
}

/// With a page in the middle overwritten.
QByteArray damaged(QByteArray database)
{
    constexpr qsizetype pageBytes = 4096;
    const qsizetype middle = database.size() / 2 / pageBytes * pageBytes;
    return database.replace(middle, pageBytes, QByteArray(pageBytes, 'x'));
}

/// With the end missing, or one byte another.
QByteArray cut(const QByteArray& bytes)
{
    return bytes.left(bytes.size() / 2);
}

QByteArray flipped(QByteArray bytes)
{
    const qsizetype middle = bytes.size() / 2;
    bytes[middle] = static_cast<char>(~bytes[middle]);
    return bytes;
}

/// A data directory with a database and, staged before, another one.
struct DataDirectory
{
    DataDirectory()
    {
        writeFile(path(DatabaseFiles::Name), "the old one");
        writeFile(path(DatabaseFiles::RestoreName), "staged before");
        QDir(directory.path()).mkpath(QStringLiteral("from"));
    }

    QString path(const QString& name) const { return directory.filePath(name); }

    /// Whether all is as it was made.
    bool isUntouched() const
    {
        return readFile(path(DatabaseFiles::Name)) == "the old one" &&
               readFile(path(DatabaseFiles::RestoreName)) == "staged before" &&
               QDir(directory.path()).entryList(QDir::Files).size() == 2;
    }

    QTemporaryDir directory{fastTemporaryDirectory()};
};

} // namespace

class DatabaseRestoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stagesWhatIsFit_data();
    void stagesWhatIsFit();
    void refusesWhatIsNot_data();
    void refusesWhatIsNot();
    void refusesTheDatabaseInUse();
    void refusesAnArchiveCutAnywhere();
    void unpacksNoMoreThanItMay();
    void survivesAFullDisk();
    void canBeCancelled();
};

void DatabaseRestoreTest::stagesWhatIsFit_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("stays");
    const QByteArray current = databaseBytes(10, {QStringLiteral("PRAGMA user_version = 11")});
    const QString backup = QStringLiteral("from/backup");
    QTest::newRow("archive") << backup << archiveOf(current) << true;
    QTest::newRow("archive, downloaded")
        << DatabaseFiles::RestoreArchiveName << archiveOf(current) << false;
    QTest::newRow("archive under another name")
        << backup << ArchiveBytes::of(QStringLiteral("mine.sqlite"), current) << true;
    QTest::newRow("archive made elsewhere")
        << backup << ArchiveBytes::withMode(archiveOf(current), 0) << true;
    QTest::newRow("database") << backup << current << true;
    QTest::newRow("oldest version") << backup << archiveOf(databaseBytes(1)) << true;
    QTest::newRow("write-ahead") << backup
                                 << archiveOf(databaseBytes(
                                        10, {QStringLiteral("PRAGMA journal_mode = WAL")}))
                                 << true;
}

void DatabaseRestoreTest::stagesWhatIsFit()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(bool, stays);
    const DataDirectory data;
    QVERIFY(writeFile(data.path(name), content));
    QVERIFY(writeFile(data.path(DatabaseFiles::RestoreName + QStringLiteral("-journal")),
                      "of the one before"));
    DatabaseRestore restore(data.directory.path());
    QSignalSpy finished(&restore, &DatabaseRestore::finished);
    QSignalSpy progress(&restore, &DatabaseRestore::progress);
    QVERIFY(restore.start(data.path(name)));
    QVERIFY(!restore.start(data.path(name)));
    QVERIFY(finished.wait(20'000));
    QCOMPARE(finished.last().at(0).value<Outcome>(), Outcome::Staged);
    QCOMPARE(progress.last().at(0).toInt(), 100);
    QCOMPARE(QFile::exists(data.path(name)), stays);
    QCOMPARE(readFile(data.path(DatabaseFiles::Name)), QByteArray("the old one"));
    QCOMPARE(QDir(data.directory.path()).entryList(QDir::Files).size(), 2);
    const QString staged = data.path(DatabaseFiles::RestoreName);
    QCOMPARE(QFile::permissions(staged) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    SampleDatabase database(staged);
    QVERIFY(database.isSound());
    QCOMPARE(database.rows(QStringLiteral("SELECT COUNT(*) FROM keypresses")), QStringLiteral("2"));
}

void DatabaseRestoreTest::refusesWhatIsNot_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    const QByteArray good = databaseBytes(10);
    const QByteArray archive = archiveOf(good);
    const auto row = [](const char* name, const QByteArray& content, const char* text) {
        QTest::newRow(name) << content << QString::fromLatin1(text);
    };
    constexpr auto damagedArchive = "archive is damaged";
    constexpr auto notOne = "one database and nothing else";
    row("nothing", "", "neither a database nor");
    row("text", "Dear diary", "neither a database nor");
    row("archive, cut short", cut(archive), damagedArchive);
    row("archive, one bit wrong", flipped(archive), damagedArchive);
    row("archive, only its first bytes", "PK\3\4", damagedArchive);
    row("archive of two", ArchiveBytes::joined(archive, archive), notOne);
    row("archive of a link", ArchiveBytes::withMode(archive, S_IFLNK | 0777), notOne);
    row("archive of a directory", ArchiveBytes::withMode(archive, S_IFDIR | 0755), notOne);
    row("archive of a file elsewhere", ArchiveBytes::of(QStringLiteral("../tallyvane.db"), good),
        notOne);
    row("archive of a file in a directory", ArchiveBytes::of(QStringLiteral("/tallyvane.db"), good),
        notOne);
    row("archive, encrypted", ArchiveBytes::encrypted(archive), "encrypted");
    row("archive that would grow a thousandfold", archiveOf(QByteArray(100 << 20, '\0')),
        "far more than a database");
    row("archive that says it is larger",
        ArchiveBytes::withSize(archive, static_cast<quint32>(good.size() + 1)), damagedArchive);
    row("archive of text", archiveOf("Dear diary"), "does not hold a database");
    row("archive of a damaged database", archiveOf(damaged(good)), "database is damaged");
    row("archive of half a database", archiveOf(cut(good)), "database is damaged");
    row("damaged database", damaged(good), "damaged");
    const QByteArray newer = databaseBytes(10, {QStringLiteral("PRAGMA user_version = 12")});
    row("newer database", newer, "newer version");
    row("archive of a newer database", archiveOf(newer), "newer version");
    constexpr auto foreign = "not one of";
    row("another program's database", databaseBytes(10, {QStringLiteral("DROP TABLE mouseclicks")}),
        foreign);
    row("database of no version", databaseBytes(0), foreign);
    row("database that acts by itself",
        databaseBytes(
            10,
            {QStringLiteral(
                "CREATE TRIGGER t AFTER INSERT ON settings BEGIN DELETE FROM keypresses; END")}),
        foreign);
    row("database with a virtual table",
        databaseBytes(10, {QStringLiteral("CREATE VIRTUAL TABLE v USING rtree (id, a, b)")}),
        foreign);
}

void DatabaseRestoreTest::refusesWhatIsNot()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, text);
    const DataDirectory data;
    const QString source = data.path(QStringLiteral("from/backup"));
    QVERIFY(writeFile(source, content));
    DatabaseRestore restore(data.directory.path());
    QSignalSpy finished(&restore, &DatabaseRestore::finished);
    QVERIFY(restore.start(source));
    QVERIFY(finished.wait(20'000));
    QVERIFY2(finished.last().at(1).toString().contains(text),
             qPrintable(finished.last().at(1).toString()));
    QCOMPARE(finished.last().at(0).value<Outcome>(), Outcome::Refused);
    QVERIFY(data.isUntouched());
    QCOMPARE(readFile(source), content);
}

void DatabaseRestoreTest::refusesTheDatabaseInUse()
{
    const DataDirectory data;
    DatabaseRestore restore(data.directory.path());
    QSignalSpy finished(&restore, &DatabaseRestore::finished);
    QVERIFY(restore.start(data.path(QStringLiteral("from/../tallyvane.db"))));
    QVERIFY(finished.wait(20'000));
    QCOMPARE(finished.last().at(0).value<Outcome>(), Outcome::Refused);
    QVERIFY(data.isUntouched());
}

void DatabaseRestoreTest::refusesAnArchiveCutAnywhere()
{
    const DataDirectory data;
    const QString source = data.path(QStringLiteral("from/backup"));
    const QString target = data.path(QStringLiteral("from/unpacked"));
    const QByteArray content = QByteArray(300, 'a') + "b";
    const QByteArray archive = archiveOf(content);
    const auto goOn = [](qint64, qint64) { return true; };
    for (qsizetype length = 0; length < archive.size(); ++length) {
        QVERIFY(writeFile(source, archive.left(length)));
        const bool unpacked =
            DatabaseArchive::unpack(source, target, 1000, goOn) == DatabaseArchive::Unpacked::Done;
        // Without the last bytes of the archive's end, the directory is found nevertheless.
        QVERIFY2(!unpacked || length > ArchiveBytes::endOf(archive),
                 qPrintable(QString::number(length)));
        QCOMPARE(readFile(target), unpacked ? content : QByteArray());
        QCOMPARE(QFile::remove(target), unpacked);
    }
}

void DatabaseRestoreTest::unpacksNoMoreThanItMay()
{
    const DataDirectory data;
    const QString source = data.path(QStringLiteral("from/backup"));
    const QString target = data.path(QStringLiteral("from/unpacked"));
    QVERIFY(writeFile(source, archiveOf(QByteArray(1000, 'a'))));
    const auto goOn = [](qint64, qint64) { return true; };
    QCOMPARE(DatabaseArchive::unpack(source, target, 999, goOn),
             DatabaseArchive::Unpacked::NoSpace);
    QVERIFY(!QFile::exists(target));
    QCOMPARE(DatabaseArchive::unpack(source, target, 1000, goOn), DatabaseArchive::Unpacked::Done);
    QCOMPARE(readFile(target), QByteArray(1000, 'a'));
}

void DatabaseRestoreTest::survivesAFullDisk()
{
    const DataDirectory data;
    const QString source = data.path(QStringLiteral("from/backup"));
    const QByteArray database = databaseBytes(10);
    for (const QByteArray& content : {archiveOf(database), database}) {
        QVERIFY(writeFile(source, content));
        DatabaseRestore restore(data.directory.path());
        QSignalSpy finished(&restore, &DatabaseRestore::finished);
        const FileSizeLimit limit(static_cast<rlim_t>(database.size() / 2));
        QVERIFY(restore.start(source));
        QVERIFY(finished.wait(20'000));
        QCOMPARE(finished.last().at(0).value<Outcome>(), Outcome::Failed);
        QVERIFY(!finished.last().at(1).toString().isEmpty());
        QVERIFY(data.isUntouched());
    }
}

void DatabaseRestoreTest::canBeCancelled()
{
    const DataDirectory data;
    const QString source = data.path(QStringLiteral("from/backup"));
    QVERIFY(writeFile(
        source,
        archiveOf(databaseBytes(
            10, {QStringLiteral(
                     "CREATE TABLE t AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                     "FROM n WHERE i < 50000) SELECT i, randomblob(100) AS b FROM n"),
                 QStringLiteral("CREATE INDEX t_b ON t (b)")}))));
    DatabaseRestore restore(data.directory.path());
    QSignalSpy finished(&restore, &DatabaseRestore::finished);
    const auto cancelAt = [&restore](auto signal) {
        return QObject::connect(&restore, signal, &restore, &DatabaseRestore::cancel);
    };
    for (const bool early : {true, false}) {
        const QMetaObject::Connection connection =
            early ? cancelAt(&DatabaseRestore::progress) : cancelAt(&DatabaseRestore::checking);
        QVERIFY(restore.start(source));
        QVERIFY(finished.wait(20'000));
        QCOMPARE(finished.last().at(0).value<Outcome>(), Outcome::Cancelled);
        QVERIFY(data.isUntouched());
        disconnect(connection);
    }
    {
        DatabaseRestore gone(data.directory.path());
        QVERIFY(gone.start(source));
    }
    QVERIFY(data.isUntouched());
}

REGISTER_TEST(DatabaseRestoreTest);
#include "DatabaseRestoreTest.moc"
