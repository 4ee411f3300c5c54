// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/History.h"

#include "storage/ReadingConnection.h"
#include "ui/TodayQuery.h"
#include "ui/history/BootRows.h"
#include "ui/history/DayList.h"
#include "ui/history/HistoryLists.h"
#include "ui/history/RawHistory.h"

#include <QSet>

#include <algorithm>

namespace {

/// Asked for at a time, so that no statement holds up a writer for long.
constexpr int DaysAtOnce = 7;

} // namespace

Totals& Totals::operator+=(const Totals& other)
{
    keys += other.keys;
    clicks += other.clicks;
    scrolls += other.scrolls;
    inches += other.inches;
    uptimeMs += other.uptimeMs;
    return *this;
}

History::History(const QString& databaseFile)
    : m_databaseFile(databaseFile)
{
}

History::~History() = default;

const QSqlDatabase& History::connection()
{
    if (!m_connection || !m_connection->isOpen()) {
        m_raw.reset();
        m_connection = std::make_unique<ReadingConnection>(m_databaseFile);
        m_raw = std::make_unique<RawHistory>(m_connection->database());
    }
    return m_connection->database();
}

std::optional<qint64> History::version()
{
    return TodayQuery::dataVersion(connection());
}

double History::preparedShare() const
{
    return 1;
}

bool History::collect(const HistoryScope& scope, const Add& add)
{
    const std::optional<QDate> known = firstDay();
    if (!known) {
        return false;
    }
    HistoryScope part = scope;
    for (QDate day = std::max(*known, scope.first); known->isValid() && day <= scope.last;
         day = day.addDays(DaysAtOnce)) {
        part.first = day;
        part.last = std::min(day.addDays(DaysAtOnce - 1), scope.last);
        if (!add(*m_raw, part)) {
            return false;
        }
    }
    return true;
}

std::optional<Totals> History::totals(const HistoryScope& scope)
{
    TotalsSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addTotals(part, TotalsBy::Nothing, sums);
    });
    return isRead ? std::optional(sums[0]) : std::nullopt;
}

std::optional<QList<DayTotals>> History::days(const HistoryScope& scope)
{
    TotalsSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addTotals(part, TotalsBy::Day, sums);
    });
    return isRead ? std::optional(HistoryLists::days(sums)) : std::nullopt;
}

std::optional<QList<HourTotals>> History::hours(const HistoryScope& scope)
{
    TotalsSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addTotals(part, TotalsBy::Hour, sums);
    });
    return isRead ? std::optional(HistoryLists::hours(sums)) : std::nullopt;
}

std::optional<QList<WeekHourTotals>> History::weekHours(const HistoryScope& scope)
{
    TotalsSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addTotals(part, TotalsBy::WeekHour, sums);
    });
    return isRead ? std::optional(HistoryLists::weekHours(sums)) : std::nullopt;
}

std::optional<QList<KeyCount>> History::keys(const HistoryScope& scope)
{
    NumberSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addKeys(part, sums);
    });
    return isRead ? std::optional(HistoryLists::keys(sums)) : std::nullopt;
}

std::optional<QList<CombinationCount>> History::combinations(const HistoryScope& scope, int limit)
{
    TextSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addCombinations(part, sums);
    });
    return isRead ? std::optional(HistoryLists::combinations(sums, limit)) : std::nullopt;
}

std::optional<QList<ButtonCount>> History::buttons(const HistoryScope& scope)
{
    connection();
    NumberSums sums;
    const bool isRead = m_raw->addButtons(scope, sums);
    return isRead ? std::optional(HistoryLists::buttons(sums)) : std::nullopt;
}

std::optional<QList<ScrollCount>> History::scrolls(const HistoryScope& scope)
{
    NumberSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addScrolls(part, sums);
    });
    return isRead ? std::optional(HistoryLists::scrolls(sums)) : std::nullopt;
}

std::optional<QList<ClickCell>> History::clickCells(const HistoryScope& scope)
{
    CellSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addClickCells(part, sums);
    });
    return isRead ? std::optional(HistoryLists::clickCells(sums)) : std::nullopt;
}

std::optional<QList<ApplicationTotals>> History::applications(const HistoryScope& scope)
{
    ApplicationSums sums;
    const bool isRead = collect(scope, [&sums](HistorySource& source, const HistoryScope& part) {
        return source.addApplications(part, sums);
    });
    const auto known = KnownApplications::read(connection(), scope.profileId);
    return isRead && known ? std::optional(HistoryLists::applications(sums, *known)) : std::nullopt;
}

std::optional<QList<ApplicationDay>> History::applicationDays(const HistoryScope& scope,
                                                              const QStringList& paths)
{
    const QStringList distinct(QSet<QString>(paths.cbegin(), paths.cend()).values());
    ApplicationDaySums sums;
    const bool isRead = collect(scope, [&](HistorySource& source, const HistoryScope& part) {
        return source.addApplicationDays(part, distinct, sums);
    });
    return isRead ? std::optional(HistoryLists::applicationDays(sums)) : std::nullopt;
}

std::optional<QList<BootSession>> History::boots(const HistoryScope& scope)
{
    return BootRows::read(connection(), scope);
}

std::optional<QDate> History::firstDay()
{
    return DayList::first(connection());
}
