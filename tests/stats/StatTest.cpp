// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/Stat.h"
#include "support/FakeSystem.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <utility>

namespace {

/// Notes its updates in order, a letter each.
class NotingStat : public Stat
{
public:
    using Stat::Stat;

    int getUpdateMilliSecondMod() const override { return 90'000; }

    int getUpdateMilliSecondModUI() const override { return 1'000; }

    int getFrequentUpdateMilliSecond() const override { return 5'000; }

    int getFrequentUpdateMilliSecondUI() const override { return 500; }

    int getInfrequentUpdateMilliSecond() const override { return 120'000; }

    void onEnabled() override { noted += QStringLiteral("+"); }

    void onDisabled() override { noted += QStringLiteral("-"); }

    void doUpdate(QDateTime, bool ui) override { note(QStringLiteral("n"), ui); }

    void doFrequentUpdate(QDateTime, bool ui) override { note(QStringLiteral("f"), ui); }

    void doInfrequentUpdate(QDateTime, bool ui) override { note(QStringLiteral("i"), ui); }

    QString takeNoted() { return std::exchange(noted, {}); }

    QString noted;

private:
    void note(const QString& letter, bool ui) { noted += ui ? letter.toUpper() : letter; }
};

} // namespace

class StatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void updatesWhenDue_data();
    void updatesWhenDue();
    void switchesOnAndOffOnce();
    void updatesAfterTheClockWasSetBack();

private:
    const QDateTime m_start{QDate(2026, 3, 14), QTime(12, 0)};
    FakeSystem m_system;
};

void StatTest::updatesWhenDue_data()
{
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<bool>("ui");
    QTest::addColumn<QString>("updates");
    // Frequent (f) before normal (n) before infrequent (i); in capitals while a window shows
    // figures.
    QTest::newRow("same moment") << Q_INT64_C(0) << false << QString();
    QTest::newRow("frequent, early") << Q_INT64_C(4'999) << false << QString();
    QTest::newRow("frequent") << Q_INT64_C(5'000) << false << QStringLiteral("f");
    QTest::newRow("window, early") << Q_INT64_C(499) << true << QString();
    QTest::newRow("window, frequent") << Q_INT64_C(500) << true << QStringLiteral("F");
    QTest::newRow("window, normal") << Q_INT64_C(1'000) << true << QStringLiteral("FN");
    QTest::newRow("below the longest wait") << Q_INT64_C(59'999) << false << QStringLiteral("f");
    QTest::newRow("longest wait") << Q_INT64_C(60'000) << false << QStringLiteral("fn");
    QTest::newRow("infrequent, early") << Q_INT64_C(119'999) << false << QStringLiteral("fn");
    QTest::newRow("infrequent") << Q_INT64_C(120'000) << false << QStringLiteral("fni");
    QTest::newRow("clock behind") << Q_INT64_C(-10'000) << true << QString();
    // 2^31 ms is negative as a 32-bit number; the infrequent update counts with 64 bits.
    QTest::newRow("24.9 days") << (Q_INT64_C(1) << 31) << false << QStringLiteral("i");
    QTest::newRow("49.7 days") << (Q_INT64_C(1) << 32) + 60'000 << false << QStringLiteral("fni");
}

void StatTest::updatesWhenDue()
{
    QFETCH(qint64, elapsedMs);
    QFETCH(bool, ui);
    NotingStat stat(&m_system, nullptr);
    stat.update(m_start);
    QCOMPARE(stat.takeNoted(), QStringLiteral("fni"));

    stat.setUiMode(ui);
    stat.update(m_start.addMSecs(elapsedMs));
    QTEST(stat.noted, "updates");
}

void StatTest::switchesOnAndOffOnce()
{
    NotingStat stat(&m_system, nullptr);
    stat.setEnabled(false);
    stat.setEnabled(true);
    stat.setEnabled(true);
    stat.setEnabled(false);
    QCOMPARE(stat.noted, QStringLiteral("+-"));
}

void StatTest::updatesAfterTheClockWasSetBack()
{
    NotingStat stat(&m_system, nullptr);
    stat.update(m_start);
    stat.restartIntervals();
    stat.takeNoted();
    stat.update(m_start.addDays(-3));
    QCOMPARE(stat.noted, QStringLiteral("fni"));
}

REGISTER_TEST(StatTest);
#include "StatTest.moc"
