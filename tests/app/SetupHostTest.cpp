// SPDX-License-Identifier: GPL-3.0-or-later
#include "CountingClient.h"
#include "app/SetupHost.h"
#include "profiles/Milestones.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

namespace {

/// A client that can show its first steps, and a browser whose user agrees at once.
class SetupClient : public CountingClient
{
public:
    SetupClient()
    {
        service.protocol().setAgreement({{QStringLiteral("ann"), QStringLiteral("desk")}});
        host = std::make_unique<SetupHost>(
            SetupHost::Parts{*services, localStats, counting, *system, milestones,
                             *database.database(), database.directory()});
    }

    static SetupWizard* wizard()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<SetupWizard*>(widget); found && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }

    static QString page()
    {
        return wizard()->findChild<QStackedWidget*>()->currentWidget()->objectName();
    }

    static void press(const char* button)
    {
        wizard()->findChild<QPushButton*>(QLatin1String(button))->click();
    }

    bool link()
    {
        host->open(SetupWizard::Start::Account);
        press("link");
        return comes([this] { return localStats.isLoggedIn(); });
    }

    qint64 imported() const
    {
        return database
            .value(QStringLiteral("SELECT SUM(count) FROM keypresses WHERE day = '0000-00-00'"))
            .toLongLong();
    }

    std::unique_ptr<SetupHost> host;
};

} // namespace

class SetupHostTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:

    void openPage(const QUrl& url) { m_pages += url.toString(); }

private Q_SLOTS:
    void init();
    void cleanup();
    void offersTheFirstStepsOnce_data();
    void offersTheFirstStepsOnce();
    void linksAnAccount();
    void importsEarlierTotalsOnce();
    void takesOverSettings();
    void goesOnlineOnlyWhenAsked_data();
    void goesOnlineOnlyWhenAsked();
    void showsTheBackupsThatThereAre();
    void restoresABackup();

private:
    QStringList m_pages; ///< Opened in the browser.
};

void SetupHostTest::init()
{
    m_pages.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "openPage");
}

void SetupHostTest::cleanup()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
}

void SetupHostTest::offersTheFirstStepsOnce_data()
{
    QTest::addColumn<bool>("hasRunBefore");
    QTest::addColumn<bool>("isOffered");
    QTest::newRow("the first start") << false << true;
    QTest::newRow("an older client's database") << true << false;
}

void SetupHostTest::offersTheFirstStepsOnce()
{
    QFETCH(bool, hasRunBefore);
    QFETCH(bool, isOffered);
    SetupClient client;
    Settings& settings = Settings::instance();
    if (hasRunBefore) {
        settings.setValue(SettingsKeys::ClientVersion, QStringLiteral("5.8.1"));
    }
    // A start without a window, and one with.
    SetupHost::noteFirstStart();
    settings.setValue(SettingsKeys::ClientVersion, QStringLiteral("5.8.2"));
    SetupHost::noteFirstStart();
    client.host->offer();
    QCOMPARE(SetupClient::wizard() != nullptr, isOffered);
    if (isOffered) {
        SetupClient::wizard()->close();
    }
    client.host->offer();
    QCOMPARE(SetupClient::wizard(), nullptr);
    QCOMPARE(client.service.requestTypes(), QStringList());
}

void SetupHostTest::linksAnAccount()
{
    SetupClient client;
    QVERIFY(client.link());
    QCOMPARE(m_pages.size(), 1);
    QVERIFY(m_pages.constFirst().startsWith(client.service.websiteUrl() +
                                            QStringLiteral("/dashboard/my/client/")));
    QCOMPARE(client.localStats.identity().userName, QStringLiteral("ann"));
    QCOMPARE(SetupClient::page(), QStringLiteral("donePage"));
    SetupClient::wizard()->close();
    // Another client finds the account in the file.
    LocalStats next;
    next.setup(client.database.directory());
    QCOMPARE(next.identity(), client.localStats.identity());
    QCOMPARE(client.service.violations(), QStringList());
}

void SetupHostTest::importsEarlierTotalsOnce()
{
    SetupClient client;
    const ServiceComputer desk = client.computer();
    QVERIFY(client.service.store().takeZurge(
        desk.id, {.token = desk.zurgeToken, .counts = {5'000, 0, 0, 0, 0, 0, 0}}));
    QVERIFY(client.database.exec(QStringLiteral(
        "INSERT INTO keypresses (day, hour, count, profile_id) VALUES ('2026-01-01', 9, 70, 0)")));
    QVERIFY(client.milestones.add({.name = QStringLiteral("Keys"),
                                   .statsType = QStringLiteral("Keys"),
                                   .statsAmount = 100,
                                   .customMessage = {}}));
    const QSignalSpy hits(&client.milestones, &Milestones::signalNeedTrayIconMessage);
    QVERIFY(client.link());
    QCOMPARE(client.imported(), 5'000);
    client.milestones.checkForMilestone();
    QVERIFY(hits.isEmpty());
    // What is counted from now on is sent, and so would be imported a second time.
    SetupClient::wizard()->close();
    client.services->signOut();
    const ServiceComputer again = client.computer();
    QVERIFY(client.service.store().takeZurge(
        desk.id, {.token = again.zurgeToken, .counts = {900, 0, 0, 0, 0, 0, 0}}));
    QVERIFY(client.link());
    QCOMPARE(client.imported(), 5'000);
    SetupClient::wizard()->close();
}

void SetupHostTest::takesOverSettings()
{
    SetupClient client;
    const QString excluded = QStringLiteral("/usr/bin/secret");
    client.signIn();
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::Theme, QStringLiteral("dark"));
    client.system->addExcludedApplicationForStats(excluded);
    client.services->performMaintenance();
    QVERIFY(LinkedClient::comes(
        [&] { return settings.value(SettingsKeys::SettingsLastUploaded).isValid(); }));
    client.services->signOut();
    settings.setValue(SettingsKeys::Theme, QStringLiteral("light"));
    client.system->deleteExcludedApplicationForStats(excluded);
    const QSignalSpy changes(client.host.get(), &SetupHost::settingsChanged);
    QVERIFY(client.link());
    QCOMPARE(SetupClient::page(), QStringLiteral("settingsPage"));
    SetupClient::press("useEarlier");
    QCOMPARE(settings.value(SettingsKeys::Theme), QStringLiteral("dark"));
    QVERIFY(client.system->shouldExcludeApplicationForStats(excluded));
    QCOMPARE(changes.size(), 1);
    SetupClient::wizard()->close();
}

void SetupHostTest::goesOnlineOnlyWhenAsked_data()
{
    QTest::addColumn<bool>("isAgreed");
    QTest::newRow("agreed") << true;
    QTest::newRow("not agreed") << false;
}

void SetupHostTest::goesOnlineOnlyWhenAsked()
{
    QFETCH(bool, isAgreed);
    SetupClient client;
    Settings::instance().setValue(SettingsKeys::WorkOffline, true);
    client.host->open(SetupWizard::Start::Account);
    SetupClient::press("link");
    auto* box = SetupClient::wizard()->findChild<QMessageBox*>();
    QVERIFY(box);
    QCOMPARE(client.service.requestTypes(), QStringList());
    if (isAgreed) {
        for (QAbstractButton* button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::AcceptRole) {
                button->click();
            }
        }
        QVERIFY(LinkedClient::comes([&] { return !m_pages.isEmpty(); }));
    } else {
        box->reject();
        QTest::qWait(100);
        QCOMPARE(client.service.requestTypes(), QStringList());
    }
    QCOMPARE(Settings::instance().value(SettingsKeys::WorkOffline), !isAgreed);
    SetupClient::wizard()->close();
}

void SetupHostTest::showsTheBackupsThatThereAre()
{
    SetupClient client;
    client.signIn();
    client.host->open(SetupWizard::Start::Restore);
    QCOMPARE(SetupClient::wizard(), nullptr); // It asks for the list first.
    QVERIFY(LinkedClient::comes([] { return SetupClient::wizard() != nullptr; }));
    QVERIFY(client.services->backups().isKnown());
    SetupClient::wizard()->close();
    client.host->open(SetupWizard::Start::Restore);
    QVERIFY(SetupClient::wizard());
    SetupClient::wizard()->close();
}

void SetupHostTest::restoresABackup()
{
    SetupClient client;
    client.signIn();
    client.services->backups().start();
    QVERIFY(LinkedClient::comes([&] { return client.services->backups().isKnown(); }));
    client.host->open(SetupWizard::Start::Restore);
    const QString staged = client.database.directory() + QStringLiteral("/tallyvane-restore.db");
    // Refused at first: the address may have been good for an hour only.
    client.service.faults().add({.kind = Fault::Kind::Status,
                                 .status = 500,
                                 .requestType = QStringLiteral("get_db_backup_download_url")});
    for (const bool succeeds : {false, true}) {
        SetupClient::press("restore");
        const auto isOver = [] {
            return !SetupClient::wizard()
                        ->findChild<QPushButton*>(QStringLiteral("cancelRestore"))
                        ->isVisible();
        };
        QVERIFY(LinkedClient::comes(isOver));
        QCOMPARE(QFile::exists(staged), succeeds);
    }
    QVERIFY(!QFile::exists(staged + QStringLiteral(".zip")));
    SetupClient::wizard()->close();
}

REGISTER_TEST(SetupHostTest);
#include "SetupHostTest.moc"
