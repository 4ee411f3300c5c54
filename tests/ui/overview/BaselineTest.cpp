// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/overview/Baseline.h"

#include <QTest>

class BaselineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesComparableDays_data();
    void choosesComparableDays();
    void cutsAtThePresentTime();
    void changes_data();
    void changes();
};

namespace {

const QDate Today(2026, 11, 21);

QString text(const std::optional<Baseline>& baseline)
{
    return !baseline ? QStringLiteral("none")
                     : QStringLiteral("%1 %2%3").arg(Format::isoDay(baseline->days.first),
                                                     Format::isoDay(baseline->days.last),
                                                     QLatin1String(baseline->isCut ? " cut" : ""));
}

} // namespace

void BaselineTest::choosesComparableDays_data()
{
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("mean");
    const auto row = [](const char* name, const QDate& first, const QDate& last, const char* before,
                        const char* mean = "none") {
        QTest::newRow(name) << first << last << QString::fromLatin1(before)
                            << QString::fromLatin1(mean);
    };
    row("today", Today, Today, "2026-11-14 2026-11-14 cut", "2026-10-22 2026-11-20 cut");
    row("yesterday", Today.addDays(-1), Today.addDays(-1), "2026-11-19 2026-11-19");
    row("seven days", Today.addDays(-6), Today, "2026-11-08 2026-11-14 cut");
    row("a month gone by", {2026, 10, 1}, {2026, 10, 31}, "2026-08-31 2026-09-30");
    row("a year still to end", {2026, 1, 1}, {2026, 12, 31}, "2025-02-10 2025-12-31 cut");
    row("all time", {}, Today, "none");
    row("days to come", Today.addDays(1), Today.addDays(2), "none");
}

void BaselineTest::choosesComparableDays()
{
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    const HistoryScope scope{first, last, std::nullopt};
    QTEST(text(Baselines::before(scope, Today)), "before");
    QTEST(text(Baselines::mean(scope, Today)), "mean");
}

void BaselineTest::cutsAtThePresentTime()
{
    const auto hour = [](int number, qint64 keys) {
        return HourTotals{number, Totals{.keys = keys, .uptimeMs = 3'600'000}};
    };
    Baseline baseline{.totals = {.keys = 1000, .uptimeMs = qint64{4} * 3'600'000},
                      .cutDays = {hour(8, 100), hour(14, 400), hour(15, 300), hour(23, 200)}};
    const QTime quarterPast(14, 15);
    QCOMPARE(baseline.value(Measure::Keys, quarterPast), 1000.0);
    baseline.isCut = true;
    QCOMPARE(baseline.value(Measure::Keys, quarterPast), 200.0);
    QCOMPARE(baseline.value(Measure::Uptime, quarterPast), 1.25 * 3600);
    QCOMPARE(baseline.value(Measure::Keys, {0, 0}), 0.0);
    QCOMPARE(baseline.value(Measure::Keys, {15, 0}), 500.0);
    baseline.countedDays = 4;
    QCOMPARE(baseline.value(Measure::Keys, quarterPast), 50.0);
}

void BaselineTest::changes_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("before");
    QTest::addColumn<QString>("text");
    QTest::newRow("more") << 112.4 << 100.0 << QStringLiteral("▲ +12 %");
    QTest::newRow("less") << 0.0 << 100.0 << QStringLiteral("▼ −100 %");
    QTest::newRow("same") << 1002.0 << 1000.0 << QStringLiteral("= ±0 %");
    QTest::newRow("new") << 5.0 << 0.0 << QStringLiteral("▲ new");
    QTest::newRow("nothing") << 0.0 << 0.0 << QStringLiteral("= ±0 %");
    QTest::newRow("beyond all bounds") << 1e6 << 1.0 << QStringLiteral("▲ > +999 %");
}

void BaselineTest::changes()
{
    QFETCH(double, value);
    QFETCH(double, before);
    QTEST(Change::between(value, before).text(), "text");
}

REGISTER_TEST(BaselineTest);
#include "BaselineTest.moc"
