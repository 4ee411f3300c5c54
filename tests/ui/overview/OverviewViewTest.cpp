// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"
#include "storage/Settings.h"
#include "support/Noon.h"
#include "support/TestRegistry.h"
#include "ui/FigureTile.h"
#include "ui/HourChart.h"
#include "ui/QueryWorker.h"
#include "ui/TimeChart.h"
#include "ui/UiDatabase.h"
#include "ui/overview/CalendarMonth.h"
#include "ui/overview/OverviewView.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

class OverviewViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void comparesTodayWithDaysLikeIt();
    void comparesDaysWithThoseBefore();
    void drawsWhatIsChosen();
    void leafsThroughTheMonths();
    void narrowsToADay();
    void saysThatNothingWasCounted();
    void dropsAnswersForOtherDaysWhileHidden();
    void showsWhatIsNotSent();

private:
    void open(const QDate& first, const QDate& last);

    template <typename Widget>
    Widget* find(const char* name) const
    {
        return m_view->findChild<Widget*>(QLatin1String(name));
    }

    QString copied(const char* card) const;
    QStringList changes() const;

    const Noon m_noon;
    const QDate m_today = QDate::currentDate();
    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<QueryWorker> m_worker;
    std::unique_ptr<OverviewView> m_view;
};

void OverviewViewTest::init()
{
    m_database = std::make_unique<UiDatabase>();
    m_worker = std::make_unique<QueryWorker>(m_database->file());
    Settings::instance().setValue(SettingsKeys::MouseDistanceSystem, QStringLiteral("metric"));
}

void OverviewViewTest::cleanup()
{
    m_view.reset();
    m_worker.reset();
    m_database.reset();
}

void OverviewViewTest::open(const QDate& first, const QDate& last)
{
    m_view = std::make_unique<OverviewView>(ViewContext{.worker = m_worker.get(),
                                                        .applicationName =
                                                            [](const QString& path) {
                                                                return path == u"/usr/bin/kate"
                                                                           ? QStringLiteral("Kate")
                                                                           : QString();
                                                            },
                                                        .applicationIcon = {}});
    m_view->resize(900, 700);
    m_view->setScope({first, last, std::nullopt});
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    QTRY_VERIFY(find<QWidget>("figures")->isVisible() || find<QWidget>("notice")->isVisible());
}

QString OverviewViewTest::copied(const char* card) const
{
    find<QWidget>(card)->findChild<QAction*>(QStringLiteral("copy"))->trigger();
    return QApplication::clipboard()->text();
}

/// What the first tile, of the keys, is compared with.
QStringList OverviewViewTest::changes() const
{
    QStringList words;
    for (const QLabel* label :
         m_view->findChild<FigureTile*>()->findChildren<QLabel*>(QStringLiteral("lead"))) {
        words.append(label->text());
    }
    return words;
}

void OverviewViewTest::comparesTodayWithDaysLikeIt()
{
    // The first hour of the day has passed whole and the last one is to come.
    m_database->addHour(m_today, 0, 1'150'000);
    m_database->addHour(m_today.addDays(-7), 0, 1'000'000);
    m_database->addHour(m_today.addDays(-7), 23, 9'000'000);
    m_database->addHour(m_today.addDays(-3), 0, 4'000'000);
    m_database->addHour(m_today.addDays(-31), 0, 90'000'000);
    open(m_today, m_today);
    auto* figure = find<QLabel>("figure");
    QVERIFY(figure->text().startsWith(QStringLiteral("1.15M")));
    QCOMPARE(figure->toolTip(), QStringLiteral("Keys: 1,150,000"));
    QCOMPARE(changes(), (QStringList{QStringLiteral("▲ +15 %"), QStringLiteral("▼ −54 %")}));
    QVERIFY(copied("figures").contains(QStringLiteral("\n30-day mean\t2,500,000\t")));
    const QString words = find<QLabel>("lead")->accessibleName();
    QVERIFY2(words.startsWith(QStringLiteral("15 % more than on ")) &&
                 words.contains(QStringLiteral(": 1,000,000\n")),
             qPrintable(words));

    m_view->setRates(3.24, 0);
    QCOMPARE(find<QLabel>("rate")->text(), QStringLiteral("3.2/s"));
    m_view->setInputState(InputState::Off);
    m_view->setRates(3.24, 0);
    QCOMPARE(find<QLabel>("rate")->text(), QString());
}

void OverviewViewTest::comparesDaysWithThoseBefore()
{
    const QDate last = m_today.addDays(-10);
    m_database->addHour(last, 9, 60);
    m_database->addHour(last.addDays(-6), 9, 20);
    m_database->addHour(last.addDays(-7), 9, 100);
    m_database->addHour(last.addDays(-13), 9, 60);
    m_database->addHour(last.addDays(-14), 9, 7000);
    open(last.addDays(-6), last);
    QCOMPARE(changes(), (QStringList{QStringLiteral("▼ −50 %"), QStringLiteral("40")}));
    QCOMPARE(find<QLabel>("lead")->accessibleName(),
             QStringLiteral("50 % less than from %1 to %2: 160")
                 .arg(Format::day(last.addDays(-13)), Format::day(last.addDays(-7))));

    m_view->setScope({{}, last, std::nullopt});
    QTRY_COMPARE(find<QLabel>("figure")->toolTip(), QStringLiteral("Keys: 7,240"));
    QCOMPARE(changes(), (QStringList{QStringLiteral("1,448"), QString()}));
}

void OverviewViewTest::drawsWhatIsChosen()
{
    const QDate first = m_today.addDays(-9);
    m_database->addHour(first, 9, 12'403);
    m_database->addApplication(first, 9, QStringLiteral("/usr/bin/kate"), 5000);
    m_database->addKey(first, 9, Qt::Key_Space, 700);
    m_database->exec(QStringLiteral("INSERT INTO mousedistance (\"day\", \"hour\", "
                                    "\"distance_inches\", \"profile_id\") VALUES('%1', 9, 7874, 0)")
                         .arg(Format::isoDay(first)));
    open(first, first.addDays(1));
    auto* chart = m_view->findChild<TimeChart*>();
    QVERIFY(chart->isVisible());
    QVERIFY(chart->accessibleDescription().contains(QStringLiteral("Keys: 12,403 in all")));
    QVERIFY(copied("mostUsedApplications").contains(QStringLiteral("\nKate\t5,000\t")));
    QVERIFY(copied("mostUsedKeys").contains(QStringLiteral("\t700\t")));
    find<QComboBox>("measure")->setCurrentIndex(static_cast<int>(Measure::Travel));
    QVERIFY2(chart->accessibleDescription().contains(QStringLiteral("200 m in all")),
             qPrintable(chart->accessibleDescription()));
    QVERIFY(m_view->findChild<CalendarMonth*>()->accessibleDescription().endsWith(
        QStringLiteral("Pointer travel: 200 m")));
    QCOMPARE(copied("course"),
             QStringLiteral("Time\tKeys\tClicks\tScrolls\tPointer travel (m)\tUptime\n%1\t12,403\t"
                            "0\t0\t200.0\t0 s\n")
                 .arg(Format::day(first)));

    m_view->setScope({first, first, std::nullopt});
    QTRY_VERIFY(m_view->findChild<HourChart*>()->isVisible());
    QVERIFY(m_view->findChild<HourChart*>()->accessibleDescription().endsWith(
        QStringLiteral("09:00 to 10:00\nPointer travel: 200 m")));
}

void OverviewViewTest::leafsThroughTheMonths()
{
    const QDate last(2025, 3, 31);
    m_database->addHour(last, 9, 5);
    m_database->addHour({2025, 2, 1}, 9, 1234);
    open(last.addDays(-3), last);
    auto* calendar = m_view->findChild<CalendarMonth*>();
    QVERIFY(calendar->accessibleDescription().startsWith(QStringLiteral("March 2025")));
    QTest::mouseClick(find<QToolButton>("earlier"), Qt::LeftButton);
    QTRY_COMPARE(calendar->accessibleDescription(),
                 QStringLiteral("February 2025, days counted: 1. Most: Saturday, 1 February "
                                "2025\nKeys: 1,234"));
    // Nothing was counted before.
    QVERIFY(!find<QToolButton>("earlier")->isEnabled());
    QTest::mouseClick(find<QToolButton>("later"), Qt::LeftButton);
    QTRY_VERIFY(calendar->accessibleDescription().startsWith(QStringLiteral("March 2025")));
}

void OverviewViewTest::narrowsToADay()
{
    m_database->addHour({2025, 3, 3}, 9, 5);
    open({2025, 3, 1}, {2025, 3, 31});
    const QSignalSpy wanted(m_view.get(), &View::daysRequested);
    auto* calendar = m_view->findChild<CalendarMonth*>();
    calendar->setFocus(Qt::TabFocusReason);
    QTest::keyClick(calendar, Qt::Key_Return);
    auto* chart = m_view->findChild<TimeChart*>();
    chart->setFocus(Qt::TabFocusReason);
    QTest::keyClick(chart, Qt::Key_Home);
    QTest::keyClick(chart, Qt::Key_Return);
    QCOMPARE(wanted.size(), 2);
    QCOMPARE(wanted.at(0), (QVariantList{QDate(2025, 3, 31), QDate(2025, 3, 31)}));
    QCOMPARE(wanted.at(1), (QVariantList{QDate(2025, 3, 1), QDate(2025, 3, 1)}));
}

void OverviewViewTest::saysThatNothingWasCounted()
{
    open(m_today, m_today);
    QVERIFY(find<QWidget>("notice")->isVisible());
    QVERIFY(!find<QWidget>("month")->isVisible());
    // Once there is anything to look back at, the calendar leads there.
    m_database->addHour(m_today.addDays(-1), 9, 5);
    QTRY_VERIFY(find<QWidget>("month")->isVisible());
    QVERIFY(find<QWidget>("notice")->isVisible());
    m_database->addHour(m_today, 0, 42);
    QTRY_VERIFY(!find<QWidget>("notice")->isVisible());
    QVERIFY(find<QWidget>("month")->isVisible());
}

void OverviewViewTest::dropsAnswersForOtherDaysWhileHidden()
{
    const QDate day(2025, 3, 3);
    m_database->addHour(day, 9, 5);
    m_database->addHour(day.addDays(1), 9, 6);
    open({2025, 3, 1}, {2025, 3, 2});
    m_view->setScope({day, day, std::nullopt});
    m_view->hide();
    m_view->setScope({day.addDays(1), day.addDays(1), std::nullopt});
    bool isAnswered = false; // What was asked before is then, too.
    m_worker->ask<bool>(
        QStringLiteral("last"), this, [](History&) { return std::optional(true); },
        [&isAnswered](const std::optional<bool>&) { isAnswered = true; });
    QTRY_VERIFY(isAnswered);
    m_view->show();
    QTRY_COMPARE(find<QLabel>("figure")->toolTip(), QStringLiteral("Keys: 6"));
}

void OverviewViewTest::showsWhatIsNotSent()
{
    LocalStats stats;
    stats.increaseKeys(41);
    m_database->addHour(m_today, 0, 5);
    open(m_today, m_today);
    QVERIFY(copied("unzurged").contains(QStringLiteral("\nNot yet sent\t41\t")));
    stats.increaseKeys(1);
    QTRY_COMPARE(find<QWidget>("unzurged")->findChild<QLabel*>(QStringLiteral("value"))->text(),
                 QStringLiteral("42"));
}

REGISTER_TEST(OverviewViewTest);
#include "OverviewViewTest.moc"
