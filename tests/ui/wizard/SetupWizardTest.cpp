// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Theme.h"
#include "ui/wizard/SetupWizard.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTemporaryFile>
#include <QTest>
#include <QUrl>

#include <algorithm>

class SetupWizardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void staysLocalByEnterAlone();
    void leadsOnAfterAuthorisation_data();
    void leadsOnAfterAuthorisation();
    void waitsForTheBrowser();
    void triesAgainAfterAFailure();
    void restoresABackup();
    void restoresFromAFile();
    void looksAtPermissionsWhileTheyAreSeen();
    void endsWhatIsUnderWayWhenClosed_data();
    void endsWhatIsUnderWayWhenClosed();
    void beginsWhereItIsWanted_data();
    void beginsWhereItIsWanted();
    void readsWellInTheLeastWindow();

private:
    void open(const SetupFacts& facts = {.databaseFile = QStringLiteral("/tmp/tallyvane.db")},
              SetupWizard::Start start = SetupWizard::Start::Welcome);
    QString page() const;
    template <typename Widget>
    Widget* find(const char* name) const;
    void press(const char* button);
    static Authorization authorization(int backups, bool hasSettings);

    std::unique_ptr<SetupWizard> m_wizard;
};

void SetupWizardTest::init()
{
    open();
}

void SetupWizardTest::open(const SetupFacts& facts, SetupWizard::Start start)
{
    m_wizard = std::make_unique<SetupWizard>(facts, start);
    m_wizard->show();
    m_wizard->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_wizard.get()));
}

QString SetupWizardTest::page() const
{
    return m_wizard->findChild<QStackedWidget*>()->currentWidget()->objectName();
}

template <typename Widget>
Widget* SetupWizardTest::find(const char* name) const
{
    return m_wizard->findChild<Widget*>(QLatin1String(name));
}

void SetupWizardTest::press(const char* button)
{
    auto* found = find<QPushButton>(button);
    QVERIFY2(found->isVisible() && found->isEnabled(), button);
    QTest::mouseClick(found, Qt::LeftButton);
}

Authorization SetupWizardTest::authorization(int backups, bool hasSettings)
{
    Authorization answer;
    answer.identity.userName = QStringLiteral("ann");
    for (int i = 0; i < backups; ++i) {
        answer.backups.append({.fileName = QStringLiteral("%1.zip").arg(i),
                               .createdAt = QDateTime(QDate(2026, 11, 20 - i), QTime(9, 0)),
                               .bytes = (i + 1) << 20});
    }
    if (hasSettings) {
        answer.clientSettings.insert(QStringLiteral("theme"), QStringLiteral("dark"));
    }
    return answer;
}

void SetupWizardTest::staysLocalByEnterAlone()
{
    const QSignalSpy linked(m_wizard.get(), &SetupWizard::linkRequested);
    const QSignalSpy finished(m_wizard.get(), &SetupWizard::finished);
    QStringList pages;
    for (int step = 0; m_wizard->isVisible() && step < 9; ++step) {
        pages += page();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    QCOMPARE(pages.join(u' '),
             QStringLiteral("welcomePage countedPage permissionsPage accountPage donePage"));
    QCOMPARE(find<QLineEdit>("databaseFile")->text(), QStringLiteral("/tmp/tallyvane.db"));
    QCOMPARE(finished.size(), 1);
    QVERIFY(linked.isEmpty());
    const auto* link = find<QPushButton>("link");
    const auto* local = find<QPushButton>("stayLocal");
    QCOMPARE(link->size(), local->size());
}

void SetupWizardTest::leadsOnAfterAuthorisation_data()
{
    QTest::addColumn<int>("backups");
    QTest::addColumn<bool>("hasSettings");
    QTest::addColumn<QStringList>("road"); // Pages, and the button pressed on each.
    const auto row = [](const char* name, int backups, bool hasSettings, const char* road) {
        QTest::newRow(name) << backups << hasSettings << QString::fromLatin1(road).split(u' ');
    };
    row("nothing", 0, false, "donePage next");
    row("settings", 0, true, "settingsPage keepPresent donePage next");
    row("backups", 2, false, "restorePage next donePage next");
    row("both", 2, true, "restorePage next settingsPage useEarlier donePage next");
}

void SetupWizardTest::leadsOnAfterAuthorisation()
{
    QFETCH(QStringList, road);
    QFETCH(int, backups);
    QFETCH(bool, hasSettings);
    open({}, SetupWizard::Start::Account);
    const QSignalSpy settings(m_wizard.get(), &SetupWizard::settingsRestoreRequested);
    press("link");
    m_wizard->showBrowserPage(QUrl(QStringLiteral("https://tallyvane.example/")));
    m_wizard->showAuthorized(authorization(backups, hasSettings));
    for (qsizetype i = 0; i + 1 < road.size(); i += 2) {
        QCOMPARE(page(), road.at(i));
        if (page() == u"donePage") {
            QVERIFY(find<QLabel>("outcome")->text().contains(QStringLiteral("of ann.")));
        }
        press(qPrintable(road.at(i + 1)));
    }
    QVERIFY(!m_wizard->isVisible());
    QCOMPARE(settings.size(), road.contains(QStringLiteral("useEarlier")) ? 1 : 0);
}

void SetupWizardTest::waitsForTheBrowser()
{
    open({}, SetupWizard::Start::Account);
    const QSignalSpy requested(m_wizard.get(), &SetupWizard::linkRequested);
    const QSignalSpy cancelled(m_wizard.get(), &SetupWizard::linkCancelled);
    press("link");
    QCOMPARE(page(), QStringLiteral("authorizationPage"));
    QVERIFY(find<QWidget>("busyLine")->isVisible());
    QVERIFY(!find<QLineEdit>("pageAddress")->isVisible());
    const QUrl url(
        QStringLiteral("https://tallyvane.example/dashboard/my/client/1?id=1&name=a%26b"));
    m_wizard->showBrowserPage(url);
    QCOMPARE(find<QLabel>("authorizationState")->text(),
             QStringLiteral("Waiting on authorization via website.."));
    press("copyPageAddress");
    QCOMPARE(QApplication::clipboard()->text(), url.toString(QUrl::FullyEncoded));
    QCOMPARE(find<QPushButton>("back")->text(), QStringLiteral("Cancel"));
    press("back");
    QCOMPARE(page(), QStringLiteral("accountPage"));
    QCOMPARE(requested.size(), 1);
    QCOMPARE(cancelled.size(), 1);
}

void SetupWizardTest::triesAgainAfterAFailure()
{
    open({}, SetupWizard::Start::Account);
    const QSignalSpy requested(m_wizard.get(), &SetupWizard::linkRequested);
    const QSignalSpy cancelled(m_wizard.get(), &SetupWizard::linkCancelled);
    press("link");
    const QString text = QStringLiteral(
        "Our server is currently in maintenance, please check back in a few minutes. Sorry!");
    m_wizard->showLinkFailed(text);
    QCOMPARE(find<QLabel>("authorizationText")->text(), text);
    QVERIFY(!find<QWidget>("busyLine")->isVisible());
    press("again");
    QCOMPARE(requested.size(), 2);
    QVERIFY(find<QWidget>("busyLine")->isVisible());
    m_wizard->showLinkFailed(text);
    press("back");
    QCOMPARE(page(), QStringLiteral("accountPage"));
    QVERIFY(cancelled.isEmpty()); // Nothing was under way.
}

void SetupWizardTest::restoresABackup()
{
    open({}, SetupWizard::Start::Account);
    const QSignalSpy requested(m_wizard.get(), &SetupWizard::restoreRequested);
    const QSignalSpy cancelled(m_wizard.get(), &SetupWizard::restoreCancelled);
    press("link");
    m_wizard->showAuthorized(authorization(3, true));
    QCOMPARE(find<QLabel>("restoreText")->text(),
             QStringLiteral("Good news! I found your previous client database backups, do you want "
                            "to restore?"));
    auto* table = find<QWidget>("restorePage")->findChild<QTableView*>();
    const QAbstractItemModelTester tester(table->model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(table->model()->index(1, 0).data().toString(),
             QStringLiteral("19 November 2026, 09:00"));
    QCOMPARE(table->model()->index(1, 1).data().toString(), QStringLiteral("2 MiB"));
    QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_Return);
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.at(0).at(0).value<OnlineBackup>().fileName, QStringLiteral("1.zip"));
    QVERIFY(!find<QPushButton>("next")->isEnabled());
    m_wizard->showRestoreFetching(1 << 20, 2 << 20);
    const auto* progress = find<QProgressBar>("restoreProgress");
    QCOMPARE(2 * progress->value(), progress->maximum());
    press("cancelRestore");
    QCOMPARE(cancelled.size(), 1);
    m_wizard->showRestoreFetching(2 << 20, 2 << 20); // It was on its way already.
    QVERIFY(find<QLabel>("restoreStep")->text().contains(QStringLiteral("Cancelling")));
    m_wizard->showRestoreCancelled();
    QVERIFY(!progress->isVisible());

    press("restore");
    m_wizard->showRestoreFailed(QStringLiteral("The archive is damaged."));
    QVERIFY(find<QLabel>("restoreStep")->text().contains(QStringLiteral("archive is damaged")));
    press("restore");
    QCOMPARE(requested.size(), 3);
    m_wizard->showRestoreStaged();
    QVERIFY(!find<QPushButton>("back")->isVisible());
    press("next"); // Its settings come with it.
    QCOMPARE(page(), QStringLiteral("donePage"));
    QVERIFY(find<QLabel>("restoreOutcome")->isVisible());
}

void SetupWizardTest::restoresFromAFile()
{
    open({}, SetupWizard::Start::Account);
    const QSignalSpy requested(m_wizard.get(), &SetupWizard::restoreFromFileRequested);
    press("haveFile");
    QVERIFY(!find<QPushButton>("restore")->isVisible());
    press("restoreFile");
    QTemporaryFile file;
    QVERIFY(file.open());
    auto* dialog = find<QFileDialog>("restoreFileDialog");
    dialog->selectFile(file.fileName());
    Q_EMIT dialog->fileSelected(file.fileName());
    QCOMPARE(requested.constFirst(), QVariantList{file.fileName()});
    m_wizard->showRestoreStaged();
    press("next");
    QVERIFY(find<QLabel>("outcome")->text().contains(QStringLiteral("stays on this computer")));
}

void SetupWizardTest::looksAtPermissionsWhileTheyAreSeen()
{
    const QSignalSpy wanted(m_wizard.get(), &SetupWizard::permissionCheckRequested);
    press("next");
    QVERIFY(wanted.isEmpty());
    press("next");
    QCOMPARE(wanted.size(), 1);
    m_wizard->setPermissions(InputState::NoPermission,
                             CaptureState{.reason = QStringLiteral("Not allowed."),
                                          .command = QStringLiteral("sudo setcap x")});
    const auto* input = find<QWidget>("inputPermission");
    const auto* network = find<QWidget>("networkPermission");
    const auto command = [](const QWidget* notice) {
        const auto* line = notice->findChild<QLineEdit*>(QStringLiteral("command"));
        return line->isVisible() ? line->text() : QString();
    };
    QCOMPARE(command(input), QStringLiteral("sudo usermod -aG input $USER"));
    QCOMPARE(command(network), QStringLiteral("sudo setcap x"));
    QTRY_COMPARE(wanted.size(), 2);
    m_wizard->setPermissions(InputState::Reading,
                             CaptureState{.backEnd = CaptureState::BackEnd::PacketRing});
    QCOMPARE(command(input) + command(network), QString());
    QVERIFY(input->isVisible());
}

void SetupWizardTest::endsWhatIsUnderWayWhenClosed_data()
{
    QTest::addColumn<bool>("isRestoring");
    QTest::newRow("linking") << false;
    QTest::newRow("restoring") << true;
}

void SetupWizardTest::endsWhatIsUnderWayWhenClosed()
{
    QFETCH(bool, isRestoring);
    open({}, SetupWizard::Start::Account);
    const QSignalSpy linking(m_wizard.get(), &SetupWizard::linkCancelled);
    const QSignalSpy restoring(m_wizard.get(), &SetupWizard::restoreCancelled);
    const QSignalSpy finished(m_wizard.get(), &SetupWizard::finished);
    press("link");
    if (isRestoring) {
        m_wizard->showAuthorized(authorization(1, false));
        press("restore");
    }
    QTest::keyClick(m_wizard.get(), Qt::Key_Escape);
    QVERIFY(!m_wizard->isVisible());
    QCOMPARE(linking.size(), isRestoring ? 0 : 1);
    QCOMPARE(restoring.size(), isRestoring ? 1 : 0);
    QCOMPARE(finished.size(), 1);
}

void SetupWizardTest::beginsWhereItIsWanted_data()
{
    QTest::addColumn<SetupWizard::Start>("start");
    QTest::addColumn<QString>("firstPage");
    QTest::newRow("account") << SetupWizard::Start::Account << QStringLiteral("accountPage");
    QTest::newRow("restore") << SetupWizard::Start::Restore << QStringLiteral("restorePage");
}

void SetupWizardTest::beginsWhereItIsWanted()
{
    QFETCH(SetupWizard::Start, start);
    open({.databaseFile = {},
          .userName = QStringLiteral("ann"),
          .backups = authorization(1, false).backups},
         start);
    QTEST(page(), "firstPage");
    QVERIFY(!find<QPushButton>("back")->isVisible());
    if (start == SetupWizard::Start::Account) {
        QCOMPARE(find<QPushButton>("stayLocal")->text(), QStringLiteral("Keep this account"));
        press("stayLocal");
    }
    QCOMPARE(page(), QStringLiteral("restorePage"));
    QVERIFY(find<QPushButton>("restore")->isVisible());
}

/// By keys alone, in either theme, whatever the user is called.
void SetupWizardTest::readsWellInTheLeastWindow()
{
    m_wizard->resize(m_wizard->minimumSize());
    press("next");
    const auto* counted = find<QWidget>("countedPage");
    const auto* bar = counted->findChild<QScrollArea*>()->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
    QVERIFY(bar->value() > 0);
    const auto picture = [counted] {
        const QList<QLabel*> labels = counted->findChildren<QLabel*>();
        const auto drawn = std::find_if(labels.begin(), labels.end(), [](const QLabel* label) {
            return !label->pixmap(Qt::ReturnByValue).isNull();
        });
        return (*drawn)->pixmap(Qt::ReturnByValue).toImage();
    };
    Theme::apply(QStringLiteral("light"));
    const QImage light = picture();
    Theme::apply(QStringLiteral("dark"));
    QTRY_VERIFY(picture() != light);
    Theme::apply(QStringLiteral("light"));

    open({.databaseFile = {}, .userName = QString(120, u'W')}, SetupWizard::Start::Account);
    m_wizard->resize(m_wizard->minimumSize());
    const auto* link = find<QPushButton>("link");
    QTRY_VERIFY(link->width() >= link->sizeHint().width());
    const auto* page = find<QWidget>("accountPage")->findChild<QScrollArea*>();
    QVERIFY(page->widget()->minimumSizeHint().width() <= page->viewport()->width());
}

REGISTER_TEST(SetupWizardTest);
#include "SetupWizardTest.moc"
