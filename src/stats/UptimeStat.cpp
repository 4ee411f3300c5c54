// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/UptimeStat.h"

#include "account/LocalStats.h"
#include "base/Format.h"
#include "system/AbstractSystem.h"

namespace {

/// Two updates of a running machine are never further apart than this. After a longer gap (sleep, a
/// changed clock) nobody knows how long it was up, and one second is counted.
constexpr qint64 LongestIntervalMs = 120'999;
constexpr qint64 GapMs = 1'000;

} // namespace

UptimeStat::UptimeStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
    , m_extendBoot(
          QStringLiteral(R"(UPDATE uptimes SET end_time=datetime('now') WHERE "boot_time"=?)"))
    , m_hour(QStringLiteral(R"(UPDATE OR IGNORE uptime_hour SET "msec_active"="msec_active"+? )"
                            R"(WHERE "day"=? AND "hour"=? AND "profile_id"=?)"),
             QStringLiteral(R"(INSERT OR IGNORE INTO uptime_hour ("day", "hour", "msec_active", )"
                            R"("profile_id") VALUES(?, ?, ?, ?))"))
{
}

int UptimeStat::getUpdateMilliSecondMod() const
{
    return 60'000;
}

int UptimeStat::getUpdateMilliSecondModUI() const
{
    return 900;
}

int UptimeStat::getFrequentUpdateMilliSecond() const
{
    return 5'000;
}

int UptimeStat::getFrequentUpdateMilliSecondUI() const
{
    return 900;
}

int UptimeStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void UptimeStat::onEnabled()
{
    m_running = true;
}

void UptimeStat::onDisabled()
{
    m_running = false;
}

void UptimeStat::doUpdate(QDateTime now, bool)
{
    if (!m_running) {
        return;
    }
    m_extendBoot.run({Format::isoDateTime(system().getBootTime())});
    qint64 elapsedMs = m_lastUpdate.msecsTo(now);
    if (elapsedMs < 0 || elapsedMs > LongestIntervalMs) {
        elapsedMs = GapMs;
    }
    LocalStats::instance()->increaseUptime(elapsedMs);
    const QString day = Format::isoDay(now.date());
    const int hour = now.time().hour();
    m_hour.add({elapsedMs, day, hour, statsProfileId()}, {day, hour, elapsedMs, statsProfileId()});
    m_lastUpdate = now;
}
