// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeZurgeService.h"
#include "account/AutoZurging.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <array>
#include <numeric>

class AutoZurgingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void zurgesAtAThreshold_data();
    void zurgesAtAThreshold();
    void takesADefaultForNoThreshold();
    void zurgesByTheClock_data();
    void zurgesByTheClock();
    void triesAgainWhatWasRefused();
    void isSilentWithoutAnAccount();

private:
    void set(const SettingKey<bool>& enabled, const SettingKey<int>& unit, int value);
    void check(const QDateTime& now);
    void answer();

    std::unique_ptr<TestDatabase> m_database;
    ZurgeLedger m_ledger;
    std::unique_ptr<FakeZurgeService> m_service;
    std::unique_ptr<LocalStats> m_stats;
    std::unique_ptr<AutoZurging> m_zurging;
    QDateTime m_now;
};

void AutoZurgingTest::init()
{
    m_zurging.reset();
    m_stats.reset();
    m_database.reset();
    m_database = std::make_unique<TestDatabase>();
    m_ledger = {};
    m_now = QDateTime(QDate(2026, 11, 21), QTime(12, 0)); // A Saturday.
    m_service = std::make_unique<FakeZurgeService>(m_ledger);
    const auto now = [this] { return m_now; };
    m_stats = std::make_unique<LocalStats>(nullptr, systemMachineId, now);
    m_stats->setup(m_database->directory());
    m_stats->setZurgeService(m_service->service());
    m_stats->setIdentity({1, 1, {}, {}, {}, QStringLiteral("hash")});
    m_stats->setZurgeToken(ZurgeLedger::text(1));
    using namespace SettingsKeys;
    Settings::instance().setValue(WorkOffline, false);
    for (const auto* key : {&AutoZurgeKeysEnabled, &AutoZurgeClicksEnabled, &AutoZurgeUptimeEnabled,
                            &AutoZurgeDownloadEnabled, &AutoZurgeUploadEnabled}) {
        Settings::instance().setValue(*key, false);
    }
    m_zurging = std::make_unique<AutoZurging>(*m_stats, nullptr, now);
}

void AutoZurgingTest::set(const SettingKey<bool>& enabled, const SettingKey<int>& unit, int value)
{
    Settings::instance().setValue(enabled, true);
    Settings::instance().setValue(unit, value);
    m_zurging->refreshSettings();
}

void AutoZurgingTest::check(const QDateTime& now)
{
    m_now = now;
    m_zurging->checkForZurge();
}

void AutoZurgingTest::answer()
{
    m_service->take();
    m_stats->processZurgeResponse(200, m_service->zurgeAnswer(), {});
}

void AutoZurgingTest::zurgesAtAThreshold_data()
{
    QTest::addColumn<QString>("counter");
    QTest::addColumn<quint64>("unit"); ///< Of the counter, in one of the threshold.
    for (const char* counter : {"keys", "clicks"}) {
        QTest::newRow(counter) << QString::fromLatin1(counter) << Q_UINT64_C(1);
    }
    QTest::newRow("uptime") << QStringLiteral("uptime") << Q_UINT64_C(3'600'000);
    QTest::newRow("download") << QStringLiteral("download") << BytesPerMiB;
    QTest::newRow("upload") << QStringLiteral("upload") << BytesPerMiB;
}

void AutoZurgingTest::zurgesAtAThreshold()
{
    QFETCH(QString, counter);
    QFETCH(quint64, unit);
    using namespace SettingsKeys;
    constexpr int threshold = 1000;
    const auto increase = [&](quint64 amount) {
        if (counter == QLatin1String("keys")) {
            m_stats->increaseKeys(static_cast<int>(amount));
        } else if (counter == QLatin1String("clicks")) {
            m_stats->increaseClicks(static_cast<int>(amount));
        } else if (counter == QLatin1String("uptime")) {
            m_stats->increaseUptime(static_cast<qint64>(amount));
        } else {
            const bool isDownload = counter == QLatin1String("download");
            m_stats->increaseBandwidth(isDownload ? amount : 0, isDownload ? 0 : amount);
        }
    };
    const std::array rules{
        std::tuple(QStringLiteral("keys"), &AutoZurgeKeysEnabled, &AutoZurgeKeysUnit),
        std::tuple(QStringLiteral("clicks"), &AutoZurgeClicksEnabled, &AutoZurgeClicksUnit),
        std::tuple(QStringLiteral("uptime"), &AutoZurgeUptimeEnabled, &AutoZurgeUptimeUnit),
        std::tuple(QStringLiteral("download"), &AutoZurgeDownloadEnabled, &AutoZurgeDownloadUnit),
        std::tuple(QStringLiteral("upload"), &AutoZurgeUploadEnabled, &AutoZurgeUploadUnit)};
    for (const auto& [name, enabled, key] : rules) {
        if (name == counter) {
            set(*enabled, *key, threshold);
        }
    }
    const LogCapture log;
    increase(threshold * unit - 1);
    check(m_now);
    QCOMPARE(m_service->requests.size(), 0);
    increase(1);
    check(m_now);
    QCOMPARE(m_service->requests.size(), 1);
    QVERIFY(m_service->requests.constFirst().automatic);
    QVERIFY(log.contains(QStringLiteral("Autozurge on %1: 1000").arg(counter)));

    // What was counted beyond the threshold stays, up to once more as much.
    answer();
    increase(quint64{2} * threshold * unit);
    check(m_now.addSecs(60));
    const ClientCommunication::ZurgeRequest& request = m_service->requests.constLast();
    const quint64 sent = request.keys + request.clicks + request.uptimeSeconds / 3600 +
                         request.downloadMiB + request.uploadMiB;
    QCOMPARE(sent, 1000U);
    QCOMPARE(m_service->requests.size(), 2);
}

void AutoZurgingTest::takesADefaultForNoThreshold()
{
    set(SettingsKeys::AutoZurgeKeysEnabled, SettingsKeys::AutoZurgeKeysUnit, 0);
    m_stats->increaseKeys(999);
    check(m_now);
    QCOMPARE(m_service->requests.size(), 0);
    m_stats->increaseKeys(1);
    check(m_now);
    QCOMPARE(m_service->requests.size(), 1);
}

void AutoZurgingTest::zurgesByTheClock_data()
{
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("weekday");
    QTest::addColumn<QStringList>("zurges"); ///< At which of the checks, every ten minutes.
    QTest::newRow("each hour") << 24 << 0
                               << QStringList{
                                      QStringLiteral("Sat 22:00"), QStringLiteral("Sat 23:00"),
                                      QStringLiteral("Sun 00:00"), QStringLiteral("Sun 01:00")};
    QTest::newRow("each hour on Sundays")
        << 24 << 7 << QStringList{QStringLiteral("Sun 00:00"), QStringLiteral("Sun 01:00")};
    QTest::newRow("once a day") << 23 << 0 << QStringList{QStringLiteral("Sat 23:00")};
    QTest::newRow("at midnight on Sundays") << 0 << 7 << QStringList{QStringLiteral("Sun 00:00")};
    QTest::newRow("on Mondays") << 23 << 1 << QStringList();
}

void AutoZurgingTest::zurgesByTheClock()
{
    QFETCH(int, hour);
    QFETCH(int, weekday);
    Settings::instance().setValue(SettingsKeys::AutoZurgeDayHour, weekday);
    set(SettingsKeys::AutoZurgeTimeEnabled, SettingsKeys::AutoZurgeTimeHour, hour);
    QStringList zurges;
    const QDateTime begin(QDate(2026, 11, 21), QTime(22, 0));
    for (int minutes = 0; minutes < 240; minutes += 10) {
        m_stats->increaseKeys(1);
        check(begin.addSecs(qint64{60} * minutes));
        if (!m_service->requests.isEmpty()) {
            zurges << QLocale::c().toString(m_now, QStringLiteral("ddd HH:mm"));
            answer();
            m_service->requests.clear();
        }
    }
    QTEST(zurges, "zurges");
    QVERIFY(!Settings::instance().value(SettingsKeys::AutoZurgeDidDate));
}

void AutoZurgingTest::triesAgainWhatWasRefused()
{
    set(SettingsKeys::AutoZurgeTimeEnabled, SettingsKeys::AutoZurgeTimeHour, 24);
    m_stats->increaseKeys(1);
    Settings::instance().setValue(SettingsKeys::WorkOffline, true);
    check(m_now);
    Settings::instance().setValue(SettingsKeys::WorkOffline, false);
    check(m_now.addSecs(60));
    QCOMPARE(m_service->requests.size(), 1);
    // The same hour of another day is another hour.
    answer();
    m_stats->increaseKeys(1);
    check(m_now.addDays(1));
    QCOMPARE(m_service->requests.size(), 2);
}

void AutoZurgingTest::isSilentWithoutAnAccount()
{
    set(SettingsKeys::AutoZurgeKeysEnabled, SettingsKeys::AutoZurgeKeysUnit, 1);
    m_stats->signOut();
    m_stats->increaseKeys(5);
    const LogCapture log;
    check(m_now);
    QCOMPARE(log.text(), QString());
    QCOMPARE(m_service->requests.size(), 0);
}

REGISTER_TEST(AutoZurgingTest);
#include "AutoZurgingTest.moc"
