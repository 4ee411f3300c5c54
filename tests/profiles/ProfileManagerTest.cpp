// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

class NoPrompts final : public DatabasePrompts
{
public:
    void showFailure(const QString& title, const QString& text) override
    {
        qFatal("%s: %s", qPrintable(title), qPrintable(text));
    }

    bool confirmFreshDatabase(const QString&) override { return false; }
};

} // namespace

/// The profiles "Work" (1) and "Games" (2), in a database of their own for each test.
class ProfileManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void startsUnderGeneral();
    void activates_data();
    void activates();
    void isPartOfTheTransactionThatIsOpen();

private:
    QString activeRows();

    NoPrompts m_prompts;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<Database> m_database;
};

void ProfileManagerTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_database = std::make_unique<Database>(m_directory->path(), m_prompts);
    QVERIFY(DSqlQuery(m_database.get())
                .exec(QStringLiteral("INSERT INTO profiles (name, updated_at) VALUES "
                                     "('Work', '2001-01-01'), ('Games', '2001-01-01')")));
}

void ProfileManagerTest::cleanup()
{
    m_database.reset();
}

QString ProfileManagerTest::activeRows()
{
    DSqlQuery query(m_database.get(),
                    QStringLiteral("SELECT group_concat(name) FROM profiles WHERE active = 1"),
                    true);
    return query.next() ? query.value(0).toString() : QString();
}

void ProfileManagerTest::startsUnderGeneral()
{
    ProfileManager manager;
    manager.refreshProfileFromDatabase();
    QCOMPARE(manager.getActiveStatsProfileId(), ProfileManager::DefaultProfileId);
    QCOMPARE(manager.getActiveStatsProfileName(), QStringLiteral("General"));
}

void ProfileManagerTest::activates_data()
{
    QTest::addColumn<QList<int>>("activated");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("active");
    const QString general = QStringLiteral("General");
    const QString work = QStringLiteral("Work");
    const QString games = QStringLiteral("Games");
    QTest::newRow("one") << QList<int>{1} << 1 << work << work;
    QTest::newRow("the same again") << QList<int>{1, 1} << 1 << work << work;
    QTest::newRow("another") << QList<int>{1, 2} << 2 << games << games;
    QTest::newRow("back to the default") << QList<int>{2, 0} << 0 << general << QString();
    QTest::newRow("one that is gone") << QList<int>{2, 99} << 0 << general << QString();
}

void ProfileManagerTest::activates()
{
    QFETCH(QList<int>, activated);
    const QStringList names{QStringLiteral("General"), QStringLiteral("Work"),
                            QStringLiteral("Games")};
    ProfileManager manager;
    QSignalSpy changes(&manager, &ProfileManager::signalActiveStatsProfileChanged);
    for (const int id : activated) {
        if (id == ProfileManager::DefaultProfileId) {
            manager.activateDefaultProfile();
        } else {
            manager.setActiveStatsProfile(id, names.value(id, QStringLiteral("Gone")));
        }
    }
    QTEST(manager.getActiveStatsProfileId(), "id");
    QTEST(manager.getActiveStatsProfileName(), "name");
    QTEST(activeRows(), "active");
    QCOMPARE(changes.size(), activated.size());
    QTEST(changes.constLast().constFirst().toInt(), "id");

    DSqlQuery touched(m_database.get(),
                      QStringLiteral("SELECT count(*) FROM profiles WHERE active = 1 AND "
                                     "updated_at < '2002-01-01'"),
                      true);
    QVERIFY(touched.next());
    QCOMPARE(touched.value(0).toInt(), 0);

    ProfileManager next;
    next.refreshProfileFromDatabase();
    QTEST(next.getActiveStatsProfileId(), "id");
    QTEST(next.getActiveStatsProfileName(), "name");
}

void ProfileManagerTest::isPartOfTheTransactionThatIsOpen()
{
    ProfileManager manager;
    QSqlDatabase connection = m_database->connection();
    QVERIFY(connection.transaction());
    manager.setActiveStatsProfile(1, QStringLiteral("Work"));
    QVERIFY(connection.rollback());
    QCOMPARE(activeRows(), QString());
}

REGISTER_TEST(ProfileManagerTest);
#include "ProfileManagerTest.moc"
