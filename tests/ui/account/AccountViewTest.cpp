// SPDX-License-Identifier: GPL-3.0-or-later
#include "../UiDatabase.h"
#include "storage/Settings.h"
#include "support/TestRegistry.h"
#include "ui/FiguresModel.h"
#include "ui/account/AccountTables.h"
#include "ui/account/AccountView.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QToolButton>

class AccountViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void zurgeButton_data();
    void zurgeButton();
    void throttleEndsByItself();
    void isQuietWithoutAnAccount();
    void showsTheCountsInTheUsersUnits_data();
    void showsTheCountsInTheUsersUnits();
    void tellsWhatCameOfEachZurge();
    void followsABackup();
    void signsOutOnceConfirmed_data();
    void signsOutOnceConfirmed();

private:
    static AccountState signedIn();
    template <typename Widget>
    Widget* find(const char* name) const;
    QTableView* table(const char* card) const;

    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<AccountView> m_view;
};

AccountState AccountViewTest::signedIn()
{
    AccountState state;
    state.userName = QStringLiteral("ann");
    state.zurge = {.isSignedIn = true, .hasCounts = true};
    return state;
}

void AccountViewTest::init()
{
    m_database = std::make_unique<UiDatabase>();
    m_view = std::make_unique<AccountView>(ViewContext{}); // It asks the history nothing.
    m_view->setScope({.last = QDate::currentDate()});
    m_view->show();
}

void AccountViewTest::cleanup()
{
    m_view.reset();
    m_database.reset();
}

template <typename Widget>
Widget* AccountViewTest::find(const char* name) const
{
    return m_view->findChild<Widget*>(QLatin1String(name));
}

QTableView* AccountViewTest::table(const char* card) const
{
    return find<QWidget>(card)->findChild<QTableView*>();
}

void AccountViewTest::zurgeButton_data()
{
    QTest::addColumn<ZurgeFacts>("facts");
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hint");
    const QDateTime now = QDateTime::currentDateTime();
    const ZurgeFacts ready{.isSignedIn = true, .hasCounts = true};
    const auto row = [&](const char* name, auto change, bool isEnabled, const char* text,
                         const char* hint) {
        ZurgeFacts facts = ready;
        change(facts);
        QTest::newRow(name) << facts << isEnabled << QString::fromUtf8(text)
                            << QString::fromLatin1(hint);
    };
    row(
        "ready", [](ZurgeFacts&) {}, true, "Zurge", "");
    row(
        "in progress", [](ZurgeFacts& facts) { facts.isInProgress = true; }, false, "Zurging…",
        "on their way");
    row(
        "nothing to send", [](ZurgeFacts& facts) { facts.hasCounts = false; }, false, "Zurge",
        "Nothing was counted");
    row(
        "throttled", [now](ZurgeFacts& facts) { facts.begun = now.addSecs(-1); }, false, "Zurge",
        "can begin in 9 s");
    row(
        "throttle over", [now](ZurgeFacts& facts) { facts.begun = now.addSecs(-10); }, true,
        "Zurge", "");
    row(
        "clock set back", [now](ZurgeFacts& facts) { facts.begun = now.addDays(1); }, true, "Zurge",
        "");
    row(
        "offline", [](ZurgeFacts& facts) { facts.isOffline = true; }, true, "Zurge",
        "works offline");
    row(
        "suspended", [now](ZurgeFacts& facts) { facts.automaticSuspendedUntil = now.addSecs(60); },
        true, "Zurge", "zurge by hand");
    row(
        "suspension over",
        [now](ZurgeFacts& facts) { facts.automaticSuspendedUntil = now.addSecs(-1); }, true,
        "Zurge", "");
    row(
        "all at once",
        [now](ZurgeFacts& facts) {
            facts = {.isSignedIn = true,
                     .isInProgress = true,
                     .isOffline = true,
                     .begun = now,
                     .automaticSuspendedUntil = now.addSecs(60)};
        },
        false, "Zurging…", "on their way");
}

void AccountViewTest::zurgeButton()
{
    QFETCH(ZurgeFacts, facts);
    QFETCH(QString, hint);
    QFETCH(bool, isEnabled);
    AccountState state = signedIn();
    state.zurge = facts;
    m_view->setState(state);
    auto* button = find<QPushButton>("zurge");
    QVERIFY(button->isVisible());
    QTEST(button->text(), "text");
    QCOMPARE(button->isEnabled(), isEnabled);
    const QString shown = find<QLabel>("zurgeHint")->text();
    QVERIFY2(hint.isEmpty() ? shown.isEmpty() : shown.contains(hint), qPrintable(shown));

    const QSignalSpy requested(m_view.get(), &AccountView::zurgeRequested);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(requested.size(), isEnabled ? 1 : 0);
}

void AccountViewTest::throttleEndsByItself()
{
    AccountState state = signedIn();
    state.zurge.begun = QDateTime::currentDateTime().addMSecs(-9500);
    m_view->setState(state);
    QVERIFY(!find<QPushButton>("zurge")->isEnabled());
    QTRY_VERIFY(find<QPushButton>("zurge")->isEnabled());
}

void AccountViewTest::isQuietWithoutAnAccount()
{
    m_view->setState({});
    QVERIFY(find<QWidget>("notice")->isVisible());
    QVERIFY(!find<QWidget>("cards")->isVisible());
    QVERIFY(!find<QWidget>("busy")->isVisible());
    const QSignalSpy requested(m_view.get(), &AccountView::linkRequested);
    QTest::mouseClick(find<QPushButton>("noticeButton"), Qt::LeftButton);
    QCOMPARE(requested.size(), 1);
    m_view->setInputState(InputState::Paused); // That is told where counts are shown.
    QVERIFY(find<QLabel>("noticeTitle")->text().contains(QStringLiteral("account")));

    m_view->setState(signedIn());
    QVERIFY(!find<QWidget>("notice")->isVisible());
    QVERIFY(find<QWidget>("cards")->isVisible());
}

void AccountViewTest::showsTheCountsInTheUsersUnits_data()
{
    QTest::addColumn<QString>("system");
    QTest::addColumn<QString>("unzurged");
    QTest::addColumn<QString>("total");
    QTest::newRow("metric") << QStringLiteral("metric") << QStringLiteral("1.61 km")
                            << QStringLiteral("16.1 km");
    QTest::newRow("imperial") << QStringLiteral("imperial") << QStringLiteral("1 mi")
                              << QStringLiteral("10 mi");
}

void AccountViewTest::showsTheCountsInTheUsersUnits()
{
    QFETCH(QString, system);
    QFETCH(QString, unzurged);
    QFETCH(QString, total);
    Settings::instance().setValue(SettingsKeys::MouseDistanceSystem, system);
    AccountState state = signedIn();
    state.unzurged = {.keys = 12'403,
                      .clicks = CounterLimit,
                      .download = 3 << 20,
                      .uptime = 7'200'999,
                      .distanceInches = 63'360};
    Settings::instance().setValue(SettingsKeys::OnlineTotalKeys, qint64(1'000'000));
    Settings::instance().setValue(SettingsKeys::OnlineTotalDistanceMiles, 10.0);
    Settings::instance().setValue(SettingsKeys::OnlineTotalDownload, qint64(2048));
    Settings::instance().setValue(SettingsKeys::OnlineTotalUpload, qint64(-1));
    Settings::instance().setValue(SettingsKeys::OnlineRankKeys, qint64(4321));
    state.totals = OnlineFigures::storedTotals();
    state.ranks = OnlineFigures::storedRanks();
    auto* model = table("accountCounts")->model();
    const QAbstractItemModelTester tester(model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_view->setState(state);
    QStringList shown;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model->columnCount(); ++column) {
            cells += model->index(row, column).data().toString();
        }
        shown += cells.join(u'|');
    }
    QCOMPARE(shown,
             QStringList({QStringLiteral("Keys|12,403|1,000,000|4,321"),
                          QStringLiteral("Clicks|9,223,372,036,854,775,807|0|"),
                          QStringLiteral("Scroll steps|0|0|"),
                          QStringLiteral("Travel|%1|%2|").arg(unzurged, total),
                          QStringLiteral("Downloaded|3 MiB|2 GiB|"),
                          QStringLiteral("Uploaded|0 B|0 B|"), QStringLiteral("Uptime|2 h|0 s|")}));
}

void AccountViewTest::tellsWhatCameOfEachZurge()
{
    using enum ZurgeRecord::Outcome;
    auto* model = table("zurges")->model();
    const QAbstractItemModelTester tester(model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    AccountState state = signedIn();
    const QDateTime time(QDate(2026, 11, 21), QTime(14, 3));
    state.zurges = {{.time = time, .origin = ZurgeRecord::Origin::Automatic, .keys = 10'000},
                    {.time = time, .outcome = Failed, .message = QStringLiteral("Wrong token.")},
                    {.time = time, .outcome = Unanswered}};
    m_view->setState(state);
    const auto cell = [model](int row, int column) {
        return model->index(row, column).data().toString();
    };
    QCOMPARE(cell(0, AccountTables::TimeColumn), QStringLiteral("21 November 2026, 14:03"));
    QCOMPARE(cell(0, AccountTables::OriginColumn), QStringLiteral("By itself"));
    QCOMPARE(cell(0, AccountTables::KeysColumn), QStringLiteral("10,000"));
    QCOMPARE(cell(0, AccountTables::OutcomeColumn), QStringLiteral("Sent"));
    QCOMPARE(cell(1, AccountTables::OriginColumn), QStringLiteral("By hand"));
    QCOMPARE(cell(1, AccountTables::OutcomeColumn), QStringLiteral("Failed: Wrong token."));
    QVERIFY(cell(2, AccountTables::OutcomeColumn).startsWith(QStringLiteral("Not answered")));

    state.zurges[1].message = QStringLiteral("Words that want more than a line. ").repeated(9);
    m_view->setState(state);
    const QTableView* rows = table("zurges");
    QTRY_VERIFY(rows->rowHeight(1) > rows->rowHeight(0)); // All of it is read.
}

void AccountViewTest::followsABackup()
{
    const QSignalSpy requested(m_view.get(), &AccountView::backupRequested);
    const QSignalSpy restore(m_view.get(), &AccountView::restoreRequested);
    AccountState state = signedIn();
    state.backup.kept.resize(1);
    state.backup.kept.first().fileName = QStringLiteral("old.zip");
    m_view->setState(state);
    QVERIFY(!find<QProgressBar>("backupProgress")->isVisible());
    QCOMPARE(table("backups")->model()->index(0, 0).data().toString(), QStringLiteral("old.zip"));
    find<QToolButton>("backUpButton")->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    QCOMPARE(m_view->focusWidget(), table("backups")); // Which stands below its buttons.
    find<QAction>("backUp")->trigger();
    find<QAction>("restore")->trigger();
    QCOMPARE(requested.size(), 1);
    QCOMPARE(restore.size(), 1);

    state.backup.isRunning = true;
    state.backup.step = QStringLiteral("Starting upload..");
    state.backup.sentBytes = 3 << 20;
    state.backup.totalBytes = 12 << 20;
    m_view->setState(state);
    const QSignalSpy cancelled(m_view.get(), &AccountView::backupCancelled);
    find<QAction>("backUp")->trigger();
    QCOMPARE(cancelled.size(), 1);
    QVERIFY(!find<QAction>("restore")->isEnabled());
    const auto* progress = find<QProgressBar>("backupProgress");
    QVERIFY(progress->isVisible());
    QCOMPARE(4 * progress->value(), progress->maximum());
    QCOMPARE(find<QLabel>("backupText")->text(),
             QStringLiteral("Starting upload.. 3 MiB of 12 MiB"));

    state.backup = {.failure = QStringLiteral("The disk is full.")};
    m_view->setState(state);
    QVERIFY(find<QLabel>("backupText")->text().contains(state.backup.failure));
    find<QAction>("backUp")->trigger();
    QCOMPARE(requested.size(), 2);
}

void AccountViewTest::signsOutOnceConfirmed_data()
{
    QTest::addColumn<bool>("isConfirmed");
    QTest::newRow("yes") << true;
    QTest::newRow("escape") << false;
}

void AccountViewTest::signsOutOnceConfirmed()
{
    QFETCH(bool, isConfirmed);
    m_view->setState(signedIn());
    const QSignalSpy requested(m_view.get(), &AccountView::signOutRequested);
    QTest::mouseClick(find<QPushButton>("signOut"), Qt::LeftButton);
    auto* box = m_view->findChild<QMessageBox*>(QStringLiteral("confirmSignOut"));
    QVERIFY(box != nullptr && requested.isEmpty());
    if (isConfirmed) {
        box->findChild<QPushButton*>(QStringLiteral("confirm"))->click();
    } else {
        QTest::keyClick(box, Qt::Key_Escape);
    }
    QCOMPARE(requested.size(), isConfirmed ? 1 : 0);
}

REGISTER_TEST(AccountViewTest);
#include "AccountViewTest.moc"
