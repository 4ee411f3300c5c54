// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/LiveRates.h"
#include "support/TestRegistry.h"

#include <QTest>

using std::chrono::milliseconds;

class LiveRatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sinksToZero();
    void knowsTrafficOnlyWhileWatched();
};

void LiveRatesTest::sinksToZero()
{
    milliseconds now{1'000'250};
    LiveRates rates([&now] { return now; });
    QCOMPARE(rates.keysPerSecond(), 0.0);
    for (int second = 0; second < 60; ++second, now += milliseconds(1'000)) {
        rates.noteKey();
        rates.noteKey();
        rates.noteKey();
        rates.noteClick();
    }
    now -= milliseconds(1'000);
    QCOMPARE(rates.keysPerSecond(), 3.0);
    QCOMPARE(rates.clicksPerSecond(), 1.0);
    now += milliseconds(2'500);
    QCOMPARE(rates.keysPerSecond(), 1.8);
    now += milliseconds(2'500);
    QCOMPARE(rates.keysPerSecond(), 0.0);
    now += milliseconds(86'400'000);
    rates.noteKey();
    QCOMPARE(rates.keysPerSecond(), 0.2);
    QCOMPARE(rates.clicksPerSecond(), 0.0);
}

void LiveRatesTest::knowsTrafficOnlyWhileWatched()
{
    milliseconds now{0};
    LiveRates rates([&now] { return now; });
    rates.noteKey();
    QVERIFY(!rates.downloadPerSecond() && !rates.uploadPerSecond());
    rates.noteTraffic(5'000'000'000, 0);
    QCOMPARE(rates.downloadPerSecond(), std::optional(1e9));
    now += milliseconds(4'000);
    rates.noteTraffic(0, 10);
    now += milliseconds(4'000);
    QCOMPARE(rates.downloadPerSecond(), std::optional(0.0));
    QCOMPARE(rates.uploadPerSecond(), std::optional(2.0));
    now += milliseconds(1'000);
    QVERIFY(!rates.downloadPerSecond() && !rates.uploadPerSecond());
}

REGISTER_TEST(LiveRatesTest);
#include "LiveRatesTest.moc"
