// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/HistoryLists.h"

#include <algorithm>
#include <tuple>

namespace {

/// The largest counts first; equal ones in the order of `thing`.
template <typename Entry, typename Thing>
void sortByCount(QList<Entry>& entries, Thing thing)
{
    std::ranges::sort(entries, [thing](const Entry& left, const Entry& right) {
        return std::tie(right.count, std::invoke(thing, left)) <
               std::tie(left.count, std::invoke(thing, right));
    });
}

/// The groups of `sums` that are not empty, each as `make` makes it an entry.
template <typename Entry, typename Make>
QList<Entry> totalsList(const TotalsSums& sums, Make make)
{
    QList<Entry> list;
    for (const auto& [group, totals] : sums) {
        if (!totals.isEmpty()) {
            list.append(make(group, totals));
        }
    }
    return list;
}

template <typename Entry, typename Key>
QList<Entry> countsList(const QHash<Key, qint64>& sums)
{
    QList<Entry> list;
    for (auto it = sums.cbegin(); it != sums.cend(); ++it) {
        if (it.value() != 0) {
            list.append(Entry{it.key(), it.value()});
        }
    }
    return list;
}

} // namespace

QList<DayTotals> HistoryLists::days(const TotalsSums& sums)
{
    return totalsList<DayTotals>(sums, [](qint64 julianDay, const Totals& totals) {
        return DayTotals{QDate::fromJulianDay(julianDay), totals};
    });
}

QList<HourTotals> HistoryLists::hours(const TotalsSums& sums)
{
    return totalsList<HourTotals>(sums, [](qint64 hour, const Totals& totals) {
        return HourTotals{static_cast<int>(hour), totals};
    });
}

QList<WeekHourTotals> HistoryLists::weekHours(const TotalsSums& sums)
{
    return totalsList<WeekHourTotals>(sums, [](qint64 slot, const Totals& totals) {
        constexpr int hoursOfDay = 24;
        return WeekHourTotals{static_cast<int>(slot) / hoursOfDay + Qt::Monday,
                              static_cast<int>(slot) % hoursOfDay, totals};
    });
}

QList<KeyCount> HistoryLists::keys(const NumberSums& sums)
{
    QList<KeyCount> list = countsList<KeyCount>(sums);
    sortByCount(list, &KeyCount::key);
    return list;
}

QList<CombinationCount> HistoryLists::combinations(const TextSums& sums, int limit)
{
    QList<CombinationCount> list = countsList<CombinationCount>(sums);
    sortByCount(list, &CombinationCount::combination);
    return list.mid(0, limit);
}

QList<ButtonCount> HistoryLists::buttons(const NumberSums& sums)
{
    QList<ButtonCount> list = countsList<ButtonCount>(sums);
    sortByCount(list, &ButtonCount::button);
    return list;
}

QList<ScrollCount> HistoryLists::scrolls(const NumberSums& sums)
{
    QList<ScrollCount> list = countsList<ScrollCount>(sums);
    sortByCount(list, &ScrollCount::direction);
    return list;
}

QList<ClickCell> HistoryLists::clickCells(const CellSums& sums)
{
    QList<ClickCell> list;
    for (auto it = sums.cbegin(); it != sums.cend(); ++it) {
        list.append({.column = it.key().first, .row = it.key().second, .count = it.value()});
    }
    std::ranges::sort(list, [](const ClickCell& left, const ClickCell& right) {
        return std::tie(right.count, left.row, left.column) <
               std::tie(left.count, right.row, right.column);
    });
    return list;
}

QList<ApplicationTotals> HistoryLists::applications(const ApplicationSums& sums,
                                                    const QHash<QString, ApplicationFacts>& known)
{
    QList<ApplicationTotals> list;
    for (auto it = sums.cbegin(); it != sums.cend(); ++it) {
        if (it.value() == ApplicationCounts{}) {
            continue;
        }
        const ApplicationFacts application = known.value(it.key());
        list.append({.path = it.key(),
                     .name = application.name,
                     .keys = it->keys,
                     .clicks = it->clicks,
                     .scrolls = it->scrolls,
                     .inches = it->inches,
                     .frontSeconds = it->frontSeconds,
                     .runningSeconds = application.runningSeconds,
                     .lastUsed = application.lastUsed});
    }
    std::ranges::sort(list, [](const ApplicationTotals& left, const ApplicationTotals& right) {
        return std::tie(right.keys, right.frontSeconds, left.path) <
               std::tie(left.keys, left.frontSeconds, right.path);
    });
    return list;
}

QList<ApplicationDay> HistoryLists::applicationDays(const ApplicationDaySums& sums)
{
    QList<ApplicationDay> list;
    for (const auto& [key, counts] : sums) {
        if (counts == ApplicationCounts{}) {
            continue;
        }
        list.append({.day = key.first,
                     .path = key.second,
                     .keys = counts.keys,
                     .clicks = counts.clicks,
                     .scrolls = counts.scrolls,
                     .inches = counts.inches,
                     .frontSeconds = counts.frontSeconds});
    }
    return list;
}
