// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ZurgeGenerateTimeSeries.h"

#include "account/UnzurgedCounts.h"
#include "base/Format.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QSqlError>
#include <QSqlRecord>

#include <algorithm>
#include <vector>

namespace {

constexpr int FirstSeriesDays = 7;

constexpr QLatin1String Keys("keys");
constexpr QLatin1String Clicks("clicks");
constexpr QLatin1String Scrolls("scrolls");
constexpr QLatin1String DistanceInches("distance_inches");
constexpr QLatin1String Uptime("uptime");
constexpr QLatin1String Download("download");
constexpr QLatin1String Upload("upload");

QDateTime startOfSeries()
{
    const QDateTime last = Settings::instance().value(SettingsKeys::TimeSeriesLastSent);
    return last.isValid() ? last : QDateTime::currentDateTime().addDays(-FirstSeriesDays);
}

/// Whole MiB of one row; what the service would take for damage counts as nothing.
qint64 wholeMebibytes(qint64 bytes)
{
    constexpr auto bytesPerMebibyte = static_cast<qint64>(BytesPerMiB);
    constexpr qint64 mostMebibytes = 1'000'000'000;
    if (bytes <= bytesPerMebibyte) {
        return 0;
    }
    const qint64 mebibytes = bytes / bytesPerMebibyte;
    return mebibytes > mostMebibytes ? 0 : mebibytes;
}

} // namespace

ZurgeGenerateTimeSeries::ZurgeGenerateTimeSeries()
    : ZurgeGenerateTimeSeries(startOfSeries(), QDateTime::currentDateTime())
{
}

ZurgeGenerateTimeSeries::ZurgeGenerateTimeSeries(const QDateTime& from, const QDateTime& to)
    : m_from(from)
    , m_to(to)
{
}

QMap<QString, QVariant> ZurgeGenerateTimeSeries::getTimeSeries()
{
    Log::info("Generating time series from: {} to: {}", Format::isoDateTime(m_from),
              Format::isoDateTime(m_to));
    m_series.clear();
    m_failed = false;
    if (Settings::instance().value(SettingsKeys::OnlineSendApplications)) {
        generateApplications();
    }
    generateTotals();
    generateProfiles();
    // The mark moves with the series, not with the zurge that carries it.
    if (!m_failed) {
        Settings::instance().setValue(SettingsKeys::TimeSeriesLastSent,
                                      QDateTime::currentDateTime());
    }
    QMap<QString, QVariant> series;
    for (auto entry = m_series.cbegin(); entry != m_series.cend(); ++entry) {
        series.insert(entry.key(), entry.value());
    }
    return series;
}

void ZurgeGenerateTimeSeries::generateApplications()
{
    generateApplicationOnlineIDMap();
    generateApplicationActiveTime();
    generateApplicationInput();
    generateApplicationNetwork();
}

void ZurgeGenerateTimeSeries::generateTotals()
{
    generateTotalsClicks();
    generateTotalsUptime();
    generateTotalsKeys();
    generateTotalsScrolls();
    generateTotalsDistance();
    generateTotalsNetwork();
}

void ZurgeGenerateTimeSeries::generateProfiles()
{
    generateProfileClicks();
    generateProfileUptime();
    generateProfileKeys();
    generateProfileScrolls();
    generateProfileDistance();
    generateProfileNetwork();
}

void ZurgeGenerateTimeSeries::generateApplicationOnlineIDMap()
{
    DSqlQuery query(Database::instance());
    m_failed |= !query.exec(
        QStringLiteral("SELECT path, online_app_id FROM applications WHERE online_app_id > 0"));
    m_applicationOnlineIds.clear();
    while (query.next()) {
        m_applicationOnlineIds.insert(query.value(0).toString(), query.value(1).toString());
    }
}

void ZurgeGenerateTimeSeries::generateApplicationActiveTime()
{
    generate(Subject::Application,
             QStringLiteral("SELECT day, hour, SUM(seconds_active) AS seconds_active, path FROM "
                            "application_active_hour WHERE day >= ? AND day <= ? GROUP BY day, "
                            "hour, path ORDER BY day, hour"),
             {{Uptime, QLatin1String("seconds_active"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateApplicationInput()
{
    generate(Subject::Application,
             QStringLiteral("SELECT day, hour, SUM(keys) AS keys, SUM(clicks) AS clicks, path, "
                            "SUM(scrolls) AS scrolls, SUM(distance_inches) AS distance_inches "
                            "FROM input_per_application WHERE day >= ? AND day <= ? GROUP BY day, "
                            "hour, path ORDER BY day, hour"),
             {{Keys, Keys, Unit::Count},
              {Clicks, Clicks, Unit::Count},
              {Scrolls, Scrolls, Unit::Count},
              {DistanceInches, DistanceInches, Unit::Inches}});
}

void ZurgeGenerateTimeSeries::generateApplicationNetwork()
{
    generate(Subject::Application,
             QStringLiteral("SELECT day, hour, path, SUM(download) AS download, SUM(upload) AS "
                            "upload FROM application_bandwidth WHERE day >= ? AND day <= ? GROUP "
                            "BY day, hour, path ORDER BY day, hour"),
             {{Download, Download, Unit::Bytes}, {Upload, Upload, Unit::Bytes}});
}

void ZurgeGenerateTimeSeries::generateTotalsClicks()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, SUM(count) AS count FROM mouseclicks WHERE day >= ? "
                            "AND day <= ? GROUP BY day, hour ORDER BY day, hour"),
             {{Clicks, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateTotalsUptime()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, SUM(msec_active) AS msec_active FROM uptime_hour "
                            "WHERE day >= ? AND day <= ? GROUP BY day, hour ORDER BY day, hour"),
             {{Uptime, QLatin1String("msec_active"), Unit::Milliseconds}});
}

void ZurgeGenerateTimeSeries::generateTotalsKeys()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, SUM(count) AS count FROM keypresses WHERE day >= ? "
                            "AND day <= ? GROUP BY day, hour ORDER BY day, hour"),
             {{Keys, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateTotalsScrolls()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, SUM(count) AS count FROM mousescrolls WHERE day >= "
                            "? AND day <= ? GROUP BY day, hour ORDER BY day, hour"),
             {{Scrolls, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateTotalsDistance()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, SUM(distance_inches) AS distance_inches FROM "
                            "mousedistance WHERE day >= ? AND day <= ? GROUP BY day, hour ORDER BY "
                            "day, hour"),
             {{DistanceInches, DistanceInches, Unit::Inches}});
}

void ZurgeGenerateTimeSeries::generateTotalsNetwork()
{
    generate(Subject::Computer,
             QStringLiteral("SELECT day, hour, download, upload FROM network_interface_bandwidth "
                            "WHERE day >= ? AND day <= ? ORDER BY day, hour"),
             {{Download, Download, Unit::Bytes}, {Upload, Upload, Unit::Bytes}});
}

void ZurgeGenerateTimeSeries::generateProfileClicks()
{
    generate(Subject::Profile,
             QStringLiteral("SELECT profile_id, day, hour, count FROM mouseclicks WHERE day >= ? "
                            "AND day <= ? AND profile_id > 0 ORDER BY day, hour"),
             {{Clicks, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateProfileUptime()
{
    generate(Subject::Profile,
             QStringLiteral("SELECT profile_id, day, hour, msec_active FROM uptime_hour WHERE day "
                            ">= ? AND day <= ? AND profile_id > 0 ORDER BY day, hour"),
             {{Uptime, QLatin1String("msec_active"), Unit::Milliseconds}});
}

void ZurgeGenerateTimeSeries::generateProfileKeys()
{
    generate(Subject::Profile,
             QStringLiteral("SELECT profile_id, day, hour, count FROM keypresses WHERE day >= ? "
                            "AND day <= ? AND profile_id > 0 ORDER BY day, hour"),
             {{Keys, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateProfileScrolls()
{
    generate(Subject::Profile,
             QStringLiteral("SELECT profile_id, day, hour, SUM(count) AS count FROM mousescrolls "
                            "WHERE day >= ? AND day <= ? AND profile_id > 0 GROUP BY profile_id, "
                            "day, hour ORDER BY day, hour"),
             {{Scrolls, QLatin1String("count"), Unit::Count}});
}

void ZurgeGenerateTimeSeries::generateProfileDistance()
{
    generate(Subject::Profile,
             QStringLiteral("SELECT profile_id, day, hour, distance_inches FROM mousedistance "
                            "WHERE day >= ? AND day <= ? AND profile_id > 0 ORDER BY day, hour"),
             {{DistanceInches, DistanceInches, Unit::Inches}});
}

void ZurgeGenerateTimeSeries::generateProfileNetwork()
{
    // Interfaces are not counted per profile.
}

void ZurgeGenerateTimeSeries::generate(Subject subject, const QString& sql,
                                       std::initializer_list<Counter> counters)
{
    DSqlQuery query(Database::instance());
    query.setForwardOnly(true);
    const bool prepared = query.prepare(sql);
    query.bindValue(0, Format::isoDay(m_from.date()));
    query.bindValue(1, Format::isoDay(m_to.date()));
    if (!prepared || !query.exec()) {
        m_failed = true;
        return;
    }
    addRows(subject, query, counters);
    if (query.lastError().isValid()) {
        Log::error("Unable to read all of the time series: {}", query.lastError().text());
        m_failed = true;
    }
}

void ZurgeGenerateTimeSeries::addRows(Subject subject, DSqlQuery& query,
                                      std::initializer_list<Counter> counters)
{
    const QSqlRecord columns = query.record();
    const int day = columns.indexOf(QLatin1String("day"));
    const int hour = columns.indexOf(QLatin1String("hour"));
    const int owner = columns.indexOf(ownerColumn(subject));
    std::vector<int> values;
    for (const Counter& counter : counters) {
        values.push_back(columns.indexOf(counter.column));
    }
    while (query.next()) {
        const QString name = subjectName(subject, query.value(owner));
        if (name.isEmpty()) {
            continue;
        }
        Entry& entry =
            m_series[QStringLiteral("%1_%2_%3")
                         .arg(query.value(day).toString(), query.value(hour).toString(), name)];
        auto value = values.cbegin();
        for (const Counter& counter : counters) {
            add(entry, counter, query.value(*value++));
        }
    }
}

QLatin1String ZurgeGenerateTimeSeries::ownerColumn(Subject subject)
{
    switch (subject) {
    case Subject::Application:
        return QLatin1String("path");
    case Subject::Profile:
        return QLatin1String("profile_id");
    case Subject::Computer:
        break;
    }
    return QLatin1String("day"); // All rows are the computer's.
}

QString ZurgeGenerateTimeSeries::subjectName(Subject subject, const QVariant& stored) const
{
    switch (subject) {
    case Subject::Application:
        return m_applicationOnlineIds.value(stored.toString());
    case Subject::Profile:
        return QStringLiteral("profile-") + stored.toString();
    case Subject::Computer:
        break;
    }
    return QStringLiteral("totals");
}

void ZurgeGenerateTimeSeries::add(Entry& entry, const Counter& counter, const QVariant& stored)
{
    QVariant& sum = entry[counter.name];
    if (counter.unit == Unit::Inches) {
        sum = sum.toDouble() + stored.toDouble();
        return;
    }
    qint64 amount = std::max<qint64>(stored.toLongLong(), 0);
    if (counter.unit == Unit::Milliseconds) {
        amount /= static_cast<qint64>(MsecsPerSecond);
    } else if (counter.unit == Unit::Bytes) {
        amount = wholeMebibytes(amount);
    }
    sum = static_cast<qint64>(
        saturatingSum(static_cast<quint64>(sum.toLongLong()), static_cast<quint64>(amount)));
}
