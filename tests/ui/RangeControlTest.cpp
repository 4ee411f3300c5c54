// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/DateRange.h"
#include "ui/DaysDialog.h"
#include "ui/ProfileFilter.h"
#include "ui/RangeControl.h"

#include <QAction>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/// The controls above the views: which days, and whose counts.
class RangeControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangesHoldTheirDays_data();
    void rangesHoldTheirDays();
    void leadsBackThroughTheRangesBefore();
    void takesTwoDaysInEitherOrder();
    void dropsAProfileThatIsGone();
};

void RangeControlTest::rangesHoldTheirDays_data()
{
    QTest::addColumn<DateRange>("range");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QString>("days");
    const auto row = [](const char* name, const DateRange& range, const QDate& first,
                        const QDate& last, const char* days) {
        QTest::newRow(name) << range << first << last << QString::fromUtf8(days);
    };
    using Preset = DateRange::Preset;
    const QDate today(2024, 3, 1);
    row("today", Preset::Today, today, today, "Friday, 1 March 2024");
    row("yesterday", Preset::Yesterday, {2024, 2, 29}, {2024, 2, 29}, "Thursday, 29 February 2024");
    row("7 days", Preset::Days7, {2024, 2, 24}, today, "24 February – 1 March 2024");
    row("90 days", Preset::Days90, {2023, 12, 3}, today, "3 December 2023 – 1 March 2024");
    row("year", Preset::ThisYear, {2024, 1, 1}, today, "1 January – 1 March 2024");
    row("all", Preset::AllTime, {}, today, "Every day until 1 March 2024");
    row("fixed", DateRange::between({2024, 2, 9}, {2024, 2, 3}), {2024, 2, 3}, {2024, 2, 9},
        "3 – 9 February 2024");
}

void RangeControlTest::rangesHoldTheirDays()
{
    QFETCH(DateRange, range);
    const QDate today(2024, 3, 1);
    QTEST(range.first(today), "first");
    QTEST(range.last(today), "last");
    QTEST(range.days(today), "days");
}

void RangeControlTest::leadsBackThroughTheRangesBefore()
{
    RangeControl control;
    const QSignalSpy changed(&control, &RangeControl::rangeChanged);
    control.select(DateRange::Preset::ThisYear);
    control.select(DateRange::Preset::ThisYear); // No step of its own.
    control.select(DateRange::between({2024, 2, 3}, {2024, 2, 3}));
    control.goBack();
    QCOMPARE(control.range(), DateRange(DateRange::Preset::ThisYear));
    control.goBack();
    QCOMPARE(control.range(), DateRange(DateRange::Preset::Today));
    control.goBack();
    QCOMPARE(changed.size(), 4);
}

void RangeControlTest::takesTwoDaysInEitherOrder()
{
    RangeControl control;
    control.show();
    control.select(DateRange::Preset::AllTime);
    control.findChild<QAction*>(QStringLiteral("chooseDays"))->trigger();
    auto* dialog = control.findChild<DaysDialog*>();
    QVERIFY(dialog != nullptr);
    dialog->findChild<QDateEdit*>(QStringLiteral("firstDay"))->setDate({2024, 2, 9});
    dialog->findChild<QDateEdit*>(QStringLiteral("lastDay"))->setDate({2024, 2, 3});
    Q_EMIT dialog->findChild<QDialogButtonBox*>()->accepted();
    QCOMPARE(control.range(), DateRange::between({2024, 2, 3}, {2024, 2, 9}));
}

void RangeControlTest::dropsAProfileThatIsGone()
{
    ProfileFilter filter;
    filter.setProfiles({{0, QStringLiteral("General")}});
    QVERIFY(filter.isHidden());
    filter.setProfiles({{0, QStringLiteral("General")}, {3, QStringLiteral("R&D")}});
    QVERIFY(!filter.isHidden());
    filter.select(3);
    QCOMPARE(filter.text(), QStringLiteral("R&&D"));
    const QSignalSpy changed(&filter, &ProfileFilter::profileChanged);
    filter.setProfiles({{0, QStringLiteral("General")}, {4, QStringLiteral("Games")}});
    QCOMPARE(changed.size(), 1);
    QVERIFY(!filter.selected());
    QCOMPARE(filter.menu()->actions().constFirst()->isChecked(), true);
}

REGISTER_TEST(RangeControlTest);
#include "RangeControlTest.moc"
