// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "support/TestRegistry.h"
#include "ui/HourChart.h"
#include "ui/MainWindow.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QTest>

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
    enum class Content
    {
        Empty,
        Busy,
        IconsBusy,
        Tables,
        Large,
    };

    static void fill(UiDatabase& database, Content content);
    static void save(const QPixmap& picture);
};

void ScreenshotsTest::today_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<InputState>("state");
    QTest::addColumn<Content>("content");
    const QSize first(1100, 720);
    const QSize least(900, 600);
    for (const QString& theme : {QStringLiteral("light"), QStringLiteral("dark")}) {
        const auto row = [&theme](const char* name, const QSize& size, InputState state,
                                  Content content) {
            QTest::addRow("%s-%s-%dx%d", qPrintable(theme), name, size.width(), size.height())
                << theme << size << state << content;
        };
        row("busy", first, InputState::Reading, Content::Busy);
        row("busy", least, InputState::Reading, Content::Busy);
        row("busy", {1600, 1000}, InputState::Reading, Content::Busy);
        row("tables", first, InputState::Reading, Content::Tables);
        row("icons-busy", least, InputState::Reading, Content::IconsBusy);
        row("large", {1000, 600}, InputState::Reading, Content::Large);
        row("large", least, InputState::Reading, Content::Large);
        row("empty", first, InputState::Reading, Content::Empty);
        row("no-permission", first, InputState::NoPermission, Content::Empty);
        row("no-devices", least, InputState::NoDevices, Content::Empty);
        row("busy-no-permission", first, InputState::NoPermission, Content::Busy);
        row("busy-paused", first, InputState::Paused, Content::Busy);
        row("off", first, InputState::Off, Content::Empty);
    }
}

void ScreenshotsTest::fill(UiDatabase& database, Content content)
{
    const QDate today = QDate::currentDate();
    if (content == Content::Empty) {
        return;
    }
    database.addBusyDay(today);
    if (content == Content::Large) {
        database.addHour(today, 9, 987'654);
        database.addHour(today, 23, 7'654'321);
        database.addKey(today, 9, 0x01000102, 1'234'567);
        database.addApplication(
            today, 9,
            QStringLiteral(
                "/opt/Company with a long name/An application with a name that is longer "
                "than any line has room for"),
            1'234'567);
    }
}

void ScreenshotsTest::today()
{
    QFETCH(QString, theme);
    QFETCH(QSize, size);
    QFETCH(InputState, state);
    QFETCH(Content, content);
    UiDatabase database;
    fill(database, content);
    Theme::apply(theme);
    MainWindow window(database.file(),
                      [](const QString& path) { return QFileInfo(path).baseName(); });
    window.setInputState(state);
    window.resize(size);
    window.show();
    auto* notice = window.findChild<QWidget*>(QStringLiteral("notice"));
    auto* card = window.findChild<QWidget*>(QStringLiteral("keysToday"));
    QTRY_VERIFY(notice->isVisible() || card->isVisible());
    QCOMPARE(card->isVisible(), content != Content::Empty);
    if (content == Content::IconsBusy) {
        window.findChild<SideBar*>()->setForm(SideBar::Form::Collapsed);
    }
    if (content == Content::Tables) {
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
    QHash<int, double> keys;
    for (int hour = 0; hour < 24; ++hour) {
        keys.insert(hour, 100 + 10 * hour);
    }
    chart.setDay(day, {.name = QStringLiteral("Keys")}, keys, day.addDays(1).startOfDay());
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
