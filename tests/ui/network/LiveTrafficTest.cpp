// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/FiguresModel.h"
#include "ui/UiDatabase.h"
#include "ui/network/LiveChart.h"
#include "ui/network/RecentTraffic.h"

#include <QTest>

namespace {

const QString Wired = QStringLiteral("AA");
const QString Wireless = QStringLiteral("BB");

/// The first second of summer time in Berlin: from 01:59:59 to 03:00:00 local time.
const qint64 Shift = QDateTime({2025, 3, 30}, {1, 0}, Qt::UTC).toSecsSinceEpoch();

SecondTraffic at(qint64 second, const QString& macAddress, qint64 download, qint64 upload = 0)
{
    return {.second = second,
            .macAddress = macAddress,
            .traffic = {.download = download, .upload = upload}};
}

} // namespace

/// The last minute and hour: from the table of seconds to the columns of the charts.
class LiveTrafficTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsEachWholeSecond();
    void showsTheMeanOfEachMinute();
    void forgetsTheHourBefore();
    void readsTheTableOfTheCountingConnection();
    void labelsLocalTimes();
};

void LiveTrafficTest::showsEachWholeSecond()
{
    LiveTraffic live;
    QCOMPARE(live.seconds(Shift, {}).constLast(), std::optional<TrafficTotals>());
    live.take({at(Shift - 3, Wired, 7), at(Shift - 3, Wireless, 5, 2), at(Shift - 1, Wired, 1)});
    live.take({at(Shift - 1, Wired, 9), at(Shift, Wired, 100)}); // Read again, and more by then.
    const LiveTraffic::Rates all = live.seconds(Shift, {});
    QCOMPARE(all.size(), 60);
    QCOMPARE(all.at(56), std::optional<TrafficTotals>()); // Nothing was known yet.
    QCOMPARE(all.at(57), std::optional(TrafficTotals{12, 2}));
    QCOMPARE(all.at(58), std::optional(TrafficTotals{}));
    QCOMPARE(all.at(59), std::optional(TrafficTotals{9, 0})); // The present second is not over.
    QCOMPARE(live.seconds(Shift, Wireless).at(57), std::optional(TrafficTotals{5, 2}));
    QCOMPARE(live.interfaces(), QStringList({Wired, Wireless}));
}

void LiveTrafficTest::showsTheMeanOfEachMinute()
{
    LiveTraffic live;
    const qint64 now = Shift + 10;
    live.take({at(Shift - 60, Wired, 600), at(Shift - 1, Wired, 6'000), at(Shift, Wired, 50, 20),
               at(Shift + 9, Wired, 50)});
    const LiveTraffic::Rates rates = live.minutes(now, {});
    QCOMPARE(rates.size(), 60);
    QCOMPARE(LiveTraffic::firstMinute(now), Shift - qint64{59} * 60);
    QCOMPARE(rates.at(57), std::optional<TrafficTotals>());
    QCOMPARE(rates.at(58), std::optional(TrafficTotals{110, 0}));
    QCOMPARE(rates.at(59), std::optional(TrafficTotals{10, 2})); // Ten seconds of it so far.
}

void LiveTrafficTest::forgetsTheHourBefore()
{
    LiveTraffic live;
    live.take({at(Shift, Wireless, 1)});
    live.take({at(Shift + 3'661, Wired, 1)});
    QCOMPARE(live.interfaces(), QStringList(Wired));
}

void LiveTrafficTest::readsTheTableOfTheCountingConnection()
{
    UiDatabase database;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const auto insert = [&database](qint64 second, const QString& macAddress, int download) {
        const QString time = QDateTime::fromSecsSinceEpoch(second, Qt::UTC)
                                 .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        QVERIFY(database.exec(
            QStringLiteral("INSERT INTO network_interface_bandwidth_second (\"time\", "
                           "\"download\", \"upload\", \"mac_address\") VALUES('%1', %2, 1, '%3')")
                .arg(time)
                .arg(download)
                .arg(macAddress)));
    };
    const qint64 minute = now - now % 60 - 600;
    insert(minute, Wired, 10);
    insert(minute + 59, Wired, 20);
    insert(minute + 59, Wireless, 40);
    insert(now - 1, Wired, 80);
    const auto read = RecentTraffic::read(database.connection(), std::nullopt);
    QVERIFY(read.has_value());
    QCOMPARE(read->size(), 3);
    QVERIFY(read->contains(at(minute, Wired, 30, 2)));
    QVERIFY(read->contains(at(minute, Wireless, 40, 1)));
    QVERIFY(read->contains(at(now - 1, Wired, 80, 1)));
    const QList<SecondTraffic> newest{at(now - 1, Wired, 80, 1)};
    QCOMPARE(RecentTraffic::read(database.connection(), now - 1), std::optional(newest));
}

void LiveTrafficTest::labelsLocalTimes()
{
    LiveTraffic live;
    live.take({at(Shift - 60, Wired, 60), at(Shift, Wired, 60)});
    LiveChart chart(LiveChart::Span::Hour);
    chart.setTraffic(live, Shift + 60, Wired);
    QCOMPARE(chart.model()->rows().size(), 3);
    const QString before = chart.model()->rows().at(0).constFirst().toString();
    const QString after = chart.model()->rows().at(1).constFirst().toString();
    QCOMPARE(before + QLatin1Char(' ') + after, QStringLiteral("01:59 03:00"));
}

REGISTER_TEST(LiveTrafficTest);
#include "LiveTrafficTest.moc"
