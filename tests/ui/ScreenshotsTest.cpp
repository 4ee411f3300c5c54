// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "storage/Settings.h"
#include "support/TestRegistry.h"
#include "ui/HourChart.h"
#include "ui/MainWindow.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QTest>
#include <QToolButton>

/// Saves pictures of the windows under "screenshots" in the build directory, to be looked at.
class ScreenshotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void today_data();
    void today();
    void hoursOfShiftedDays_data();
    void hoursOfShiftedDays();
    void cleanup();

private:
    static void save(const QPixmap& picture);
};

void ScreenshotsTest::today_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<InputState>("state");
    QTest::addColumn<bool>("busy");
    QTest::addColumn<bool>("tables");
    const QSize first(1100, 720);
    const QSize least(900, 600);
    for (const QString& theme : {QStringLiteral("light"), QStringLiteral("dark")}) {
        const auto row = [&theme](const char* name) -> QTestData& {
            return QTest::newRow(qPrintable(theme + QLatin1Char('-') + QLatin1String(name)))
                   << theme;
        };
        row("busy-1100x720") << first << InputState::Reading << true << false;
        row("busy-900x600") << least << InputState::Reading << true << false;
        row("busy-1600x1000") << QSize(1600, 1000) << InputState::Reading << true << false;
        row("tables-1100x720") << first << InputState::Reading << true << true;
        row("icons-busy-900x600") << least << InputState::Reading << true << false;
        row("empty-1100x720") << first << InputState::Reading << false << false;
        row("no-permission-1100x720") << first << InputState::NoPermission << false << false;
        row("no-devices-900x600") << least << InputState::NoDevices << false << false;
        row("busy-no-permission-1100x720") << first << InputState::NoPermission << true << false;
        row("busy-paused-1100x720") << first << InputState::Paused << true << false;
        row("off-1100x720") << first << InputState::Off << false << false;
    }
}

void ScreenshotsTest::today()
{
    QFETCH(QString, theme);
    QFETCH(QSize, size);
    QFETCH(InputState, state);
    QFETCH(bool, busy);
    QFETCH(bool, tables);
    UiDatabase database;
    if (busy) {
        database.addBusyDay(QDate::currentDate());
    }
    Theme::apply(theme);
    MainWindow window(database.file(),
                      [](const QString& path) { return QFileInfo(path).baseName(); });
    window.setInputState(state);
    window.resize(size);
    window.show();
    auto* notice = window.findChild<QWidget*>(QStringLiteral("notice"));
    auto* card = window.findChild<QWidget*>(QStringLiteral("keysToday"));
    QTRY_VERIFY(notice->isVisible() || card->isVisible());
    QCOMPARE(card->isVisible(), busy);
    if (QLatin1String(QTest::currentDataTag()).contains(QLatin1String("icons"))) {
        window.findChild<SideBar*>()->setForm(SideBar::Form::Collapsed);
    }
    if (tables) {
        for (QAction* action : window.findChildren<QAction*>(QStringLiteral("showTable"))) {
            action->trigger();
        }
    }
    QTest::qWait(50);

    const QPixmap picture = window.grab();
    QCOMPARE(picture.size(), size * window.devicePixelRatio());
    save(picture);
}

void ScreenshotsTest::hoursOfShiftedDays_data()
{
    QTest::addColumn<QDate>("day");
    QTest::newRow("23") << QDate(2026, 3, 29);
    QTest::newRow("25") << QDate(2026, 10, 25);
}

void ScreenshotsTest::hoursOfShiftedDays()
{
    QFETCH(QDate, day);
    Theme::apply(QStringLiteral("light"));
    HourChart chart;
    chart.setAutoFillBackground(true);
    chart.resize(560, 240);
    QHash<int, qint64> keys;
    for (int hour = 0; hour < 24; ++hour) {
        keys.insert(hour, 100 + 10 * hour);
    }
    chart.setDay(day, keys);
    chart.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chart));
    save(chart.grab());
}

void ScreenshotsTest::save(const QPixmap& picture)
{
    const QDir directory(QStringLiteral(TALLYVANE_BUILD_DIR "/screenshots"));
    QVERIFY(directory.mkpath(QStringLiteral(".")));
    const QString name = QStringLiteral("%1-%2-scale%3.png")
                             .arg(QLatin1String(QTest::currentTestFunction()),
                                  QLatin1String(QTest::currentDataTag()))
                             .arg(picture.devicePixelRatio());
    QVERIFY(picture.save(directory.filePath(name)));
}

void ScreenshotsTest::cleanup()
{
    Theme::apply(QStringLiteral("light"));
}

REGISTER_TEST(ScreenshotsTest);
#include "ScreenshotsTest.moc"
