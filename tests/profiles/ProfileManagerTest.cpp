// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

/// The profiles "Work" (1) and "Games" (2), in a database of their own for each test.
class ProfileManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void activates_data();
    void activates();
    void isPartOfTheTransactionThatIsOpen();

private:
    QString activeRows() const
    {
        return m_test->rows(QStringLiteral("SELECT name FROM profiles WHERE active = 1"));
    }

    std::unique_ptr<TestDatabase> m_test;
};

void ProfileManagerTest::init()
{
    m_test.reset(); // There is only one database at a time.
    m_test = std::make_unique<TestDatabase>();
    QVERIFY(m_test->exec(QStringLiteral("INSERT INTO profiles (name, updated_at) VALUES "
                                        "('Work', '2001-01-01'), ('Games', '2001-01-01')")));
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
    QTest::newRow("none") << QList<int>{} << 0 << general << QString();
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
    QVERIFY(changes.isEmpty() ||
            changes.constLast().constFirst() == QVariant(manager.getActiveStatsProfileId()));
    QCOMPARE(m_test->rows(QStringLiteral("SELECT name FROM profiles WHERE active = 1 AND "
                                         "updated_at < '2002-01-01'")),
             QString());

    ProfileManager next;
    next.refreshProfileFromDatabase();
    QTEST(next.getActiveStatsProfileId(), "id");
    QTEST(next.getActiveStatsProfileName(), "name");
}

void ProfileManagerTest::isPartOfTheTransactionThatIsOpen()
{
    ProfileManager manager;
    QSqlDatabase connection = m_test->database()->connection();
    QVERIFY(connection.transaction());
    manager.setActiveStatsProfile(1, QStringLiteral("Work"));
    QVERIFY(connection.rollback());
    QCOMPARE(activeRows(), QString());
}

REGISTER_TEST(ProfileManagerTest);
#include "ProfileManagerTest.moc"
