// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiResponses.h"

#include "account/LocalStats.h"
#include "account/OnlineFigures.h"
#include "clientapi/ClientApiFormat.h"
#include "profiles/ProfileManager.h"
#include "stats/LiveRates.h"

#include <QDate>
#include <QJsonArray>
#include <QTime>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// What the account and the unzurged counts tell of in the same fields. Plain value.
struct Amounts
{
    quint64 keys = 0;
    quint64 clicks = 0;
    quint64 download = 0; ///< Bytes.
    quint64 upload = 0;   ///< Bytes.
    quint64 uptime = 0;   ///< Seconds.
    quint64 scrolls = 0;
};

quint64 fromZero(qint64 figure)
{
    return static_cast<quint64>(std::max<qint64>(figure, 0));
}

/// As many bytes as an integer of the answer can tell of.
quint64 bytesOf(qint64 mebibytes)
{
    return std::min(fromZero(mebibytes), CounterLimit / BytesPerMiB) * BytesPerMiB;
}

/// To the nearest; what the settings hold may be any number.
quint64 wholeMiles(double miles)
{
    constexpr double most = 9'007'199'254'740'992.0; // 2^53: up to here, each is told apart.
    return miles > 0 ? static_cast<quint64>(std::llround(std::min(miles, most))) : 0;
}

using Format = QString (*)(quint64);

void insert(QJsonObject& object, const QString& name, quint64 value, Format format)
{
    object.insert(name, static_cast<qint64>(value));
    object.insert(name + QStringLiteral("_formatted"), format(value));
}

void insertDistance(QJsonObject& object, const QString& name, quint64 value, Format format)
{
    object.insert(name, static_cast<qint64>(value));
    object.insert(QStringLiteral("distance_formatted"), format(value));
}

QJsonObject objectOf(const Amounts& amounts)
{
    QJsonObject object;
    insert(object, QStringLiteral("keys"), amounts.keys, ClientApiFormat::count);
    insert(object, QStringLiteral("clicks"), amounts.clicks, ClientApiFormat::count);
    insert(object, QStringLiteral("download"), amounts.download, ClientApiFormat::bytes);
    insert(object, QStringLiteral("upload"), amounts.upload, ClientApiFormat::bytes);
    insert(object, QStringLiteral("uptime"), amounts.uptime, ClientApiFormat::duration);
    insert(object, QStringLiteral("scrolls"), amounts.scrolls, ClientApiFormat::count);
    return object;
}

QJsonObject formatRanks(const OnlineRanks& ranks)
{
    struct Rank
    {
        const char* name;
        qint64 OnlineRanks::*value;
    };

    static constexpr std::array<Rank, 7> table{{
        {"rank_keys", &OnlineRanks::keys},
        {"rank_clicks", &OnlineRanks::clicks},
        {"rank_download", &OnlineRanks::download},
        {"rank_upload", &OnlineRanks::upload},
        {"rank_uptime", &OnlineRanks::uptime},
        {"rank_scrolls", &OnlineRanks::scrolls},
        {"rank_distance", &OnlineRanks::distance},
    }};
    QJsonObject object;
    for (const auto& [name, value] : table) {
        const quint64 rank = fromZero(ranks.*value);
        object.insert(QLatin1String(name), QString::number(rank));
        object.insert(QLatin1String(name) + QStringLiteral("_formatted"),
                      ClientApiFormat::ordinal(rank));
    }
    return object;
}

/// From "2024-05-08 10:47:09". In two halves, since as one local time an hour that a change of the
/// clocks skips would be moved. Empty where it is no time.
QString timeStamp(const QString& stored)
{
    constexpr qsizetype dateLength = 10;
    const QDate date = QDate::fromString(stored.left(dateLength), Qt::ISODate);
    const QTime time = QTime::fromString(stored.mid(dateLength + 1), Qt::ISODateWithMs);
    if (!date.isValid() || !time.isValid()) {
        return {};
    }
    return date.toString(Qt::ISODate) + QLatin1Char('T') + time.toString(Qt::ISODateWithMs);
}

QJsonObject profileDetails(const QVariantMap& profile, int activeId)
{
    const int id = profile.value(QStringLiteral("id")).toInt();
    return {{QStringLiteral("name"), profile.value(QStringLiteral("name")).toString()},
            {QStringLiteral("id"), id},
            {QStringLiteral("active"), id == activeId},
            {QStringLiteral("created_at"),
             timeStamp(profile.value(QStringLiteral("created_at")).toString())},
            {QStringLiteral("updated_at"),
             timeStamp(profile.value(QStringLiteral("updated_at")).toString())}};
}

} // namespace

ClientApiResponses::ClientApiResponses(const LocalStats& localStats, const LiveRates& rates,
                                       const ProfileManager& profiles)
    : m_localStats(localStats)
    , m_rates(rates)
    , m_profiles(profiles)
{
}

QJsonObject ClientApiResponses::formatAccountTotalStats()
{
    const OnlineTotals totals = OnlineFigures::storedTotals();
    QJsonObject object = objectOf({.keys = fromZero(totals.keys),
                                   .clicks = fromZero(totals.clicks),
                                   .download = bytesOf(totals.download),
                                   .upload = bytesOf(totals.upload),
                                   .uptime = fromZero(totals.uptime),
                                   .scrolls = fromZero(totals.scrolls)});
    insertDistance(object, QStringLiteral("distance_miles"), wholeMiles(totals.distanceMiles),
                   ClientApiFormat::miles);
    object.insert(QStringLiteral("ranks"), formatRanks(OnlineFigures::storedRanks()));
    return object;
}

QJsonObject ClientApiResponses::formatRealtimeStats() const
{
    return {{QStringLiteral("keys"), ClientApiFormat::rate(m_rates.keysPerSecond())},
            {QStringLiteral("clicks"), ClientApiFormat::rate(m_rates.clicksPerSecond())},
            {QStringLiteral("download"),
             ClientApiFormat::byteRate(m_rates.downloadPerSecond().value_or(0))},
            {QStringLiteral("upload"),
             ClientApiFormat::byteRate(m_rates.uploadPerSecond().value_or(0))}};
}

QJsonObject ClientApiResponses::formatUnzurgedStats() const
{
    const UnzurgedCounts& counts = m_localStats.unzurged();
    QJsonObject object = objectOf({.keys = counts.keys,
                                   .clicks = counts.clicks,
                                   .download = counts.download,
                                   .upload = counts.upload,
                                   .uptime = counts.uptime / MsecsPerSecond,
                                   .scrolls = counts.scrolls});
    insertDistance(object, QStringLiteral("distance_inches"), counts.distanceInches,
                   ClientApiFormat::inchesAsMiles);
    return object;
}

QJsonObject ClientApiResponses::formatProfiles() const
{
    const int activeId = m_profiles.getActiveStatsProfileId();
    QJsonArray profiles;
    profiles << profileDetails({{QStringLiteral("id"), ProfileManager::DefaultProfileId},
                                {QStringLiteral("name"), ProfileManager::tr("General")}},
                               activeId);
    for (const QVariant& profile : m_profiles.getProfiles()) {
        profiles << profileDetails(profile.toMap(), activeId);
    }
    return {{QStringLiteral("profiles"), profiles}};
}

QJsonObject ClientApiResponses::formatAllStats() const
{
    return {{QStringLiteral("account-totals"), formatAccountTotalStats()},
            {QStringLiteral("realtime"), formatRealtimeStats()},
            {QStringLiteral("unzurged"), formatUnzurgedStats()}};
}
