// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"
#include "account/OnlineFigures.h"
#include "clientapi/ClientApiResponses.h"
#include "profiles/ProfileManager.h"
#include "stats/LiveRates.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <cmath>
#include <limits>

using std::chrono::milliseconds;

namespace {

constexpr qint64 Largest = std::numeric_limits<qint64>::max();

/// As it goes to a client, digit by digit.
QByteArray written(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// The same of a text that is laid out for reading.
QByteArray compact(const QByteArray& json)
{
    return written(QJsonDocument::fromJson(json).object());
}

} // namespace

/// The profiles "Work" (1) and "Games" (2), in a database of their own for each test. Of the time
/// when "Work" was made, there is none in the zone of the tests.
class ClientApiResponsesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void tellsWhatTheAccountHolds();
    void boundsWhatTheSettingsHold_data();
    void boundsWhatTheSettingsHold();
    void tellsRates();
    void tellsUnzurgedCounts();
    void keepsTheLargestCounts();
    void listsProfiles();

private:
    std::unique_ptr<TestDatabase> m_database;
    std::unique_ptr<LocalStats> m_localStats;
    std::unique_ptr<ProfileManager> m_profiles;
    std::unique_ptr<LiveRates> m_rates;
    std::unique_ptr<ClientApiResponses> m_responses;
};

void ClientApiResponsesTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    m_localStats = std::make_unique<LocalStats>();
    m_profiles = std::make_unique<ProfileManager>();
    m_rates = std::make_unique<LiveRates>([] { return milliseconds(10'000); });
    m_responses = std::make_unique<ClientApiResponses>(*m_localStats, *m_rates, *m_profiles);
    QVERIFY(m_database->exec(
        QStringLiteral("INSERT INTO profiles (name, created_at, updated_at) VALUES "
                       "('Work', '2024-03-31 02:30:00', '2024-05-08 10:47:09'), "
                       "('Games', NULL, 'yesterday')")));
}

void ClientApiResponsesTest::cleanup()
{
    m_responses.reset();
    m_rates.reset();
    m_profiles.reset();
    m_localStats.reset();
    m_database.reset();
}

void ClientApiResponsesTest::tellsWhatTheAccountHolds()
{
    OnlineFigures::store(OnlineTotals{.keys = 1'234,
                                      .clicks = 56,
                                      .download = 489,
                                      .upload = 2'048,
                                      .uptime = 123'456,
                                      .scrolls = 7'890,
                                      .distanceMiles = 115.6});
    OnlineFigures::store(OnlineRanks{.keys = 1'234,
                                     .clicks = 123,
                                     .download = 1,
                                     .upload = 11,
                                     .uptime = 22,
                                     .scrolls = 3,
                                     .distance = 4});
    QCOMPARE(written(ClientApiResponses::formatAccountTotalStats()), compact(R"({
        "keys": 1234, "keys_formatted": "1,234",
        "clicks": 56, "clicks_formatted": "56",
        "download": 512753664, "download_formatted": "489,00MB",
        "upload": 2147483648, "upload_formatted": "2,00GB",
        "uptime": 123456, "uptime_formatted": "1d, 10h, 17m, 36s",
        "scrolls": 7890, "scrolls_formatted": "7,890",
        "distance_miles": 116, "distance_formatted": "116m",
        "ranks": {
            "rank_keys": "1234", "rank_keys_formatted": "1,234th",
            "rank_clicks": "123", "rank_clicks_formatted": "123rd",
            "rank_download": "1", "rank_download_formatted": "1st",
            "rank_upload": "11", "rank_upload_formatted": "11th",
            "rank_uptime": "22", "rank_uptime_formatted": "22nd",
            "rank_scrolls": "3", "rank_scrolls_formatted": "3rd",
            "rank_distance": "4", "rank_distance_formatted": "4th"
        }})"));
}

void ClientApiResponsesTest::boundsWhatTheSettingsHold_data()
{
    QTest::addColumn<qint64>("mebibytes");
    QTest::addColumn<double>("miles");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("bytesText");
    QTest::addColumn<qint64>("wholeMiles");
    constexpr qint64 mebibyte = 1'048'576;
    constexpr qint64 most = Largest / mebibyte;
    QTest::newRow("nothing") << qint64(0) << 0.0 << qint64(0) << QStringLiteral("0,00B")
                             << qint64(0);
    QTest::newRow("beyond 2^53 bytes") << qint64(8'589'934'593) << 0.4 << 8'589'934'593 * mebibyte
                                       << QStringLiteral("8,00PB") << qint64(0);
    QTest::newRow("as many as fit") << most << 9e15 << most * mebibyte << QStringLiteral("8,00EB")
                                    << qint64(9'000'000'000'000'000);
    QTest::newRow("more than fit") << most + 1 << 1e300 << most * mebibyte
                                   << QStringLiteral("8,00EB") << qint64(1) * (1LL << 53);
    QTest::newRow("absurd") << Largest << std::nan("") << most * mebibyte
                            << QStringLiteral("8,00EB") << qint64(0);
    QTest::newRow("negative") << qint64(-1) << -1.0 << qint64(0) << QStringLiteral("0,00B")
                              << qint64(0);
}

void ClientApiResponsesTest::boundsWhatTheSettingsHold()
{
    QFETCH(qint64, mebibytes);
    QFETCH(double, miles);
    OnlineFigures::store(OnlineTotals{.download = mebibytes, .distanceMiles = miles});
    OnlineFigures::store(OnlineRanks{.keys = -1, .clicks = Largest});
    const QJsonObject object = ClientApiResponses::formatAccountTotalStats();
    QTEST(object.value(QStringLiteral("download")).toInteger(-1), "bytes");
    QTEST(object.value(QStringLiteral("download_formatted")).toString(), "bytesText");
    QTEST(object.value(QStringLiteral("distance_miles")).toInteger(-1), "wholeMiles");
    const QJsonObject ranks = object.value(QStringLiteral("ranks")).toObject();
    QCOMPARE(ranks.value(QStringLiteral("rank_keys")), QJsonValue(QStringLiteral("0")));
    QCOMPARE(ranks.value(QStringLiteral("rank_clicks")), QJsonValue(QString::number(Largest)));
}

void ClientApiResponsesTest::tellsRates()
{
    QCOMPARE(written(m_responses->formatRealtimeStats()), compact(R"({
        "keys": "0,00", "clicks": "0,00", "download": "0,00B/s", "upload": "0,00B/s"})"));
    for (int i = 0; i < 41; ++i) {
        m_rates->noteKey();
    }
    m_rates->noteClick();
    m_rates->noteTraffic(quint64{5} * 1'536, quint64{5} * 1'048'576);
    QCOMPARE(written(m_responses->formatRealtimeStats()), compact(R"({
        "keys": "8,20", "clicks": "0,20", "download": "1,50KB/s", "upload": "1,00MB/s"})"));
}

void ClientApiResponsesTest::tellsUnzurgedCounts()
{
    m_localStats->increaseKeys(1'234);
    m_localStats->increaseClicks(2);
    m_localStats->increaseScrolls(3);
    m_localStats->increaseDistanceInches(5'069);
    m_localStats->increaseUptime(123'456'999);
    m_localStats->increaseBandwidth(512'753'664, 1'023);
    QCOMPARE(written(m_responses->formatUnzurgedStats()), compact(R"({
        "keys": 1234, "keys_formatted": "1,234",
        "clicks": 2, "clicks_formatted": "2",
        "download": 512753664, "download_formatted": "489,00MB",
        "upload": 1023, "upload_formatted": "1023,00B",
        "uptime": 123456, "uptime_formatted": "1d, 10h, 17m, 36s",
        "scrolls": 3, "scrolls_formatted": "3",
        "distance_inches": 5069, "distance_formatted": "0,08m"})"));
}

void ClientApiResponsesTest::keepsTheLargestCounts()
{
    constexpr qint64 beyondDouble = 9'007'199'254'740'993; // 2^53 + 1
    m_localStats->increaseBandwidth(Largest, beyondDouble);
    m_localStats->increaseDistanceInches(Largest);
    const QByteArray body = written(m_responses->formatUnzurgedStats());
    QVERIFY(body.contains("\"download\":9223372036854775807,"));
    QVERIFY(body.contains("\"upload\":9007199254740993,"));
    QVERIFY(body.contains("\"distance_inches\":9223372036854775807,"));
}

void ClientApiResponsesTest::listsProfiles()
{
    m_profiles->setActiveStatsProfile(2, QStringLiteral("Games"));
    QVERIFY(m_database->exec(
        QStringLiteral("UPDATE profiles SET updated_at = 'yesterday' WHERE id = 2")));
    QCOMPARE(written(m_responses->formatProfiles()), compact(R"({"profiles": [
        {"name": "General", "id": 0, "active": false, "created_at": "", "updated_at": ""},
        {"name": "Games", "id": 2, "active": true, "created_at": "", "updated_at": ""},
        {"name": "Work", "id": 1, "active": false,
         "created_at": "2024-03-31T02:30:00.000", "updated_at": "2024-05-08T10:47:09.000"}]})"));
    m_profiles->activateDefaultProfile();
    const QJsonArray profiles =
        m_responses->formatProfiles().value(QStringLiteral("profiles")).toArray();
    QVERIFY(profiles.at(0).toObject().value(QStringLiteral("active")).toBool());
    QVERIFY(!profiles.at(1).toObject().value(QStringLiteral("active")).toBool());
}

REGISTER_TEST(ClientApiResponsesTest);
#include "ClientApiResponsesTest.moc"
