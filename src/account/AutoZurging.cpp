// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/AutoZurging.h"

#include "account/LocalStats.h"
#include "account/Zurge.h"
#include "base/Log.h"
#include "storage/Settings.h"

#include <utility>

namespace {

constexpr int EveryHour = 24;
constexpr int DefaultCount = 1'000;
constexpr int DefaultHours = 1;
constexpr quint64 SecondsPerHour = 3'600;

/// Nothing where the rule is off. A threshold that was never set must not be met by no counts.
std::optional<quint64> threshold(const SettingKey<bool>& enabled, const SettingKey<int>& unit,
                                 int defaultUnit)
{
    const Settings& settings = Settings::instance();
    if (!settings.value(enabled)) {
        return std::nullopt;
    }
    const int value = settings.value(unit);
    return static_cast<quint64>(value > 0 ? value : defaultUnit);
}

QDateTime beginOfHour(const QDateTime& time)
{
    return {time.date(), QTime(time.time().hour(), 0)};
}

} // namespace

AutoZurging::AutoZurging(LocalStats& localStats, QObject* parent, std::function<QDateTime()> now)
    : QObject(parent)
    , m_localStats(localStats)
    , m_now(std::move(now))
{
    connect(&m_timer, &QTimer::timeout, this, &AutoZurging::checkForZurge);
    refreshSettings();
}

void AutoZurging::start()
{
    m_timer.start(CheckIntervalMs);
}

void AutoZurging::refreshSettings()
{
    using namespace SettingsKeys;
    m_thresholds = {threshold(AutoZurgeKeysEnabled, AutoZurgeKeysUnit, DefaultCount),
                    threshold(AutoZurgeClicksEnabled, AutoZurgeClicksUnit, DefaultCount),
                    threshold(AutoZurgeUptimeEnabled, AutoZurgeUptimeUnit, DefaultHours),
                    threshold(AutoZurgeDownloadEnabled, AutoZurgeDownloadUnit, DefaultCount),
                    threshold(AutoZurgeUploadEnabled, AutoZurgeUploadUnit, DefaultCount)};
    const Settings& settings = Settings::instance();
    m_clock = {settings.value(AutoZurgeTimeEnabled), settings.value(AutoZurgeTimeHour),
               settings.value(AutoZurgeDayHour)};
}

void AutoZurging::checkForZurge()
{
    if (!m_localStats.isLoggedIn()) {
        return; // Who stays local is to hear nothing of it, not even in the log.
    }
    const QDateTime now = m_now();
    if (!zurgeOnCount() && m_clock.enabled) {
        zurgeOnTime(now);
    }
}

bool AutoZurging::zurgeOnCount()
{
    const UnzurgedCounts& stored = m_localStats.unzurged();
    // The threshold is asked for, not all there is: what has been counted beyond it stays, unless
    // it is more than as much again.
    const auto zurge = [this](const char* counter, quint64 count, std::optional<quint64> threshold,
                              const ZurgeWish& wish) {
        if (!threshold || count < *threshold) {
            return false;
        }
        Log::info("Autozurge on {}: {}", counter, count);
        return m_localStats.doZurge(ZurgeStart::Automatic, wish);
    };
    const Thresholds& at = m_thresholds;
    return zurge("keys", stored.keys, at.keys, {.keys = at.keys.value_or(0)}) ||
           zurge("clicks", stored.clicks, at.clicks, {.clicks = at.clicks.value_or(0)}) ||
           zurge("uptime", stored.uptime / MsecsPerSecond / SecondsPerHour, at.uptimeHours,
                 {.uptimeSeconds = at.uptimeHours.value_or(0) * SecondsPerHour}) ||
           zurge("download", stored.download / BytesPerMiB, at.downloadMiB,
                 {.downloadMiB = at.downloadMiB.value_or(0)}) ||
           zurge("upload", stored.upload / BytesPerMiB, at.uploadMiB,
                 {.uploadMiB = at.uploadMiB.value_or(0)});
}

void AutoZurging::zurgeOnTime(const QDateTime& now)
{
    if (m_clock.hour == EveryHour) {
        zurgeHourly(now);
    } else {
        zurgeAtHour(now);
    }
}

void AutoZurging::zurgeHourly(const QDateTime& now)
{
    const QDateTime hour = beginOfHour(now);
    if (hour != m_lastHour && isWeekday(now) && m_localStats.doZurge(ZurgeStart::Automatic)) {
        m_lastHour = hour;
    }
}

void AutoZurging::zurgeAtHour(const QDateTime& now)
{
    Settings& settings = Settings::instance();
    const bool isHour = now.time().hour() == m_clock.hour;
    if (settings.value(SettingsKeys::AutoZurgeDidDate)) {
        if (!isHour) {
            settings.setValue(SettingsKeys::AutoZurgeDidDate, false);
        }
    } else if (isHour && isWeekday(now)) {
        // Marked first, and so even where the zurge is refused: once in its hour means one try.
        settings.setValue(SettingsKeys::AutoZurgeDidDate, true);
        m_localStats.doZurge(ZurgeStart::Automatic);
    }
}

bool AutoZurging::isWeekday(const QDateTime& now) const
{
    return m_clock.weekday == 0 || m_clock.weekday == now.date().dayOfWeek();
}
