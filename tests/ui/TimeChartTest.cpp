// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/HourChart.h"
#include "ui/Theme.h"
#include "ui/TimeChart.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(Quantity)

class TimeChartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parts_data();
    void parts();
    void keepsEverySumAndGap();
    void axisReachesTheLargest_data();
    void axisReachesTheLargest();
    void choosesTheDaysUnderThePointer();
    void choosesByKeyboard();
    void keepsLabelsApart();
    void halvesAnHourThatComesTwice();
};

namespace {

using Days = QMap<QDate, double>;

/// What a chart draws in `colour` in one of its columns, from its left edge: pixels, from the
/// bottom up.
int drawn(const QImage& picture, int x, const QColor& colour)
{
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y) {
        pixels += picture.pixelColor(x, y) == colour ? 1 : 0;
    }
    return pixels;
}

} // namespace

void TimeChartTest::parts_data()
{
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<int>("weekStart");
    QTest::addColumn<QString>("ends"); // Of the first two spans, and the last one's start.
    QTest::addColumn<int>("count");
    const auto row = [](const char* name, const char* first, const char* last, int weekStart,
                        const char* ends, int count) {
        QTest::newRow(name) << QDate::fromString(QLatin1String(first), Qt::ISODate)
                            << QDate::fromString(QLatin1String(last), Qt::ISODate) << weekStart
                            << QString::fromLatin1(ends) << count;
    };
    row("92 days stay days", "2026-08-01", "2026-10-31", 1, "2026-08-01 2026-08-02 2026-10-31", 92);
    row("93 are weeks from Monday", "2026-08-01", "2026-11-01", 1,
        "2026-08-02 2026-08-09 2026-10-26", 14);
    row("or from Sunday", "2026-08-01", "2026-11-01", 7, "2026-08-01 2026-08-08 2026-11-01", 15);
    row("below two years weeks", "2024-11-22", "2026-11-20", 1, "2024-11-24 2024-12-01 2026-11-16",
        105);
    row("then months, cut off", "2024-01-15", "2026-02-10", 1, "2024-01-31 2024-02-29 2026-02-01",
        26);
}

void TimeChartTest::parts()
{
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(int, weekStart);
    const QList<DaySpan> spans = TimeSteps::spans(first, last, TimeSteps::forDays(first, last),
                                                  static_cast<Qt::DayOfWeek>(weekStart));
    QTEST(static_cast<int>(spans.size()), "count");
    QTEST((QStringList{Format::isoDay(spans.at(0).last), Format::isoDay(spans.at(1).last),
                       Format::isoDay(spans.constLast().first)})
              .join(u' '),
          "ends");
    QCOMPARE(spans.constFirst().first, first);
    QCOMPARE(spans.constLast().last, last);
}

void TimeChartTest::keepsEverySumAndGap()
{
    const QDate first(2024, 1, 15);
    const QDate last(2026, 2, 10);
    const Days values{{first.addDays(-1), 1000}, {first, 1},         {{2024, 1, 31}, 2},
                      {{2024, 2, 1}, 4},         {{2024, 4, 30}, 0}, {last, 8},
                      {last.addDays(1), 1000}};
    const QList<std::optional<double>> sums =
        TimeSteps::sums(TimeSteps::spans(first, last, TimeStep::Month, Qt::Monday), values);
    QCOMPARE(sums.at(0), std::optional(3.0));
    QCOMPARE(sums.at(1), std::optional(4.0));
    QCOMPARE(sums.at(2), std::nullopt);
    QCOMPARE(sums.at(3), std::optional(0.0));
    QCOMPARE(sums.constLast(), std::optional(8.0));
}

void TimeChartTest::axisReachesTheLargest_data()
{
    QTest::addColumn<Quantity>("quantity");
    QTest::addColumn<double>("largest");
    QTest::addColumn<QString>("labels");
    using Kind = Quantity::Kind;
    const auto row = [](const char* name, Kind kind, Format::Lengths lengths, double largest,
                        const char* labels) {
        QTest::newRow(name) << Quantity{{}, kind, lengths} << largest
                            << QString::fromLatin1(labels);
    };
    const auto metric = Format::Lengths::Metric;
    row("nothing", Kind::Count, metric, 0, "0 1");
    row("one", Kind::Count, metric, 1, "0 1");
    row("on a line", Kind::Count, metric, 2000, "0 500 1,000 1,500 2,000");
    row("above one", Kind::Count, metric, 2001, "0 1,000 2,000 3,000");
    row("many", Kind::Count, metric, 1.6e6, "0 0.5M 1.0M 1.5M 2.0M");
    row("thousands", Kind::Count, metric, 14e3, "0 5K 10K 15K");
    row("seconds", Kind::Duration, metric, 40, "0 15 30 45 s");
    row("hours", Kind::Duration, metric, 7.2 * 3600, "0 2 4 6 8 h");
    row("a day", Kind::Duration, metric, 24 * 3600, "0 6 12 18 24 h");
    row("a month", Kind::Duration, metric, 310 * 3600, "0 100 200 300 400 h");
    row("kilometres", Kind::Length, metric, 1.3e5 / 2.54, "0 0.5 1.0 1.5 km");
    row("feet", Kind::Length, Format::Lengths::Imperial, 120, "0 5 10 ft");
}

void TimeChartTest::axisReachesTheLargest()
{
    QFETCH(Quantity, quantity);
    QFETCH(double, largest);
    const AxisSteps steps = axisSteps(quantity, largest, 4);
    QVERIFY(steps.top() > largest * 0.999999);
    QStringList labels;
    for (int line = 0; line <= steps.count; ++line) {
        labels.append(steps.label(line));
    }
    if (!steps.unit.isEmpty()) {
        labels.append(steps.unit);
    }
    QTEST(labels.join(u' '), "labels");
}

void TimeChartTest::choosesTheDaysUnderThePointer()
{
    const QDate first(2026, 11, 16);
    TimeChart chart;
    chart.resize(400, 200);
    chart.setDays(first, first.addDays(6), {.name = QStringLiteral("Keys")},
                  {{.name = QStringLiteral("Keys"),
                    .values = {{first, 4}, {first.addDays(2), 1000}, {first.addDays(3), 1}}}});
    const QImage picture = chart.grab().toImage();
    const QColor accent = Theme::colours(chart.palette()).accent;
    const QSignalSpy clicked(&chart, &TimeChart::daysClicked);
    // Wherever a bar is drawn, a click finds its day; a small one is seen nevertheless.
    QMap<QDate, int> highest;
    for (int x = 0; x < picture.width(); ++x) {
        const int high = drawn(picture, x, accent);
        if (high > 0) {
            QTest::mouseClick(&chart, Qt::LeftButton, {}, {x, 170});
            int& known = highest[clicked.constLast().constFirst().toDate()];
            known = std::max(known, high);
        }
    }
    QCOMPARE(highest.keys(), (QList<QDate>{first, first.addDays(2), first.addDays(3)}));
    QVERIFY(highest.value(first.addDays(2)) > 100);
    QVERIFY(highest.value(first.addDays(3)) == 1 || highest.value(first.addDays(3)) == 2);

    // Neither a click beside the plot nor one that ends over another bar.
    const auto before = clicked.size();
    QTest::mouseClick(&chart, Qt::LeftButton, {}, {2, 100});
    QTest::mouseClick(&chart, Qt::RightButton, {}, {200, 100});
    QTest::mousePress(&chart, Qt::LeftButton, {}, {100, 100});
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, {300, 100});
    QCOMPARE(clicked.size(), before);
}

void TimeChartTest::choosesByKeyboard()
{
    const QDate first(2026, 1, 1);
    const QDate last(2026, 11, 21);
    TimeChart chart;
    chart.setDays(first, last, {.name = QStringLiteral("Keys")},
                  {{.name = QStringLiteral("Keys"), .values = {{{2026, 11, 14}, 12'403}}}});
    QCOMPARE(chart.step(), TimeStep::Week);
    chart.show();
    chart.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&chart));
    chart.setFocus(Qt::TabFocusReason);
    const QSignalSpy clicked(&chart, &TimeChart::daysClicked);
    QTest::keyClick(&chart, Qt::Key_Return);
    QTest::keyClick(&chart, Qt::Key_Right);
    QTest::keyClick(&chart, Qt::Key_Left);
    QCOMPARE(chart.accessibleDescription(),
             QStringLiteral("9 November 2026 to 15 November 2026\nKeys: 12,403"));
    QTest::keyClick(&chart, Qt::Key_Enter);
    QTest::keyClick(&chart, Qt::Key_Home);
    QVERIFY(chart.accessibleDescription().endsWith(QStringLiteral("nothing counted")));
    QTest::keyClick(&chart, Qt::Key_Space);
    QCOMPARE(clicked.size(), 3);
    QCOMPARE(clicked.at(0), (QVariantList{QDate(2026, 11, 16), last}));
    QCOMPARE(clicked.at(1), (QVariantList{QDate(2026, 11, 9), QDate(2026, 11, 15)}));
    QCOMPARE(clicked.at(2), (QVariantList{first, QDate(2026, 1, 4)}));
}

void TimeChartTest::keepsLabelsApart()
{
    // Seven lines that end at one point: seven labels, one below the other.
    const QDate first(2026, 11, 1);
    TimeChart chart;
    chart.resize(400, 200);
    QList<TimeChart::DaySeries> series;
    for (int i = 0; i < 7; ++i) {
        series.append({.name = QStringLiteral("Name"),
                       .colour = i,
                       .values = {{first, 10}, {first.addDays(1), 20}}});
    }
    chart.setDays(first, first.addDays(1), {.name = QStringLiteral("Keys")}, series);
    const QImage picture = chart.grab().toImage();
    const int line = QFontMetrics(Theme::font(Theme::TextSize::Caption)).height();
    const QColor ground = picture.pixelColor(picture.width() - 1, 0);
    int labels = 0;
    int emptyRows = line;
    for (int y = line + Theme::Rhythm / 2; y < picture.height(); ++y) {
        bool isEmpty = true;
        for (int x = picture.width() - line; x < picture.width(); ++x) {
            isEmpty = isEmpty && picture.pixelColor(x, y) == ground;
        }
        labels += !isEmpty && emptyRows > 0 ? 1 : 0;
        emptyRows = isEmpty ? emptyRows + 1 : 0;
    }
    QCOMPARE(labels, 7);
}

void TimeChartTest::halvesAnHourThatComesTwice()
{
    HourChart chart;
    chart.resize(800, 200);
    const QDate day(2026, 10, 25);
    chart.setDay(day, {.name = QStringLiteral("Keys")}, {{2, 100}, {7, 50}},
                 day.addDays(1).startOfDay());
    QCOMPARE(chart.accessibleDescription(),
             QStringLiteral("25 October 2026, 02:00 to 03:00, which comes twice\nKeys in both: 100"
                            "\n25 October 2026, 07:00 to 08:00\nKeys: 50"));
    const QImage picture = chart.grab().toImage();
    const QColor accent = Theme::colours(chart.palette()).accent;
    QList<int> bars; // Their heights.
    for (int x = 1; x < picture.width(); ++x) {
        const int high = drawn(picture, x, accent);
        if (high > 0 && drawn(picture, x - 1, accent) == 0) {
            bars.append(0);
        }
        if (high > 0) {
            bars.last() = std::max(bars.constLast(), high);
        }
    }
    QCOMPARE(bars.size(), 3);
    QVERIFY(bars.at(0) > 100);
    QCOMPARE(bars.at(0), bars.at(1));
    QCOMPARE(bars.at(1), bars.at(2));
}

REGISTER_TEST(TimeChartTest);
#include "TimeChartTest.moc"
