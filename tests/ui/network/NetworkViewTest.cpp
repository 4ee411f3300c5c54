// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Card.h"
#include "ui/FiguresModel.h"
#include "ui/QueryWorker.h"
#include "ui/UiDatabase.h"
#include "ui/network/LiveChart.h"
#include "ui/network/NetworkView.h"
#include "ui/network/TrafficTable.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QToolButton>

using BackEnd = CaptureState::BackEnd;

/// The view over a day with a little traffic of each kind.
class NetworkViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void excludesInterfaces();
    void excludesApplicationsOnceConfirmed();
    void tellsWhatIsNotCounted_data();
    void tellsWhatIsNotCounted();
    void tellsThatInterfacesHaveNoProfile();
    void offersTheCountryDatabaseWhereItIsServed();
    void followsTheLastMinuteWhileItIsSeen();

private:
    void exec(const char* statement) const
    {
        QVERIFY(m_database->exec(QString::fromLatin1(statement)));
    }

    Card* card(const char* name) const
    {
        return m_view->findChild<Card*>(QString::fromLatin1(name));
    }

    QString explanation(const char* name) const
    {
        return card(name)->findChild<QLabel*>(QStringLiteral("explanation"))->text();
    }

    /// Selects the only row of a card's table and chooses from its menu.
    void choose(const char* name, const char* action) const;

    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<QueryWorker> m_worker;
    std::unique_ptr<NetworkView> m_view;
};

void NetworkViewTest::init()
{
    m_database = std::make_unique<UiDatabase>();
    exec("INSERT INTO network_interfaces VALUES('aa:bb', 'eth0', 0, '10.0.0.2', "
         "'2026-03-10 08:00:00')");
    exec("INSERT INTO network_interface_bandwidth VALUES('2026-03-10', 9, 5000, 100, 'aa:bb')");
    exec("INSERT INTO application_bandwidth VALUES('2026-03-10', 9, 5000, 100, '/usr/bin/web', 2)");
    m_worker = std::make_unique<QueryWorker>(m_database->file());
    m_view = std::make_unique<NetworkView>(ViewContext{
        .worker = m_worker.get(), .applicationName = nullptr, .applicationIcon = nullptr});
    m_view->resize(900, 640);
    m_view->setScope({.first = {}, .last = {2026, 3, 10}, .profileId = {}});
    m_view->show();
    QTRY_VERIFY(card("interfaces")->isVisible());
}

void NetworkViewTest::cleanup()
{
    m_view.reset();
    m_worker.reset();
    m_database.reset();
}

void NetworkViewTest::choose(const char* name, const char* action) const
{
    auto* table = card(name)->findChild<QTableView*>();
    QCOMPARE(table->model()->rowCount(), 1);
    table->selectRow(0);
    Q_EMIT table->customContextMenuRequested({});
    auto* menu = table->parentWidget()->findChild<QMenu*>();
    QVERIFY(menu != nullptr);
    auto* chosen = menu->findChild<QAction*>(QString::fromLatin1(action));
    QVERIFY(chosen != nullptr);
    chosen->trigger();
    menu->close();
    QCoreApplication::sendPostedEvents(menu, QEvent::DeferredDelete);
}

void NetworkViewTest::excludesInterfaces()
{
    const QSignalSpy requested(m_view.get(), &NetworkView::interfaceExclusionRequested);
    choose("interfaces", "exclude");
    QCOMPARE(requested.constLast(), QVariantList({QStringLiteral("AA:BB"), true}));
    m_view->setExcludedInterfaces({QStringLiteral("AA:BB")});
    const auto* button = card("interfaces")->findChild<QToolButton*>(QStringLiteral("excluded"));
    QCOMPARE(button->text(), QStringLiteral("Excluded interfaces (1)"));
    Q_EMIT button->menu()->aboutToShow();
    QCOMPARE(button->menu()->actions().constFirst()->text(), QStringLiteral("Count eth0 again"));
    choose("interfaces", "include");
    QCOMPARE(requested.constLast(), QVariantList({QStringLiteral("AA:BB"), false}));
    QCOMPARE(requested.size(), 2);
}

void NetworkViewTest::excludesApplicationsOnceConfirmed()
{
    const QSignalSpy requested(m_view.get(), &NetworkView::applicationExclusionRequested);
    choose("applicationTraffic", "exclude");
    QVERIFY(requested.isEmpty());
    auto* box = m_view->findChild<QMessageBox*>();
    QCOMPARE(box->text(), QStringLiteral("Exclude web from counting?"));
    for (QAbstractButton* button : box->buttons()) {
        if (box->buttonRole(button) == QMessageBox::AcceptRole) {
            button->click();
            break;
        }
    }
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.constFirst(), QVariantList({QStringLiteral("/usr/bin/web"), true}));
}

void NetworkViewTest::tellsWhatIsNotCounted_data()
{
    QTest::addColumn<std::optional<CaptureState>>("capture");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("command");
    const QString command = QStringLiteral("sudo setcap cap_net_raw+ep tallyvane");
    const QString reason = QStringLiteral("No right to capture.");
    const auto row = [](const char* name, const std::optional<CaptureState>& state,
                        const char* title, const QString& text, const QString& shown) {
        QTest::newRow(name) << state << QString::fromLatin1(title) << text << shown;
    };
    row("all packets", CaptureState{.backEnd = BackEnd::PacketRing}, "", {}, {});
    row("through libpcap", CaptureState{.backEnd = BackEnd::Pcap, .reason = reason}, "", {}, {});
    row("totals", CaptureState{.reason = reason, .command = command}, "Only totals are counted",
        reason, command);
    row("no libpcap", CaptureState{.reason = reason, .pcapMissing = true, .command = command},
        "LibPcap not found, which is needed for network statistics.",
        QStringLiteral("Please install package."), command);
    row("off", std::nullopt, "Network counting is off", {}, {});
}

void NetworkViewTest::tellsWhatIsNotCounted()
{
    QFETCH(std::optional<CaptureState>, capture);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(QString, command);
    const auto* notice = m_view->findChild<Notice*>();
    QVERIFY(!notice->isVisible()); // Until how it is watched is told.
    m_view->setCapture(capture);
    QCOMPARE(notice->isVisible(), !title.isEmpty());
    const bool isLimited = capture && capture->backEnd == BackEnd::Counters;
    for (const char* name : {"applicationTraffic", "portTraffic", "countryMap"}) {
        QCOMPARE(!explanation(name).isEmpty(), isLimited);
    }
    if (!title.isEmpty()) {
        const auto shown = [notice](const char* name) {
            return notice->findChild<QLabel*>(QString::fromLatin1(name))->text();
        };
        QCOMPARE(shown("noticeTitle"), title);
        QVERIFY2(shown("noticeText").startsWith(text), qPrintable(shown("noticeText")));
        QCOMPARE(notice->findChild<QLineEdit*>(QStringLiteral("command"))->isVisible(),
                 !command.isEmpty());
    }
}

void NetworkViewTest::tellsThatInterfacesHaveNoProfile()
{
    QVERIFY(explanation("interfaces").isEmpty());
    m_view->setScope({.first = {}, .last = {2026, 3, 10}, .profileId = 1});
    QTRY_VERIFY(!explanation("interfaces").isEmpty());
    QCOMPARE(card("interfaces")->findChild<QTableView*>()->model()->rowCount(), 1);
    QCOMPARE(card("applicationTraffic")->findChild<QTableView*>()->model()->rowCount(), 0);
}

void NetworkViewTest::offersTheCountryDatabaseWhereItIsServed()
{
    auto* link = m_view->findChild<QLabel*>(QStringLiteral("countryDatabase"));
    m_view->setCountryLookup(NetworkView::CountryLookup::NoDatabase);
    QVERIFY(!explanation("countryMap").isEmpty());
    QVERIFY(!link->isVisible());
    m_view->setCountryLookup(NetworkView::CountryLookup::Possible);
    const QSignalSpy wanted(m_view.get(), &NetworkView::countryDatabaseWanted);
    m_view->setCountryLookup(NetworkView::CountryLookup::NoDatabase);
    QVERIFY(link->isVisible());
    Q_EMIT link->linkActivated({});
    QCOMPARE(wanted.size(), 1);
}

void NetworkViewTest::followsTheLastMinuteWhileItIsSeen()
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    int reads = 0;
    m_view->setRecent([&reads, now](std::optional<qint64> since) {
        reads += since ? 1 : 100; // All of the hour once, and then only what is new.
        const SecondTraffic wired{
            .second = now - 2, .macAddress = QStringLiteral("AA:BB"), .traffic = {10, 1}};
        const SecondTraffic other{
            .second = now - 2, .macAddress = QStringLiteral("CC"), .traffic = {5, 1}};
        return std::optional(QList{wired, other});
    });
    QCOMPARE(reads, 100);
    auto* choice = m_view->findChild<QComboBox*>(QStringLiteral("liveInterface"));
    QCOMPARE(choice->count(), 3);
    QCOMPARE(choice->itemText(1), QStringLiteral("eth0"));
    const auto* model = card("lastMinute")->findChild<LiveChart*>()->model();
    const auto download = [model] { return model->rows().constFirst().at(1).toInt(); };
    QCOMPARE(download(), 15);
    choice->setCurrentIndex(1);
    QCOMPARE(download(), 10);
    m_view->hide();
    const int seen = reads;
    QTest::qWait(1'100);
    QCOMPARE(reads, seen);
}

REGISTER_TEST(NetworkViewTest);
#include "NetworkViewTest.moc"
