// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileFold.h"
#include "profiles/ProfileManager.h"
#include "storage/FailingVfs.h"
#include "storage/HistoryStamp.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Folded = 1;
constexpr int Other = 2;

/// Tables with profiles that a fold leaves alone.
const QStringList& unnamedTables()
{
    static const QStringList tables{QStringLiteral("mousepoints"),
                                    QStringLiteral("application_bandwidth"),
                                    QStringLiteral("country_bandwidth")};
    return tables;
}

} // namespace

/// Every table that carries a profile, with rows of the default profile, of the folded one (some
/// under the same keys) and of a third.
class ProfileFoldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void addsUpEveryTable();
    void isWholeAfterAKill();
    void leavesEverythingWhereAStatementFails();

private:
    void fill(const QString& table, int profile, int first, int rows) const;
    QStringList sums(const QString& profiles) const;
    QString content() const;
    QVariant stamp() const;
    static void foldAndDie(const QString& directory, int write);

    std::unique_ptr<TestDatabase> m_test;
};

void ProfileFoldTest::init()
{
    m_test.reset(); // There is only one database at a time.
    m_test = std::make_unique<TestDatabase>();
    QVERIFY(m_test->exec(QStringLiteral("INSERT INTO profiles (name) VALUES ('Work'), ('Games')")));
    QStringList names = unnamedTables();
    for (const ProfileFold::Table& table : ProfileFold::tables()) {
        names += table.name;
    }
    for (const QString& name : names) {
        fill(name, ProfileManager::DefaultProfileId, 0, 6);
        fill(name, Folded, 4, 6);
        fill(name, Other, 3, 4);
    }
}

/// Rows number `first` and following, in which every column holds a value of its own.
void ProfileFoldTest::fill(const QString& table, int profile, int first, int rows) const
{
    QStringList columns;
    DSqlQuery info(m_test->database(), QStringLiteral("PRAGMA table_info(%1)").arg(table), true);
    while (info.next()) {
        columns += info.value(1).toString();
    }
    for (int row = first; row < first + rows; ++row) {
        QStringList values;
        for (const QString& column : columns) {
            const bool isText = column == QLatin1String("day") || column.startsWith(u"last_") ||
                                column == QLatin1String("path");
            const int value = 100 * (profile + 1) + row + static_cast<int>(values.size());
            if (column == QLatin1String("profile_id")) {
                values += QString::number(profile);
            } else if (column.startsWith(u"last_")) {
                values += QStringLiteral("'2020-0%1-01'").arg(profile + 1);
            } else if (ProfileFold::tables().constFirst().keys.contains(column) || isText) {
                values += QStringLiteral("'2020-01-0%1'").arg(row);
            } else if (column == QLatin1String("key") || column == QLatin1String("combo") ||
                       column == QLatin1String("button") || column == QLatin1String("direction") ||
                       column == QLatin1String("protocol") ||
                       column == QLatin1String("port_number")) {
                values += QString::number(row);
            } else {
                values += QString::number(value);
            }
        }
        QVERIFY(m_test->exec(
            QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(table, values.join(u','))));
    }
}

/// Per table, the sums by key over those profiles.
QStringList ProfileFoldTest::sums(const QString& profiles) const
{
    QStringList all;
    for (const ProfileFold::Table& table : ProfileFold::tables()) {
        const QString keys = table.keys.join(u',');
        all += table.name + u' ' +
               m_test->rows(QStringLiteral("SELECT %1, SUM(%2) FROM %3 WHERE profile_id IN (%4) "
                                           "GROUP BY %1 ORDER BY %1")
                                .arg(keys, table.values.join(QStringLiteral("), SUM(")), table.name,
                                     profiles));
    }
    return all;
}

QString ProfileFoldTest::content() const
{
    QString all = m_test->rows(QStringLiteral("SELECT id, name FROM profiles"));
    for (const QString& name : unnamedTables()) {
        all += m_test->rows(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(name));
    }
    for (const ProfileFold::Table& table : ProfileFold::tables()) {
        all += m_test->rows(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table.name));
    }
    return all;
}

QVariant ProfileFoldTest::stamp() const
{
    const auto read = HistoryStamp::read(m_test->database()->connection());
    return read ? QVariant(*read) : QVariant();
}

void ProfileFoldTest::addsUpEveryTable()
{
    QCOMPARE(ProfileFold::tables().size(), 15);
    const QStringList before = sums(QStringLiteral("0, 1"));
    const QStringList othersBefore = sums(QStringLiteral("2"));
    QStringList unnamedBefore;
    for (const QString& name : unnamedTables()) {
        unnamedBefore += m_test->rows(QStringLiteral("SELECT * FROM ") + name);
    }
    const QVariant stampBefore = stamp();
    QVERIFY(stampBefore.isValid());

    ProfileManager manager;
    manager.setActiveStatsProfile(Folded, QStringLiteral("Work"));
    manager.setActiveFilterProfile(Folded, QStringLiteral("Work"));
    // What is written in answer to the signal is folded with the rest.
    connect(&manager, &ProfileManager::signalNeedFlush, this, [this] {
        m_test->exec(QStringLiteral("INSERT INTO mousescrolls VALUES ('2020-02-01', 1, 1, 9, 1)"));
    });
    const QSignalSpy changes(&manager, &ProfileManager::signalProfilesChanged);
    manager.successFullyUploadedProfiles();
    QVERIFY(manager.deleteProfile(Folded));
    QVERIFY(manager.shouldUploadProfiles());
    QCOMPARE(changes.size(), 1);
    QCOMPARE(manager.getActiveStatsProfileId(), 0);
    QCOMPARE(manager.getActiveFilterProfileId(), 0);
    QCOMPARE(m_test->rows(QStringLiteral("SELECT name FROM profiles")), QStringLiteral("Games"));
    QVERIFY(stamp() != stampBefore);

    QCOMPARE(m_test->value(QStringLiteral("SELECT count FROM mousescrolls WHERE profile_id = 0 AND "
                                          "day = '2020-02-01'")),
             QVariant(9));
    m_test->exec(QStringLiteral("DELETE FROM mousescrolls WHERE day = '2020-02-01'"));
    QCOMPARE(sums(QStringLiteral("0")), before);
    QCOMPARE(sums(QStringLiteral("2")), othersBefore);
    for (const ProfileFold::Table& table : ProfileFold::tables()) {
        QCOMPARE(
            m_test->value(
                QStringLiteral("SELECT COUNT(*) FROM %1 WHERE profile_id = 1").arg(table.name)),
            QVariant(0));
    }
    QCOMPARE(m_test->rows(QStringLiteral("SELECT last_active, last_used, COUNT(*) FROM "
                                         "application_uptime WHERE profile_id = 0 GROUP BY 1")),
             QStringLiteral("2020-01-01|2020-01-01|4,2020-02-01|2020-02-01|6"));
    QStringList unnamedAfter;
    for (const QString& name : unnamedTables()) {
        unnamedAfter += m_test->rows(QStringLiteral("SELECT * FROM ") + name);
    }
    QCOMPARE(unnamedAfter, unnamedBefore);
    QVERIFY(!manager.deleteProfile(Folded));
    QVERIFY(!manager.deleteProfile(ProfileManager::DefaultProfileId));
}

/// In a process of its own: opens the database, folds, and dies before that write.
void ProfileFoldTest::foldAndDie(const QString& directory, int write)
{
    TestPrompts prompts;
    {
        const Database database(directory, prompts);
        ProfileManager manager;
        const FailingVfs vfs(FailingVfs::Fault::Kill, write);
        QSqlDatabase connection = database.connection();
        connection.close();
        connection.open();
        // A small cache spills, so that the file itself is written to before the commit as well.
        DSqlQuery(Database::instance()).exec(QStringLiteral("PRAGMA cache_size = 10"));
        DSqlQuery(Database::instance()).exec(QStringLiteral("PRAGMA journal_mode = TRUNCATE"));
        Settings::instance().init(Database::instance());
        ::_exit(manager.deleteProfile(Folded) ? 0 : 1);
    }
}

void ProfileFoldTest::isWholeAfterAKill()
{
    m_test->close();
    const QString file = m_test->directory() + u'/' + DatabaseFiles::Name;
    const QByteArray original = readFile(file);
    m_test->reopen();
    const QString before = content();
    bool folded = false;
    int killed = 0;
    for (int write = 0; !folded; ++write) {
        m_test->close();
        QVERIFY(writeFile(file, original));
        const pid_t child = ::fork();
        if (child == 0) {
            foldAndDie(m_test->directory(), write);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        m_test->reopen();
        folded = WEXITSTATUS(status) == 0;
        QVERIFY(folded || WEXITSTATUS(status) == FailingVfs::KilledExitCode);
        if (m_test->value(QStringLiteral("SELECT COUNT(*) FROM profiles")) == QVariant(2)) {
            QVERIFY(!folded);
            QCOMPARE(content(), before);
            ++killed;
        }
    }
    QVERIFY(killed > 10);
}

void ProfileFoldTest::leavesEverythingWhereAStatementFails()
{
    const QString before = content();
    const QVariant stampBefore = stamp();
    ProfileManager manager;
    const QSignalSpy changes(&manager, &ProfileManager::signalProfilesChanged);
    // Renewing the stamp, after every table was folded, is what fails.
    m_test->exec(QStringLiteral("CREATE TEMP TRIGGER refuse BEFORE INSERT ON settings BEGIN SELECT "
                                "RAISE(ABORT, 'refused'); END"));
    QVERIFY(!manager.deleteProfile(Folded));
    QCOMPARE(content(), before);
    QCOMPARE(stamp(), stampBefore);
    QCOMPARE(changes.size(), 0);
}

REGISTER_TEST(ProfileFoldTest);
#include "ProfileFoldTest.moc"
