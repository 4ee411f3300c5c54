// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/RingPace.h"
#include "support/TestRegistry.h"

#include <QTest>

using std::chrono::microseconds;

class RingPaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void followsTheFilledFrames_data()
    {
        QTest::addColumn<int>("lastSleep"); // In microseconds.
        QTest::addColumn<std::size_t>("filled");
        QTest::addColumn<int>("sleep");
        const auto add = [](const char* name, int lastSleep, std::size_t filled, int sleep) {
            QTest::newRow(name) << lastSleep << filled << sleep;
        };
        add("silence", 20'000, 0, 20'000);
        add("a quarter", 20'000, 512, 20'000);
        add("half", 20'000, 1024, 10'000);
        add("nearly full", 10'000, 2000, 2'560);
        add("full", 10'000, 2048, 0);
        add("still full", 0, 2048, 0);
        add("nearly full without a sleep", 0, 2000, 128);
        add("calmer", 2'000, 400, 2'560);
        add("a pause in the flood", 2'000, 0, 4'000);
        add("a pause after a full ring", 0, 0, 1'000);
    }

    void followsTheFilledFrames()
    {
        QFETCH(const int, lastSleep);
        QFETCH(const std::size_t, filled);
        QTEST(static_cast<int>(RingPace::nextSleep(microseconds(lastSleep), filled).count()),
              "sleep");
    }

    /// Whatever the first sleep was: it does not swing between a long and a short one.
    void settlesAtAQuarterOfTheRing()
    {
        for (const int perMillisecond : {26, 50, 100, 200, 400}) {
            for (const int first : {0, 500, 10'000, 20'000}) {
                microseconds sleep(first);
                for (int walk = 0; walk < 20; ++walk) {
                    const auto filled =
                        static_cast<std::size_t>(sleep.count() * perMillisecond) / 1000;
                    sleep = RingPace::nextSleep(sleep, filled);
                }
                const auto settled = static_cast<double>(sleep.count() * perMillisecond) / 1000;
                QVERIFY2(qAbs(settled - 512) < 5, qPrintable(QString::number(settled)));
            }
        }
    }
};

REGISTER_TEST(RingPaceTest);

#include "RingPaceTest.moc"
