// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/TimeGuard.h"

#include "base/Log.h"
#include "stats/HistoryShift.h"
#include "storage/Database.h"

#include <memory>

namespace {

/// About five seconds: a brief glitch of the clock must not rewrite the history.
constexpr int LastWaitingUpdate = 9;

constexpr int UpdatesBetweenStores = 60;
constexpr int MostShiftAttempts = 3;
constexpr qint64 SecondsPerDay = 86'400;

std::unique_ptr<TimeGuard> s_instance;

/// A stored local time as a point in time; the earlier one where the text fits two. Left to itself,
/// the C library picks one by what it converted before.
QDateTime fromStoredText(const QString& text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs).toLocalTime();
    if (!time.isValid()) {
        return {};
    }
    // Before clocks are set back for the winter, their offset from UTC is that of the day before.
    const QDateTime earlier =
        QDateTime(time.date(), time.time(), Qt::OffsetFromUTC, time.addDays(-1).offsetFromUtc())
            .toLocalTime();
    const bool fitsBoth = earlier.date() == time.date() && earlier.time() == time.time();
    return fitsBoth && earlier < time ? earlier : time;
}

} // namespace

TimeGuard& TimeGuard::instance()
{
    if (!s_instance) {
        Database* database = Database::instance();
        s_instance.reset(new TimeGuard(database));
        QObject::connect(
            database, &Database::aboutToClose, database, [] { s_instance.reset(); },
            Qt::SingleShotConnection);
    }
    return *s_instance;
}

TimeGuard::TimeGuard(Database* database)
    : m_database(database)
    , m_selectTime(database)
    , m_insertTime(database)
    , m_updateTime(database)
{
    m_selectTime.prepare(QStringLiteral("SELECT time FROM last_update_time"));
    m_insertTime.prepare(QStringLiteral(
        "REPLACE INTO last_update_time (time) VALUES(datetime('now', 'localtime'))"));
    m_updateTime.prepare(
        QStringLiteral("UPDATE last_update_time SET time = datetime('now', 'localtime')"));
}

void TimeGuard::update()
{
    update(QDateTime::currentDateTime());
}

void TimeGuard::update(const QDateTime& now)
{
    m_clockSetBack = false;
    if (m_lastKnownTime.isNull() && !loadLastKnownTime()) {
        return;
    }
    if (now >= m_lastKnownTime) {
        m_blocked = false;
        m_backwardCount = 0;
    } else if (m_backwardCount <= LastWaitingUpdate) {
        m_blocked = true;
        ++m_backwardCount;
        return;
    } else {
        m_blocked = false;
        m_backwardCount = 0;
        fixTime(now);
        if (m_blocked) {
            return;
        }
    }
    noteTime(now);
}

/// False on the first run, which has nothing to compare with.
bool TimeGuard::loadLastKnownTime()
{
    m_selectTime.exec();
    const bool found = m_selectTime.next();
    m_lastKnownTime = found ? fromStoredText(m_selectTime.value(0).toString()) : QDateTime();
    m_selectTime.finish();
    if (m_lastKnownTime.isNull()) {
        (found ? m_updateTime : m_insertTime).exec();
        return false;
    }
    return true;
}

/// Moves the history, and stores the time it moved to, together or not at all: a client that ends
/// right afterwards must not move it again. After a failure it waits once more and tries again;
/// when that does not help, the history stays, and counting goes on.
void TimeGuard::fixTime(const QDateTime& now)
{
    const qint64 days = m_lastKnownTime.secsTo(now) / SecondsPerDay;
    const qint64 seconds = m_lastKnownTime.secsTo(now.addDays(-days));
    Log::info("Shifting stats time by {} days and {} seconds", days, seconds);

    DSqlQuery query(m_database);
    query.exec(QStringLiteral("SAVEPOINT clock_set_back"));
    const bool moved =
        HistoryShift::apply(m_database, static_cast<int>(days), static_cast<int>(seconds)) &&
        m_updateTime.exec();
    if (!moved) {
        query.exec(QStringLiteral("ROLLBACK TO clock_set_back"));
    }
    query.exec(QStringLiteral("RELEASE clock_set_back"));

    if (!moved && ++m_failedShifts < MostShiftAttempts) {
        m_blocked = true;
        return;
    }
    if (!moved) {
        Log::error("Unable to shift stats time, the history stays as it is");
    }
    m_failedShifts = 0;
    m_clockSetBack = true;
    m_lastKnownTime = now;
}

void TimeGuard::noteTime(const QDateTime& now)
{
    if (m_tickCount < UpdatesBetweenStores) {
        m_lastKnownTime = now;
        ++m_tickCount;
    } else {
        m_updateTime.exec();
        m_tickCount = 1;
    }
}

bool TimeGuard::isBlocked() const
{
    return m_blocked;
}

bool TimeGuard::wasClockSetBack() const
{
    return m_clockSetBack;
}

void TimeGuard::rolledBack()
{
    m_lastKnownTime = {};
}
