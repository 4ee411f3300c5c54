// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DSqlQuery.h"

#include <QDateTime>

class Database;

/// Watches for a system clock that was set back, and moves the stored history by the size of the
/// jump, so that new counts do not land among rows that lie in the future.
///
/// The clock is judged as a point in time, not by what a wall clock shows: at the end of summer
/// time the same hour passes twice, time does not go back, and nothing is moved. Where only text
/// tells ("02:50" stored during that hour), the earlier of both readings holds: a history left
/// where it is can still be moved, one moved by mistake cannot be told from a right one.
///
///     normal --clock behind--> blocked (ten updates) --> history moved --> normal
///        ^                        |
///        +---clock caught up------+
///
/// Thread: main; `update` inside the collector's transaction.
class TimeGuard final
{
public:
    /// The guard of the open database: created on first use, gone when that closes. `Database` must
    /// exist.
    static TimeGuard& instance();

    /// Takes note of the time. To be called every 500 ms, before anything is filed under a day.
    void update();
    void update(const QDateTime& now);

    /// The clock is behind, and it is not yet known whether it stays so: nothing may be filed.
    bool isBlocked() const;

    /// The latest `update` took over an earlier time than the one before: times remembered in
    /// memory lie in the future.
    bool wasClockSetBack() const;

    /// The transaction around the latest `update` was rolled back, and what it stored with it. The
    /// last known time is read again.
    void rolledBack();

    TimeGuard(const TimeGuard&) = delete;
    TimeGuard& operator=(const TimeGuard&) = delete;

private:
    explicit TimeGuard(Database* database);

    bool loadLastKnownTime();
    void fixTime(const QDateTime& now);
    void noteTime(const QDateTime& now);

    Database* m_database;
    QDateTime m_lastKnownTime;
    bool m_blocked = false;
    bool m_clockSetBack = false;
    int m_backwardCount = 0;
    int m_tickCount = 0;
    int m_failedShifts = 0;
    DSqlQuery m_selectTime;
    DSqlQuery m_insertTime;
    DSqlQuery m_updateTime;
};
