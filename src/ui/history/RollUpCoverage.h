// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/history/RollUpMonths.h"

#include <QList>

#include <optional>
#include <set>

/// How a question is answered. Plain value.
struct AnswerParts
{
    std::optional<HistoryScope> summed; ///< From the roll-ups.
    QList<HistoryScope> hourly;         ///< From the hourly rows; each a few days.
    double share = 1;                   ///< Of the days asked for, those in here.
};

/// Which days the roll-ups hold: all from `from` up to, not including, `until`, but those that are
/// pending. The days are summed from the newest to the oldest; `until` follows the clock. Julian
/// days. Plain value.
///
///     older, not yet summed | summed, some pending | last days, which may still change
///                          from                  until
struct RollUpCoverage
{
    /// This many days not yet summed are read hour by hour for an answer; further ones are left
    /// out of it until they are summed.
    static constexpr qint64 ReadAlong = 14;

    /// Read hour by hour by one statement: click positions of a busy day take 8 ms to sort into
    /// cells, and a writer waits that long.
    static constexpr qint64 DaysAtOnce = 2;

    qint64 from = 0;
    qint64 until = 0;
    std::set<qint64> pending;

    /// `firstDay` is the first day with counts; null where there is none.
    AnswerParts parts(const HistoryScope& scope, const QDate& firstDay, const QDate& today) const;

    /// Those days that were summed, be they pending by now or not.
    DayRange summedIn(const DayRange& days) const;

    /// The months whose days were all summed, and so are the months themselves.
    MonthRange summedMonths() const;

    /// Null where none is.
    QDate newestPending() const;

    /// A day was summed: a pending one, or the newest older one that has counts.
    void add(qint64 day);

    void makePending(const DayRange& days);

    /// Days that are over now are pending; days that are not over any more are not summed.
    void moveUntil(qint64 newUntil);

    /// Whether the days are in the order drawn above; else they are of no use.
    bool isValid() const;

    bool isComplete() const { return from <= Beginning && pending.empty(); }

    static constexpr qint64 Beginning = 0; ///< Before all days of the calendar.
};
