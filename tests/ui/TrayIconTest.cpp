// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "storage/Settings.h"
#include "support/TestRegistry.h"
#include "ui/Icons.h"
#include "ui/Theme.h"
#include "ui/TrayIcon.h"

#include <QApplication>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>

class TrayIconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void blinksShortlyAndRarely();
    void staysStillWherePausedOrNotWanted();
    void asksForFiguresOnlyAfterActivity();
    void offersWhatCanBeDone();
    void drawsEachShapeDifferently_data();
    void drawsEachShapeDifferently();
    void offersAZurge_data();
    void offersAZurge();
    void doubleClick_data();
    void doubleClick();
    void showsThatItIsOffline();
    void switchesProfiles();
    void marksTheActiveProfile();
    void explainsAClosedWindowOnce();

private:
    static QAction* action(const char* name);

    UiDatabase m_database;
};

void TrayIconTest::init()
{
    Settings::instance().setValue(SettingsKeys::TrayiconBlinkOnActivity, true);
}

QAction* TrayIconTest::action(const char* name)
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String("trayMenu")) {
            return widget->findChild<QAction*>(QLatin1String(name));
        }
    }
    return nullptr;
}

void TrayIconTest::blinksShortlyAndRarely()
{
    TrayIcon icon([] { return 0; });
    QCOMPARE(icon.shape(), TrayIcon::Shape::Counting);
    icon.noteActivity();
    QCOMPARE(icon.shape(), TrayIcon::Shape::Activity);
    QTRY_COMPARE(icon.shape(), TrayIcon::Shape::Counting);
    icon.noteActivity();
    QCOMPARE(icon.shape(), TrayIcon::Shape::Counting);
    QTRY_VERIFY((icon.noteActivity(), icon.shape() == TrayIcon::Shape::Activity));
}

void TrayIconTest::staysStillWherePausedOrNotWanted()
{
    Settings::instance().setValue(SettingsKeys::TrayiconBlinkOnActivity, false);
    TrayIcon icon([] { return 0; });
    icon.noteActivity();
    QCOMPARE(icon.shape(), TrayIcon::Shape::Counting);
    Settings::instance().setValue(SettingsKeys::TrayiconBlinkOnActivity, true);
    icon.refreshSettings();
    icon.setCounting(TrayIcon::Counting::Paused);
    icon.noteActivity();
    QCOMPARE(icon.shape(), TrayIcon::Shape::Paused);
    QVERIFY(icon.toolTip().contains(QStringLiteral("paused")));
}

void TrayIconTest::asksForFiguresOnlyAfterActivity()
{
    int asked = 0;
    TrayIcon icon([&asked] {
        ++asked;
        return 12403;
    });
    QCOMPARE(icon.toolTip(), QStringLiteral("Keys today: 12,403"));
    QCOMPARE(asked, 1);
    for (int i = 0; i < 100; ++i) {
        icon.noteActivity();
    }
    QCOMPARE(asked, 1);
}

void TrayIconTest::offersWhatCanBeDone()
{
    TrayIcon icon([] { return 0; });
    const QSignalSpy opened(&icon, &TrayIcon::openRequested);
    const QSignalSpy paused(&icon, &TrayIcon::pauseRequested);
    const QSignalSpy resumed(&icon, &TrayIcon::resumeRequested);
    const QSignalSpy quit(&icon, &TrayIcon::quitRequested);
    action("open")->trigger();
    QCOMPARE(action("counting")->text(), QStringLiteral("Pause counting"));
    action("counting")->trigger();
    icon.setCounting(TrayIcon::Counting::Paused);
    QCOMPARE(icon.shape(), TrayIcon::Shape::Paused);
    QCOMPARE(action("counting")->text(), QStringLiteral("Resume counting"));
    action("counting")->trigger();
    icon.setCounting(TrayIcon::Counting::Running);
    QCOMPARE(icon.shape(), TrayIcon::Shape::Counting);
    const QSignalSpy setUp(&icon, &TrayIcon::setUpRequested);
    action("setUp")->trigger();
    QCOMPARE(setUp.size(), 1);
    action("quit")->trigger();
    QCOMPARE(opened.size(), 1);
    QCOMPARE(paused.size(), 1);
    QCOMPARE(resumed.size(), 1);
    QCOMPARE(quit.size(), 1);
}

void TrayIconTest::drawsEachShapeDifferently_data()
{
    QTest::addColumn<QColor>("ink");
    QTest::addColumn<QColor>("panel");
    QTest::newRow("light icon") << QColor(Qt::white) << QColor(0x24, 0x28, 0x2e);
    QTest::newRow("dark icon") << QColor(0x1d, 0x21, 0x27) << QColor(0xf0, 0xf0, 0xf0);
}

void TrayIconTest::drawsEachShapeDifferently()
{
    QFETCH(QColor, ink);
    QFETCH(QColor, panel);
    QList<QImage> seen;
    for (const char* name : {"tray-counting", "tray-activity", "tray-paused", "tray-offline"}) {
        const QImage image = Icons::outlined(QLatin1String(name), ink, Qt::transparent)
                                 .pixmap(16, 16)
                                 .toImage()
                                 .convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(16, 16));
        int strong = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                strong += pixel.alpha() > 127 && Theme::contrast(pixel, panel) >= 4.5 ? 1 : 0;
            }
        }
        QVERIFY2(strong > 30, name);
        QVERIFY(!seen.contains(image));
        seen.append(image);
    }
}

void TrayIconTest::offersAZurge_data()
{
    QTest::addColumn<ZurgeFacts>("facts");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("no account") << ZurgeFacts{} << QStringLiteral("Zurge: no account") << false;
    QTest::newRow("ready") << ZurgeFacts{.isSignedIn = true, .hasCounts = true}
                           << QStringLiteral("Zurge") << true;
    QTest::newRow("offline") << ZurgeFacts{.isSignedIn = true, .isOffline = true, .hasCounts = true}
                             << QStringLiteral("Zurge: working offline") << false;
}

void TrayIconTest::offersAZurge()
{
    QFETCH(ZurgeFacts, facts);
    TrayIcon icon([] { return 0; });
    const QSignalSpy requested(&icon, &TrayIcon::zurgeRequested);
    icon.setZurge(facts);
    QTEST(action("zurge")->text(), "text");
    QTEST(action("zurge")->isEnabled(), "isEnabled");
    action("zurge")->trigger();
    QCOMPARE(requested.size(), action("zurge")->isEnabled() ? 1 : 0);
}

void TrayIconTest::doubleClick_data()
{
    QTest::addColumn<bool>("isSignedIn");
    QTest::addColumn<bool>("isWanted");
    QTest::addColumn<QSystemTrayIcon::ActivationReason>("second"); // Unknown for none.
    QTest::addColumn<QString>("wish");
    using enum QSystemTrayIcon::ActivationReason;
    const QString opens = QStringLiteral("opens");
    const QString zurges = QStringLiteral("zurges");
    QTest::newRow("one, no account") << false << true << Unknown << opens;
    QTest::newRow("two, no account") << false << true << DoubleClick << opens;
    QTest::newRow("one, not wanted") << true << false << Unknown << opens;
    QTest::newRow("two, not wanted") << true << false << DoubleClick << opens;
    QTest::newRow("one") << true << true << Unknown << opens;
    QTest::newRow("two") << true << true << DoubleClick << zurges;
    QTest::newRow("two, of a tray on D-Bus") << true << true << Trigger << zurges;
    QTest::newRow("one and the menu") << true << true << Context << opens;
}

void TrayIconTest::doubleClick()
{
    QFETCH(bool, isSignedIn);
    QFETCH(bool, isWanted);
    QFETCH(QSystemTrayIcon::ActivationReason, second);
    Settings::instance().setValue(SettingsKeys::TrayDoubleclickZurge, isWanted);
    TrayIcon icon([] { return 0; });
    icon.setZurge({.isSignedIn = isSignedIn, .hasCounts = true});
    QString wish;
    connect(&icon, &TrayIcon::openRequested, this, [&wish] { wish = QStringLiteral("opens"); });
    connect(&icon, &TrayIcon::zurgeRequested, this, [&wish] { wish += QStringLiteral("zurges"); });
    auto* tray = icon.findChild<QSystemTrayIcon*>();
    Q_EMIT tray->activated(QSystemTrayIcon::Trigger);
    Q_EMIT tray->activated(second);
    QTRY_VERIFY(!wish.isEmpty());
    QTest::qWait(QApplication::doubleClickInterval() + 100); // A single one would open by then.
    QTEST(wish, "wish");
}

void TrayIconTest::showsThatItIsOffline()
{
    TrayIcon icon([] { return 0; });
    icon.setConnection(TrayIcon::Connection::Offline);
    QCOMPARE(icon.shape(), TrayIcon::Shape::Offline);
    QVERIFY(icon.toolTip().contains(QStringLiteral("offline")));
    icon.setCounting(TrayIcon::Counting::Paused);
    QCOMPARE(icon.shape(), TrayIcon::Shape::Paused);
    icon.setCounting(TrayIcon::Counting::Running);
    icon.setConnection(TrayIcon::Connection::Online);
    QCOMPARE(icon.shape(), TrayIcon::Shape::Counting);
}

void TrayIconTest::switchesProfiles()
{
    TrayIcon icon([] { return 0; });
    const auto* menu = action("open")->parent()->findChild<QMenu*>(QStringLiteral("profiles"));
    QVERIFY(menu);
    icon.setProfiles({}, 0);
    QVERIFY(!menu->menuAction()->isVisible());
    icon.setProfiles({{7, QStringLiteral("Games & Co")}, {3, QStringLiteral("Work")}}, 3);
    QVERIFY(menu->menuAction()->isVisible());
    QStringList shown;
    for (const QAction* entry : menu->actions()) {
        shown += entry->text() + (entry->isChecked() ? QStringLiteral(" *") : QString());
    }
    QCOMPARE(shown, QStringList({QStringLiteral("General"), QStringLiteral("Games && Co"),
                                 QStringLiteral("Work *")}));
    QVERIFY(icon.toolTip().contains(QStringLiteral("Profile: Work")));
    const QSignalSpy requested(&icon, &TrayIcon::profileRequested);
    menu->actions().at(1)->trigger();
    QCOMPARE(requested.constFirst(), QVariantList({7, QStringLiteral("Games & Co")}));
}

void TrayIconTest::marksTheActiveProfile()
{
    const QList<Profile> profiles{{1, QStringLiteral("Work")}, {2, QStringLiteral("Games")}};
    TrayIcon icon([] { return 0; });
    const auto image = [&icon] { return icon.icon().pixmap(16, 16).toImage(); };
    const QImage plain = image();
    icon.setProfiles(profiles, 1);
    QCOMPARE(image(), plain); // Not wanted, as at first.
    Settings::instance().setValue(SettingsKeys::ProfilesChangeIconColor, true);
    icon.refreshSettings();
    const QImage work = image();
    QVERIFY(work != plain);
    icon.setProfiles(profiles, 2);
    QVERIFY(image() != work);
    QVERIFY(image() != plain);
    icon.setProfiles(profiles, 0);
    QCOMPARE(image(), plain);
}

void TrayIconTest::explainsAClosedWindowOnce()
{
    TrayIcon icon([] { return 0; });
    const auto boxes = [] {
        int count = 0;
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            count += widget->objectName() == QLatin1String("closingExplained") ? 1 : 0;
        }
        return count;
    };
    // Off screen there is no tray, so it is told in a box.
    icon.explainClosedWindow();
    QCOMPARE(boxes(), 1);
    icon.explainClosedWindow();
    QCOMPARE(boxes(), 1);
    QApplication::activeModalWidget()->close();
    QTRY_COMPARE(boxes(), 0);
    TrayIcon([] { return 0; }).explainClosedWindow();
    QCOMPARE(boxes(), 0);
}

REGISTER_TEST(TrayIconTest);
#include "TrayIconTest.moc"
