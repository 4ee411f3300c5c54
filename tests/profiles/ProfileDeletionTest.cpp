// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileDeletion.h"
#include "profiles/ProfileManager.h"
#include "storage/ReadingConnection.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

namespace {

constexpr int Work = 1;
constexpr int Games = 2;
constexpr int WaitMs = 60'000;

} // namespace

/// The active profile "Work" (1) with enough rows to be met in the middle of its deletion, half of
/// them under keys that the default profile has as well, and the profile "Games" (2).
class ProfileDeletionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void deletes();
    void leavesEverythingWhereItIsGivenUp_data();
    void leavesEverythingWhereItIsGivenUp();
    void holdsSettingsAndSwitches();
    void startsOnlyWhatCanBeDone();

private:
    QString content() const
    {
        return m_test->rows(QStringLiteral(
            "SELECT (SELECT group_concat(id || name || active) FROM profiles), profile_id, "
            "COUNT(*), SUM(count), SUM(count * rowid % 1009), SUM(count * key % 997) FROM "
            "keypress_frequency GROUP BY profile_id"));
    }

    std::unique_ptr<TestDatabase> m_test;
    std::unique_ptr<ProfileManager> m_profiles;
};

void ProfileDeletionTest::init()
{
    m_profiles.reset();
    m_test.reset(); // There is only one database at a time.
    m_test = std::make_unique<TestDatabase>();
    m_profiles = std::make_unique<ProfileManager>();
    QVERIFY(m_test->exec(QStringLiteral("INSERT INTO profiles (name) VALUES ('Work'), ('Games')")));
    for (const auto& [profile, first] : {std::pair{0, 0}, {Work, 60'000}}) {
        QVERIFY(m_test->exec(
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT %2 UNION ALL SELECT i + 1 FROM n LIMIT "
                           "120000) INSERT INTO keypress_frequency SELECT date('2020-01-01', "
                           "(i / 2400) || ' days'), i / 100 % 24, i % 100, i % 7 + %1, %1 FROM n")
                .arg(profile)
                .arg(first)));
    }
    m_profiles->setActiveStatsProfile(Work, QStringLiteral("Work"));
    m_profiles->successFullyUploadedProfiles();
}

void ProfileDeletionTest::deletes()
{
    const QString sum = QStringLiteral("SELECT SUM(count) FROM keypress_frequency");
    const QVariant before = m_test->value(sum);
    ProfileDeletion deletion(*m_profiles);
    QSignalSpy finished(&deletion, &ProfileDeletion::finished);
    const QSignalSpy progress(&deletion, &ProfileDeletion::progress);
    const QSignalSpy changes(m_profiles.get(), &ProfileManager::signalProfilesChanged);
    const LogCapture log;
    QVERIFY(deletion.start(Work));
    QVERIFY(finished.wait(WaitMs));
    QCOMPARE(finished.at(0).at(0).value<ProfileFold::Result>(), ProfileFold::Result::Deleted);
    QCOMPARE(m_test->value(sum), before);
    QCOMPARE(m_test->rows(QStringLiteral(
                 "SELECT profile_id, COUNT(*) FROM keypress_frequency GROUP BY profile_id")),
             QStringLiteral("0|180000"));
    QCOMPARE(m_profiles->profiles().size(), 1);
    QCOMPARE(m_profiles->getActiveStatsProfileId(), ProfileManager::DefaultProfileId);
    QCOMPARE(changes.size(), 1);
    QVERIFY(log.contains(QStringLiteral("Deletion of profile took ")));
    m_test->reopen(); // What the next run reads.
    QVERIFY(m_profiles->shouldUploadProfiles());
    QVERIFY(progress.size() > 3);
    QCOMPARE(progress.constLast().at(0).toInt(), 100);
    for (qsizetype i = 1; i < progress.size(); ++i) {
        QVERIFY(progress.at(i).at(0).toInt() > progress.at(i - 1).at(0).toInt());
    }
}

void ProfileDeletionTest::leavesEverythingWhereItIsGivenUp_data()
{
    QTest::addColumn<int>("percent"); ///< From which on it is given up; -1 before anything is told.
    QTest::addColumn<bool>("exits");
    QTest::newRow("cancelled at once") << -1 << false;
    QTest::newRow("cancelled in the middle") << 30 << false;
    QTest::newRow("the client ends at once") << -1 << true;
    QTest::newRow("the client ends in the middle") << 30 << true;
}

void ProfileDeletionTest::leavesEverythingWhereItIsGivenUp()
{
    QFETCH(int, percent);
    QFETCH(bool, exits);
    const QString before = content();
    // A reader keeps what is changed from being committed, however fast the thread is.
    const ReadingConnection other(m_test->database()->getDatabaseFileName());
    DSqlQuery reader(other.database());
    QVERIFY(reader.exec(QStringLiteral("SELECT * FROM profiles")) && reader.next());
    ProfileDeletion deletion(*m_profiles);
    QSignalSpy finished(&deletion, &ProfileDeletion::finished);
    QSignalSpy progress(&deletion, &ProfileDeletion::progress);
    QVERIFY(deletion.start(Work));
    while (percent >= 0 && (progress.isEmpty() || progress.constLast().at(0).toInt() < percent)) {
        QVERIFY(progress.wait(WaitMs));
    }
    if (exits) {
        m_test->close();
        reader.finish();
        m_test->reopen();
    } else {
        deletion.cancel();
        QVERIFY(finished.count() == 1 || finished.wait(WaitMs));
    }
    reader.finish();
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.at(0).at(0).value<ProfileFold::Result>(), ProfileFold::Result::Cancelled);
    QVERIFY(!deletion.isRunning());
    QVERIFY(!m_test->database()->isLent());
    QCOMPARE(content(), before);
    QCOMPARE(m_profiles->getActiveStatsProfileId(), Work);
    QVERIFY(!m_profiles->shouldUploadProfiles());
    QVERIFY(m_profiles->deleteProfile(Work)); // Nothing keeps the file locked.
}

void ProfileDeletionTest::holdsSettingsAndSwitches()
{
    Settings& settings = Settings::instance();
    settings.set(QStringLiteral("gone"), QStringLiteral("old"));
    ProfileDeletion deletion(*m_profiles);
    QSignalSpy finished(&deletion, &ProfileDeletion::finished);
    QVERIFY(deletion.start(Work));
    QVERIFY(settings.set(QStringLiteral("kept"), QStringLiteral("new")));
    settings.del(QStringLiteral("gone"));
    QCOMPARE(settings.get(QStringLiteral("kept"), {}), QVariant(QStringLiteral("new")));
    m_profiles->setActiveStatsProfile(Games, QStringLiteral("Games"));
    QCOMPARE(m_profiles->getActiveStatsProfileId(), Work);
    QVERIFY(finished.wait(WaitMs));
    QCOMPARE(m_profiles->getActiveStatsProfileId(), Games);
    m_test->reopen();
    m_profiles->refreshProfileFromDatabase();
    QCOMPARE(m_profiles->getActiveStatsProfileId(), Games);
    QCOMPARE(settings.get(QStringLiteral("kept"), {}), QVariant(QStringLiteral("new")));
    QVERIFY(!settings.has(QStringLiteral("gone")));
}

void ProfileDeletionTest::startsOnlyWhatCanBeDone()
{
    ProfileDeletion deletion(*m_profiles);
    QVERIFY(!deletion.start(ProfileManager::DefaultProfileId));
    QSignalSpy finished(&deletion, &ProfileDeletion::finished);
    QVERIFY(deletion.start(Work));
    QVERIFY(!deletion.start(Games));
    QVERIFY(finished.wait(WaitMs));
    QVERIFY(deletion.start(Work)); // Gone by now.
    QVERIFY(finished.wait(WaitMs));
    QCOMPARE(finished.at(1).at(0).value<ProfileFold::Result>(), ProfileFold::Result::Failed);
}

REGISTER_TEST(ProfileDeletionTest);
#include "ProfileDeletionTest.moc"
