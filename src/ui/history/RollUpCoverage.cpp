// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpCoverage.h"

#include <algorithm>

namespace {

DayRange common(const DayRange& left, const DayRange& right)
{
    return {.first = std::max(left.first, right.first), .last = std::min(left.last, right.last)};
}

HistoryScope scopeOf(const DayRange& days, const HistoryScope& asked)
{
    return {.first = QDate::fromJulianDay(days.first),
            .last = QDate::fromJulianDay(days.last),
            .profileId = asked.profileId};
}

/// Days one after the other become one scope, but not too many.
QList<HistoryScope> grouped(const std::set<qint64>& days, const HistoryScope& asked)
{
    QList<HistoryScope> scopes;
    DayRange run;
    for (const qint64 day : days) {
        if (!run.isEmpty() && day == run.last + 1 && run.count() < RollUpCoverage::DaysAtOnce) {
            run.last = day;
            continue;
        }
        if (!run.isEmpty()) {
            scopes.append(scopeOf(run, asked));
        }
        run = {.first = day, .last = day};
    }
    if (!run.isEmpty()) {
        scopes.append(scopeOf(run, asked));
    }
    return scopes;
}

} // namespace

AnswerParts RollUpCoverage::parts(const HistoryScope& scope, const QDate& firstDay,
                                  const QDate& today) const
{
    const QDate first = std::max(scope.first, firstDay);
    const DayRange asked{.first = first.toJulianDay(), .last = scope.last.toJulianDay()};
    AnswerParts parts;
    if (firstDay.isNull() || asked.isEmpty()) {
        return parts;
    }
    const DayRange summed = summedIn(asked);
    if (!summed.isEmpty()) {
        parts.summed = scopeOf(summed, scope);
    }
    std::set<qint64> days;
    qint64 left = ReadAlong;
    qint64 missing = 0;
    const auto readAlong = [&days, &left, &missing](qint64 day) {
        if (left > 0) {
            days.insert(day);
            --left;
        } else {
            ++missing;
        }
    };
    std::for_each(pending.crbegin(), pending.crend(), [&](qint64 day) {
        if (day >= summed.first && day <= summed.last) {
            readAlong(day);
        }
    });
    const DayRange older = common(asked, {.first = asked.first, .last = from - 1});
    for (qint64 day = older.last; day >= older.first; --day) {
        readAlong(day);
    }
    const DayRange open =
        common(asked, {.first = until, .last = std::max(until, today.toJulianDay())});
    for (qint64 day = open.first; day <= open.last; ++day) {
        days.insert(day);
    }
    parts.hourly = grouped(days, scope);
    // Where the clock was ahead once, there are rows of days to come.
    const DayRange ahead =
        common(asked, {.first = std::max(until, today.toJulianDay()) + 1, .last = asked.last});
    if (!ahead.isEmpty()) {
        parts.hourly.append(scopeOf(ahead, scope));
    }
    parts.share = 1 - static_cast<double>(missing) / static_cast<double>(asked.count());
    return parts;
}

DayRange RollUpCoverage::summedIn(const DayRange& days) const
{
    return common(days, {.first = from, .last = until - 1});
}

void RollUpCoverage::makePending(const DayRange& days)
{
    for (qint64 day = days.first; day <= days.last; ++day) {
        pending.insert(day);
    }
}

void RollUpCoverage::moveUntil(qint64 newUntil)
{
    makePending({.first = until, .last = newUntil - 1});
    until = newUntil;
    from = std::min(from, until);
    pending.erase(pending.lower_bound(until), pending.end());
}

bool RollUpCoverage::isValid() const
{
    const qint64 end = QDate(9999, 12, 31).toJulianDay();
    return from >= Beginning && from <= until && until <= end &&
           (pending.empty() || (*pending.cbegin() >= from && *pending.crbegin() < until));
}

QDate RollUpCoverage::newestPending() const
{
    return pending.empty() ? QDate() : QDate::fromJulianDay(*pending.crbegin());
}

void RollUpCoverage::add(qint64 day)
{
    pending.erase(day);
    from = std::min(from, day);
}

MonthRange RollUpCoverage::summedMonths() const
{
    return {.first = RollUpMonths::monthOf(from) + 1, .last = RollUpMonths::monthOf(until) - 1};
}
