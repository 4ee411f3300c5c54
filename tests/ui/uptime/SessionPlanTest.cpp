// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/uptime/SessionPlan.h"
#include "ui/uptime/TimelineLayout.h"

#include <QTest>

using Parts = QList<SessionPart>;

namespace {

constexpr qint64 Hour = 3600;

/// A local time; "+" before or "-" behind nothing: the offset is that of the time zone.
QDateTime at(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toLocalTime();
}

} // namespace

/// In a time zone whose clock changes (see the tests' environment).
class SessionPlanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void splitsByDay_data();
    void splitsByDay();
    void knowsWhatGoesOn_data();
    void knowsWhatGoesOn();
    void showsHoursOfTheClockInColumns_data();
    void showsHoursOfTheClockInColumns();
    void sumsLongRangesInColumns();
    void tellsWhatIsUnderThePointer();
    void laysOutLanes();
};

void SessionPlanTest::initTestCase()
{
    if (QDate(2026, 3, 29).startOfDay().daysTo(QDate(2026, 3, 30).startOfDay()) != 1 ||
        QDate(2026, 3, 29).startOfDay().secsTo(QDate(2026, 3, 30).startOfDay()) != 23 * Hour) {
        QSKIP("needs TZ=Europe/Berlin");
    }
}

void SessionPlanTest::splitsByDay_data()
{
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QDateTime>("end");
    QTest::addColumn<QList<Parts>>("expected");
    const QDate friday(2026, 11, 20);
    const auto row = [](const char* name, const QDate& first, const QDate& last, const char* start,
                        const char* end, const QList<Parts>& expected) {
        QTest::newRow(name) << first << last << at(start) << at(end) << expected;
    };
    row("within a day", friday, friday, "2026-11-20T08:00:00", "2026-11-20T09:30:00",
        {{{0, 8 * Hour, 9 * Hour + 1800}}});
    row("over midnight", friday, friday.addDays(1), "2026-11-20T22:00:00", "2026-11-21T01:00:00",
        {{{0, 22 * Hour, 24 * Hour}}, {{0, 0, Hour}}});
    row("until midnight sharp", friday, friday.addDays(1), "2026-11-20T22:00:00",
        "2026-11-21T00:00:00", {{{0, 22 * Hour, 24 * Hour}}, {}});
    row("a boot just now", friday, friday, "2026-11-20T22:00:00", "2026-11-20T22:00:00",
        {{{0, 22 * Hour, 22 * Hour}}});
    row("over all days shown", friday, friday, "2026-11-01T22:00:00", "2026-11-30T22:00:00",
        {{{0, 0, 24 * Hour}}});
    row("before the days shown", friday, friday, "2026-11-18T22:00:00", "2026-11-19T22:00:00",
        {{}});
    row("over the hour that is skipped", QDate(2026, 3, 28), QDate(2026, 3, 30),
        "2026-03-28T23:00:00", "2026-03-30T01:00:00",
        {{{0, 23 * Hour, 24 * Hour}}, {{0, 0, 23 * Hour}}, {{0, 0, Hour}}});
    row("after the hour that is skipped", QDate(2026, 3, 29), QDate(2026, 3, 29),
        "2026-03-29T04:00:00", "2026-03-29T05:00:00", {{{0, 3 * Hour, 4 * Hour}}});
    row("over the hour that comes twice", QDate(2026, 10, 25), QDate(2026, 10, 25),
        "2026-10-25T01:00:00", "2026-10-25T04:00:00", {{{0, Hour, 5 * Hour}}});
}

void SessionPlanTest::splitsByDay()
{
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(QDateTime, start);
    QFETCH(QDateTime, end);
    QFETCH(QList<Parts>, expected);
    const QList<SessionDay> days = SessionDays::split({{start, end}}, first, last);
    QCOMPARE(days.size(), expected.size());
    for (qsizetype i = 0; i < days.size(); ++i) {
        QCOMPARE(days.at(i).day, first.addDays(i));
        QCOMPARE(days.at(i).parts, expected.at(i));
    }
}

void SessionPlanTest::knowsWhatGoesOn_data()
{
    QTest::addColumn<int>("secondsAgo");
    QTest::addColumn<bool>("isRunning");
    QTest::newRow("now") << 0 << true;
    QTest::newRow("two minutes ago") << 120 << true;
    QTest::newRow("longer ago") << 121 << false;
    QTest::newRow("the clock was set back") << -300 << true;
}

void SessionPlanTest::knowsWhatGoesOn()
{
    QFETCH(int, secondsAgo);
    QFETCH(bool, isRunning);
    const QDateTime now = at("2026-11-20T12:00:00");
    const BootSession session{now.addDays(-1), now.addSecs(-secondsAgo)};
    QCOMPARE(SessionDays::isRunning(session, now), isRunning);
}

void SessionPlanTest::showsHoursOfTheClockInColumns_data()
{
    QTest::addColumn<QDate>("day");
    QTest::addColumn<bool>("hasHourTwo");
    QTest::newRow("a usual day") << QDate(2026, 11, 20) << true;
    QTest::newRow("23 hours") << QDate(2026, 3, 29) << false;
    QTest::newRow("25 hours") << QDate(2026, 10, 25) << true;
}

void SessionPlanTest::showsHoursOfTheClockInColumns()
{
    QFETCH(QDate, day);
    QFETCH(bool, hasHourTwo);
    // From midnight to four, and half of the quarter from eight o'clock on.
    const BootSession night{day.startOfDay(), QDateTime(day, QTime(4, 0))};
    const BootSession morning{QDateTime(day, QTime(8, 0)), QDateTime(day, QTime(8, 7, 30))};
    const SessionRaster raster(SessionDays::split({night, morning}, day, day));
    for (int slot = 0; slot < SessionRaster::SlotCount; ++slot) {
        const int hour = slot / SessionRaster::SlotsPerHour;
        const std::optional<float> share = raster.share(0, slot);
        QCOMPARE(share.has_value(), hour != 2 || hasHourTwo);
        if (share) {
            QCOMPARE(*share, hour < 4 ? 1.0F : slot == 32 ? 0.5F : 0.0F);
        }
    }
}

void SessionPlanTest::sumsLongRangesInColumns()
{
    const QDate first(2016, 1, 1);
    const QDate last(2025, 12, 31);
    QList<BootSession> sessions;
    for (QDate day = first; day <= last; day = day.addDays(1)) {
        if (day.dayOfWeek() <= Qt::Friday) {
            sessions.append({QDateTime(day, QTime(9, 0)), QDateTime(day, QTime(17, 0))});
        }
    }
    const SessionPlan plan(sessions, first, last);
    QCOMPARE(plan.raster().daysPerColumn(), 7);
    QCOMPARE(plan.laneCount(), 522);
    QCOMPARE(plan.firstDay(1), QDate(2016, 1, 8));
    QCOMPARE(plan.lastDay(521), last);
    QCOMPARE(plan.raster().columnOf(QDate(2016, 1, 8)), 1);
    for (const int column : {0, 12, 300}) {
        QCOMPARE(*plan.raster().share(column, 40), 5.0F / 7);
        QCOMPARE(*plan.raster().share(column, 70), 0.0F);
    }

    QVERIFY(!SessionPlan(sessions, first, first.addDays(44)).isRaster());
    const SessionPlan months(sessions, first, first.addDays(45));
    QCOMPARE(months.raster().daysPerColumn(), 1);
    QCOMPARE(months.laneCount(), 46);
}

void SessionPlanTest::tellsWhatIsUnderThePointer()
{
    const QDate first(2026, 3, 1);
    const QDateTime now = at("2026-03-29T12:00:00");
    const QList<BootSession> sessions{{at("2026-03-02T22:00:00"), at("2026-03-03T01:30:00")},
                                      {at("2026-03-29T08:00:00"), at("2026-03-29T12:00:00")}};
    const QString overMidnight =
        QStringLiteral("2 March 2026, 22:00 to 3 March 2026, 01:30\n3 h 30 min");
    const QString goingOn = QStringLiteral("29 March 2026, 08:00 to 12:00\n4 h, going on");
    const SessionPlan rows(sessions, first, QDate(2026, 3, 29));
    QCOMPARE(rows.describe(2, Hour, 0, now), overMidnight);
    QCOMPARE(rows.describe(1, 22 * Hour - 60, 60, now), overMidnight);
    QCOMPARE(rows.describe(1, 22 * Hour - 61, 60, now), QStringLiteral("2 March 2026\nOn for 2 h"));
    QCOMPARE(rows.describe(4, 0, 0, now), QStringLiteral("5 March 2026\nOff"));
    // The clock went from two to three: 8 o'clock is the seventh hour.
    QCOMPARE(rows.describe(28, 7 * Hour, 0, now), goingOn);
    QCOMPARE(rows.describe(28, 23 * Hour, 0, now), QString());
    QCOMPARE(rows.rowLabel(28), QStringLiteral("Sun 29 Mar (23 h)"));

    const SessionPlan columns(sessions, first, QDate(2026, 5, 1));
    QCOMPARE(columns.describe(28, 8 * Hour, 0, now), goingOn);
    const SessionPlan weeks(sessions, first, QDate(2028, 5, 1));
    QCOMPARE(weeks.describe(0, Hour, 0, now),
             QStringLiteral("1 March 2026 to 7 March 2026\nOn for 3 h 30 min\nFrom 01:00: on for "
                            "14 % of the time"));
}

void SessionPlanTest::laysOutLanes()
{
    const QRectF room(100, 10, 240, 300);
    const TimelineLayout rows(TimelineLayout::Lanes::Rows, 30, 24 * Hour, room);
    QCOMPARE(rows.laneAt({100, 10}), 0);
    QCOMPARE(rows.laneAt({339, 309}), 29);
    QCOMPARE(rows.laneAt({99, 50}), -1);
    QCOMPARE(rows.secondsAt({220, 50}), 12 * Hour);
    QCOMPARE(rows.bar(3, 6 * Hour, 12 * Hour).left(), 160.0);
    QCOMPARE(rows.bar(3, 6 * Hour, 6 * Hour).width(), 2.0);
    const TimelineLayout columns(TimelineLayout::Lanes::Columns, 60, 24 * Hour, room);
    QCOMPARE(columns.laneAt({104, 200}), 1);
    QCOMPARE(columns.secondsAt({104, 160}), 12 * Hour);
}

REGISTER_TEST(SessionPlanTest);
#include "SessionPlanTest.moc"
