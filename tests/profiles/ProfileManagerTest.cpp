// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"
#include "support/LogCapture.h"
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
    void checksNames_data();
    void checksNames();
    void renames();
    void asksForAFlushBeforeASwitch();

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

void ProfileManagerTest::checksNames_data()
{
    using Result = ProfileManager::NameResult;
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<Result>("result");
    const QString astral = QStringLiteral("\U0001F3AE");
    const auto row = [](const char* title, const QString& name, const QString& stored,
                        Result result) { QTest::newRow(title) << name << stored << result; };
    const QString none;
    row("plain", QStringLiteral("Study"), QStringLiteral("Study"), Result::Ok);
    row("trimmed", QStringLiteral(" \tStudy\n"), QStringLiteral("Study"), Result::Ok);
    row("Japanese", QStringLiteral("仕事"), QStringLiteral("仕事"), Result::Ok);
    row("64 characters", QString(64, u'x'), QString(64, u'x'), Result::Ok);
    row("64 characters of two units", astral.repeated(64), astral.repeated(64), Result::Ok);
    row("65 characters", QString(65, u'x'), none, Result::TooLong);
    row("nothing", QString(), none, Result::Empty);
    row("blanks", QStringLiteral(" \u00a0\u3000"), none, Result::Empty);
    row("invisible", QStringLiteral("\u200b"), none, Result::Empty);
    row("taken", QStringLiteral("Work"), none, Result::Duplicate);
    row("taken, with blanks", QStringLiteral(" Work "), none, Result::Duplicate);
    row("taken, accents apart", QStringLiteral("Cafe\u0301"), none, Result::Duplicate);
    row("the default's", QStringLiteral("General"), none, Result::Duplicate);
    row("quotes", QStringLiteral("a'); DROP TABLE profiles; --"),
        QStringLiteral("a'); DROP TABLE profiles; --"), Result::Ok);
}

void ProfileManagerTest::checksNames()
{
    QFETCH(QString, name);
    QFETCH(QString, stored);
    QFETCH(ProfileManager::NameResult, result);
    m_test->exec(QStringLiteral("INSERT INTO profiles (name) VALUES ('Caf\u00e9')"));
    const int before = m_test->value(QStringLiteral("SELECT COUNT(*) FROM profiles")).toInt();
    ProfileManager manager;
    const QSignalSpy changes(&manager, &ProfileManager::signalProfilesChanged);
    const LogCapture log;
    QCOMPARE(manager.addProfile(name), result);
    const bool added = result == ProfileManager::NameResult::Ok;
    QCOMPARE(manager.getProfiles().size(), before + (added ? 1 : 0));
    QCOMPARE(manager.shouldUploadProfiles(), added);
    QCOMPARE(changes.size(), added ? 1 : 0);
    QCOMPARE(!added || manager.profileExists(stored), true);
    QCOMPARE(log.contains(QStringLiteral("Tried to create a profile with a duplicate name:")),
             result == ProfileManager::NameResult::Duplicate);
    m_test->exec(QStringLiteral("DELETE FROM profiles WHERE id > 3"));
    QCOMPARE(manager.editProfileName(2, name), result);
    QCOMPARE(manager.editProfileName(99, QStringLiteral("Gone")),
             ProfileManager::NameResult::Failed);
}

void ProfileManagerTest::renames()
{
    ProfileManager manager;
    manager.successFullyUploadedProfiles();
    manager.setActiveStatsProfile(1, QStringLiteral("Work"));
    manager.setActiveFilterProfile(1, QStringLiteral("Work"));
    QCOMPARE(manager.editProfileName(1, QStringLiteral("Work")), ProfileManager::NameResult::Ok);
    QVERIFY(!manager.shouldUploadProfiles());
    QCOMPARE(manager.editProfileName(1, QStringLiteral("Office")), ProfileManager::NameResult::Ok);
    QCOMPARE(manager.getActiveStatsProfileName(), QStringLiteral("Office"));
    QCOMPARE(manager.getActiveFilterProfileName(), QStringLiteral("Office"));
    const QVariantMap first = manager.getProfiles().constFirst().toMap();
    QCOMPARE(first.keys(), QStringList({QStringLiteral("active"), QStringLiteral("created_at"),
                                        QStringLiteral("id"), QStringLiteral("name"),
                                        QStringLiteral("updated_at")}));
    QCOMPARE(manager.profiles().constLast().name, QStringLiteral("Office"));
    manager.setActiveFilterProfile(ProfileManager::AllProfiles, QString());
    QCOMPARE(m_test->database()->generateWhereQueryProfileFilter(QString()), QStringLiteral("1"));
}

void ProfileManagerTest::asksForAFlushBeforeASwitch()
{
    ProfileManager manager;
    QList<int> countedUnder;
    connect(&manager, &ProfileManager::signalNeedFlush, this,
            [&] { countedUnder += manager.getActiveStatsProfileId(); });
    manager.setActiveStatsProfile(1, QStringLiteral("Work"));
    manager.setActiveStatsProfile(1, QStringLiteral("Work"));
    manager.activateDefaultProfile();
    QCOMPARE(countedUnder, QList<int>({0, 1}));
}

REGISTER_TEST(ProfileManagerTest);
#include "ProfileManagerTest.moc"
