// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ApplicationUptimeStat.h"

#include "account/LocalStats.h"
#include "base/Format.h"
#include "base/Log.h"
#include "system/AbstractSystem.h"

#include <utility>

namespace {

/// A longer gap (another application was in front, the machine slept) counts as one second.
constexpr qint64 LongestIntervalMs = 120'999;
constexpr int GapMs = 1'000;
constexpr int MsPerSecond = 1'000;

} // namespace

ApplicationUptimeStat::ApplicationUptimeStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
    , m_running(
          QStringLiteral(R"(UPDATE OR IGNORE application_uptime )"
                         R"(SET "last_active"=datetime('now'), "time"="time"+? )"
                         R"(WHERE "path"=? AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO application_uptime ("last_active", "time", )"
                         R"("path", "profile_id") VALUES(datetime('now'), ?, ?, ?);)"))
    , m_frontHour(
          QStringLiteral(R"(UPDATE OR IGNORE application_active_hour )"
                         R"(SET "seconds_active"="seconds_active"+? )"
                         R"(WHERE "path"=? AND "day"=? AND "hour"=? AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO application_active_hour ("day", "hour", )"
                         R"("path", "seconds_active", "profile_id") VALUES(?, ?, ?, ?, ?))"))
    , m_updateLastUsed(QStringLiteral(R"(UPDATE OR IGNORE application_uptime )"
                                      R"(SET "last_used"=datetime('now') WHERE "path"=?)"))
{
}

int ApplicationUptimeStat::getUpdateMilliSecondMod() const
{
    return 60'000;
}

int ApplicationUptimeStat::getUpdateMilliSecondModUI() const
{
    return 5'000;
}

int ApplicationUptimeStat::getFrequentUpdateMilliSecond() const
{
    return 5'000;
}

int ApplicationUptimeStat::getFrequentUpdateMilliSecondUI() const
{
    return 2'000;
}

int ApplicationUptimeStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void ApplicationUptimeStat::doFrequentUpdate(QDateTime now, bool)
{
    const QString path = system().getActiveApplicationPath();
    if (path.isEmpty()) {
        return;
    }
    const int seconds = noteInFront(path, now);
    m_updateLastUsed.run({path});
    // The account learns nothing of an application that the user excluded.
    if (!system().shouldExcludeApplicationForStats(path)) {
        LocalStats::instance()->increaseAppUptime(path, seconds, now);
    }
}

/// Returns the seconds gained.
int ApplicationUptimeStat::noteInFront(const QString& path, const QDateTime& now)
{
    const QDateTime last = std::exchange(m_lastInFront[path], now);
    // Unsigned, so that a clock that was set back makes a long gap.
    const quint32 elapsedMs = last.isValid() ? static_cast<quint32>(last.msecsTo(now)) : GapMs;
    const int countedMs = elapsedMs > LongestIntervalMs ? GapMs : static_cast<int>(elapsedMs);
    const int seconds = countedMs / MsPerSecond;
    m_frontSeconds[path] += seconds;
    return seconds;
}

void ApplicationUptimeStat::doUpdate(QDateTime now, bool)
{
    for (const QString& path : system().getRunningDesktopApplications()) {
        if (!path.isEmpty() && !system().shouldExcludeApplicationForStats(path)) {
            writeRunning(path, noteRunning(path, now));
        }
    }
    writeFrontSeconds(now);
}

/// Returns the milliseconds gained.
qint64 ApplicationUptimeStat::noteRunning(const QString& path, const QDateTime& now)
{
    const QDateTime last = std::exchange(m_lastSeenRunning[path], now);
    const qint64 elapsedMs = last.isValid() ? last.msecsTo(now) : GapMs;
    return elapsedMs <= 0 || elapsedMs > LongestIntervalMs ? GapMs : elapsedMs;
}

void ApplicationUptimeStat::writeRunning(const QString& path, qint64 elapsedMs)
{
    Log::trace("App: {} msecs: {}", path, elapsedMs);
    const qint64 seconds = elapsedMs / MsPerSecond;
    m_running.add({seconds, path, statsProfileId()}, {seconds, path, statsProfileId()});
}

void ApplicationUptimeStat::writeFrontSeconds(const QDateTime& now)
{
    const QString day = Format::isoDay(now.date());
    const int hour = now.time().hour();
    const QHash<QString, int> gathered = std::exchange(m_frontSeconds, {});
    for (const auto& [path, seconds] : gathered.asKeyValueRange()) {
        if (!system().shouldExcludeApplicationForStats(path)) {
            m_frontHour.add({seconds, path, day, hour, statsProfileId()},
                            {day, hour, path, seconds, statsProfileId()});
        }
    }
}
