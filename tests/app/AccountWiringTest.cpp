// SPDX-License-Identifier: GPL-3.0-or-later
#include "CountingClient.h"
#include "app/AccountWiring.h"
#include "app/MainWindowHost.h"
#include "app/SetupHost.h"
#include "profiles/Milestones.h"
#include "profiles/ProfileDeletion.h"
#include "support/TestRegistry.h"
#include "ui/MainWindow.h"
#include "ui/TrayIcon.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>

namespace {

using Origin = ZurgeRecord::Origin;

/// A client with a window and a tray that show its account.
class ShownClient : public CountingClient
{
public:
    ShownClient() { begin(); }

    /// As the next run of the client does.
    void begin()
    {
        wiring = std::make_unique<AccountWiring>(
            AccountWiring::Parts{*services, localStats, setup, tray, window});
    }

    void record(const ZurgeRecord& zurge) { Q_EMIT localStats.signalZurgeRecorded(zurge); }

    template <typename Widget>
    static QList<Widget*> shown()
    {
        QList<Widget*> found;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* one = qobject_cast<Widget*>(widget); one && one->isVisible()) {
                found << one;
            }
        }
        return found;
    }

    ProfileDeletion deletion{profiles};
    TrayIcon tray{[] { return qint64(0); }};
    MainWindowHost window{
        database.database()->getDatabaseFileName(), *system, counting,
        ViewWiring::Parts{*system, profiles, deletion, milestones, rates, [] { return true; }}};
    SetupHost setup{SetupHost::Parts{*services, localStats, counting, *system, milestones,
                                     *database.database(), database.directory()}};
    std::unique_ptr<AccountWiring> wiring;
};

QDateTime minute(int number)
{
    return QDateTime(QDate(2026, 11, 21), QTime(9, 0)).addSecs(qint64(60) * number);
}

} // namespace

class AccountWiringTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheLastZurges();
    void tellsWhatTheLastRunLeftOpen();
    void showsOneMessageBox();
    void showsInTheTrayThatNothingIsSent();
    void offersAZurgeInTheTrayAsSoonAsSomethingIsCounted();
    void showsMessagesUntilTheyAreDismissed();
};

void AccountWiringTest::keepsTheLastZurges()
{
    ShownClient client;
    client.signIn();
    for (int i = 0; i <= AccountWiring::MostZurges; ++i) {
        client.record({.time = minute(i), .origin = Origin::Automatic});
    }
    QList<ZurgeRecord> zurges = client.wiring->state().zurges;
    QCOMPARE(zurges.size(), AccountWiring::MostZurges);
    QCOMPARE(zurges.constFirst().time, minute(AccountWiring::MostZurges));
    QCOMPARE(zurges.constLast().time, minute(1));
    // Who began a zurge is not known any more when its outcome is.
    client.record(
        {.time = minute(5), .origin = Origin::ByHand, .outcome = ZurgeRecord::Outcome::Failed});
    zurges = client.wiring->state().zurges;
    QCOMPARE(zurges.size(), AccountWiring::MostZurges);
    QCOMPARE(zurges.at(AccountWiring::MostZurges - 5).outcome, ZurgeRecord::Outcome::Failed);
    QCOMPARE(zurges.at(AccountWiring::MostZurges - 5).origin, Origin::Automatic);
    client.signIn(QStringLiteral("bob"));
    QVERIFY(client.wiring->state().zurges.isEmpty());
}

void AccountWiringTest::tellsWhatTheLastRunLeftOpen()
{
    ShownClient client;
    client.signIn();
    const AccountIdentity& identity = client.localStats.identity();
    QVERIFY(client.localStats.recordInFlight({.token = QStringLiteral("the one before"),
                                              .time = minute(0),
                                              .totals = {.keys = 9},
                                              .applications = {},
                                              .userId = identity.userId,
                                              .computerId = identity.computerId}));
    client.begin();
    QCOMPARE(client.wiring->state().zurges.value(0).outcome, ZurgeRecord::Outcome::Unanswered);
    QCOMPARE(client.wiring->state().zurges.value(0).keys, 9U);
    QVERIFY(client.services->refreshAccountInfo());
    QVERIFY(LinkedClient::comes([&] {
        return client.wiring->state().zurges.value(0).outcome == ZurgeRecord::Outcome::Sent;
    }));
    QCOMPARE(client.wiring->state().zurges.size(), 1);
}

void AccountWiringTest::showsOneMessageBox()
{
    ShownClient client;
    Q_EMIT client.localStats.signalNeedMessageBox(QStringLiteral("One"), QStringLiteral("first"));
    Q_EMIT client.localStats.signalNeedMessageBox(QStringLiteral("Two"), QStringLiteral("second"));
    const QList<QMessageBox*> boxes = ShownClient::shown<QMessageBox>();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.constFirst()->text(), QStringLiteral("second"));
    boxes.constFirst()->close();
    QTest::qWait(0);
    Q_EMIT client.localStats.signalNeedMessageBox(QStringLiteral("One"), QStringLiteral("third"));
    QCOMPARE(ShownClient::shown<QMessageBox>().size(), 1);
    ShownClient::shown<QMessageBox>().constFirst()->close();
}

void AccountWiringTest::showsInTheTrayThatNothingIsSent()
{
    ShownClient client;
    Settings::instance().setValue(SettingsKeys::WorkOffline, true);
    client.services->applySettings();
    QCOMPARE(client.tray.shape(), TrayIcon::Shape::Counting); // There is nobody to send to.
    client.signIn();
    QCOMPARE(client.tray.shape(), TrayIcon::Shape::Offline);
    client.services->signOut();
    QCOMPARE(client.tray.shape(), TrayIcon::Shape::Counting);
}

void AccountWiringTest::offersAZurgeInTheTrayAsSoonAsSomethingIsCounted()
{
    ShownClient client;
    client.signIn();
    QMenu* menu = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String("trayMenu")) {
            menu = qobject_cast<QMenu*>(widget);
        }
    }
    QVERIFY(menu);
    const auto* zurge = menu->findChild<QAction*>(QStringLiteral("zurge"));
    QVERIFY(!zurge->isEnabled());
    client.localStats.increaseKeys(5); // Nobody is told of that.
    Q_EMIT menu->aboutToShow();
    QVERIFY(zurge->isEnabled());
}

void AccountWiringTest::showsMessagesUntilTheyAreDismissed()
{
    ShownClient client;
    client.services->messages().takeWebsiteMessages(
        {QVariantMap{{QStringLiteral("id"), 7}, {QStringLiteral("text"), QStringLiteral("News")}}});
    client.window.open();
    QCOMPARE(ShownClient::shown<MainWindow>().size(), 1);
    MainWindow* window = ShownClient::shown<MainWindow>().constFirst();
    auto* dismiss = window->findChild<QToolButton*>(QStringLiteral("dismiss"));
    QVERIFY(dismiss);
    dismiss->click();
    QVERIFY(client.services->messages().messages().isEmpty());
    window->close();
}

REGISTER_TEST(AccountWiringTest);
#include "AccountWiringTest.moc"
