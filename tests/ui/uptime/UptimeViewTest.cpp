// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "ui/FigureTiles.h"
#include "ui/QueryWorker.h"
#include "ui/TableText.h"
#include "ui/uptime/SessionTimeline.h"
#include "ui/uptime/UptimeView.h"

#include <QSignalSpy>
#include <QTest>

namespace {

const QDate Thursday(2026, 11, 19);

} // namespace

class UptimeViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsWhatWasCounted();
    void saysThatThereIsNothing();
    void asksForTheDayChosen();

private:
    std::unique_ptr<TestDatabase> m_database;
    std::unique_ptr<QueryWorker> m_worker;
    std::unique_ptr<UptimeView> m_view;
};

void UptimeViewTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    m_worker = std::make_unique<QueryWorker>(m_database->database()->getDatabaseFileName());
    m_view = std::make_unique<UptimeView>(
        ViewContext{.worker = m_worker.get(), .applicationName = {}, .applicationIcon = {}});
    m_view->resize(900, 640);
    // Ends are stored in UTC, an hour behind; starts in local time.
    QVERIFY(m_database->exec(
        QStringLiteral("INSERT INTO uptimes VALUES('2026-11-17 22:00:00', '2026-11-19 05:00:00'), "
                       "('2026-11-19 08:00:00', '2026-11-19 09:00:00'), "
                       "('2026-11-20 08:00:00', '2026-11-20 08:30:00')")));
    QVERIFY(m_database->exec(
        QStringLiteral("INSERT INTO uptime_hour VALUES('2026-11-19', 0, 3600000, 0), "
                       "('2026-11-19', 9, 1800000, 0), ('2026-11-20', 9, 1800000, 0)")));
}

void UptimeViewTest::cleanup()
{
    m_view.reset();
    m_worker.reset();
    m_database.reset();
}

void UptimeViewTest::showsWhatWasCounted()
{
    m_view->setScope({.first = Thursday, .last = Thursday.addDays(1), .profileId = {}});
    m_view->show();
    auto* tiles = m_view->findChild<FigureTiles*>();
    QTRY_VERIFY(tiles->isVisible());
    QCOMPARE(TableText::tabbed(*tiles->model()),
             QStringLiteral("Figure\tValue\tRemark\n"
                            "Time on\t2 h\tWithout time asleep\n"
                            "Longest session\t17 November 2026, 22:00 to 19 November 2026, 06:00\t"
                            "From 17 November 2026\n"
                            "Boots\t2\t\n"
                            "Time on per day\t1 h\tMean of 2 days\n"));
}

void UptimeViewTest::saysThatThereIsNothing()
{
    m_view->setScope({.first = Thursday.addYears(-1), .last = Thursday.addYears(-1)});
    m_view->show();
    QTRY_VERIFY(m_view->findChild<QWidget*>(QStringLiteral("notice"))->isVisible());
    QVERIFY(!m_view->findChild<FigureTiles*>()->isVisible());
}

void UptimeViewTest::asksForTheDayChosen()
{
    m_view->setScope({.first = Thursday, .last = Thursday.addDays(1), .profileId = {}});
    m_view->show();
    auto* timeline = m_view->findChild<SessionTimeline*>();
    QTRY_VERIFY(timeline->isVisible());
    const QSignalSpy days(m_view.get(), &View::daysRequested);
    const QList<QVariant> friday{Thursday.addDays(1), Thursday.addDays(1)};
    const TimelineLayout& layout = timeline->timelineLayout();
    QTest::mouseClick(timeline, Qt::LeftButton, {}, layout.lane(1).center().toPoint());
    QCOMPARE(days.value(0), friday);
    QTest::keyClick(timeline, Qt::Key_Up);
    QTest::keyClick(timeline, Qt::Key_Return);
    QCOMPARE(days.value(1), friday);
    QTest::keyClick(timeline, Qt::Key_Up);
    QTest::keyClick(timeline, Qt::Key_Return);
    QCOMPARE(days.value(2), QList<QVariant>({Thursday, Thursday}));
}

REGISTER_TEST(UptimeViewTest);
#include "UptimeViewTest.moc"
