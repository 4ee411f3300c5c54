// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUp.h"

#include "base/Log.h"
#include "ui/history/DayList.h"
#include "ui/history/RollUpDays.h"
#include "ui/history/RowReader.h"

#include <QElapsedTimer>

#include <algorithm>

namespace {

/// After more days without a look, and where the clock was that far ahead, all sums are made anew.
constexpr qint64 MostNewDays = 400;

/// A file whose sums cannot be read or written is made anew this often while the program runs.
constexpr int MostFailures = 1;

qint64 openFrom(const QDate& today)
{
    return today.toJulianDay() - RollUp::OpenDays + 1;
}

/// The sums of hours from some day on.
std::optional<HourSums> summedHours(const QSqlDatabase& connection, qint64 first)
{
    HourSums hours;
    const bool isRead = RowReader::forEachRow(
        connection,
        QStringLiteral("SELECT day, hour, profile, keys, clicks, scrolls, inches, uptime_ms "
                       "FROM hours WHERE day>=:first"),
        [first](QSqlQuery& query) { query.bindValue(QStringLiteral(":first"), first); },
        [&hours](const QSqlQuery& row) {
            hours[{.julianDay = row.value(0).toLongLong(),
                   .hour = row.value(1).toInt(),
                   .profileId = row.value(2).toInt()}] = {.keys = row.value(3).toLongLong(),
                                                          .clicks = row.value(4).toLongLong(),
                                                          .scrolls = row.value(5).toLongLong(),
                                                          .inches = row.value(6).toDouble(),
                                                          .uptimeMs = row.value(7).toLongLong()};
        });
    return isRead ? std::optional(hours) : std::nullopt;
}

} // namespace

RollUp::RollUp(const QString& fileName)
    : m_file(fileName)
{
}

bool RollUp::follow(const QSqlDatabase& history, qint64 version, const QDate& today)
{
    const bool isSame = m_isOpen && version == m_version && today == m_today;
    if (isSame || m_isGivenUp) {
        return isSame;
    }
    const std::optional<HistoryMarks> marks = HistoryMarks::read(history);
    if (!marks) {
        return false;
    }
    const bool isInLine = m_isOpen ? adjust(*marks, today) : open(history, *marks, today);
    if (!isInLine && !startAnew(*marks, today)) {
        giveUp();
        return false;
    }
    m_version = version;
    m_today = today;
    return true;
}

bool RollUp::open(const QSqlDatabase& history, const HistoryMarks& marks, const QDate& today)
{
    m_isOpen =
        m_file.open() && m_state.load(m_file) && adjust(marks, today) && isAsCounted(history);
    return m_isOpen;
}

bool RollUp::startAnew(const HistoryMarks& marks, const QDate& today)
{
    const qint64 until = openFrom(today);
    m_state = {.coverage = {.from = until, .until = until, .pending = {}}, .marks = marks};
    m_isOpen = m_file.create() && m_state.store(m_file);
    return m_isOpen;
}

bool RollUp::adjust(const HistoryMarks& marks, const QDate& today)
{
    const qint64 until = openFrom(today);
    RollUpCoverage& coverage = m_state.coverage;
    if (marks.stamp != m_state.marks.stamp || until - coverage.until > MostNewDays) {
        return false;
    }
    if (marks == m_state.marks && until == coverage.until) {
        return true;
    }
    if (!m_file.begin()) {
        return false;
    }
    RollUpDays days(m_file.connection());
    for (int month = RollUpMonths::monthOf(coverage.until); month < RollUpMonths::monthOf(until);
         ++month) {
        days.addChanged(month);
    }
    QList<DayRange> changed{coverage.summedIn({.first = until, .last = coverage.until})};
    for (const DayRange& pruned : m_state.marks.prunedSince(marks, coverage.until)) {
        changed += coverage.summedIn(pruned);
        coverage.makePending(changed.constLast());
    }
    coverage.moveUntil(until);
    m_state.marks = marks;
    return std::ranges::all_of(
               changed,
               [&days](const DayRange& range) { return range.isEmpty() || days.forget(range); }) &&
           days.sumMonths(coverage.summedMonths()) && m_state.store(m_file) && m_file.commit();
}

/// Another file in place of the one that was summed has other counts of the newest days, or none.
bool RollUp::isAsCounted(const QSqlDatabase& history) const
{
    constexpr int checkedDays = 7;
    qint64 first = m_state.coverage.until;
    const bool isRead = RowReader::forEachRow(
        m_file.connection(),
        QStringLiteral("SELECT DISTINCT day FROM hours ORDER BY day DESC LIMIT %1")
            .arg(checkedDays),
        RowReader::bindNothing,
        [&first](const QSqlQuery& row) { first = row.value(0).toLongLong(); });
    const std::optional<HourSums> summed = summedHours(m_file.connection(), first);
    HourSums counted;
    const HistoryScope days{.first = QDate::fromJulianDay(first),
                            .last = QDate::fromJulianDay(m_state.coverage.until - 1),
                            .profileId = {}};
    if (!isRead || !summed || !HourRows::read(history, days, counted)) {
        return false;
    }
    std::erase_if(counted, [this](const auto& hour) {
        return m_state.coverage.pending.contains(hour.first.julianDay);
    });
    return counted == *summed;
}

bool RollUp::prepareSome(const QSqlDatabase& history)
{
    if (!m_isOpen || m_state.coverage.isComplete()) {
        return false;
    }
    const RollUpState before = m_state;
    const std::optional<QList<DayCounts>> slice = readSlice(history);
    if (!slice) {
        m_state = before;
        return false;
    }
    if (!write(*slice, RollUpMonths::monthOf(before.coverage.from)) ||
        (m_state.coverage.isComplete() && !m_file.settle())) {
        discard();
        return false;
    }
    return !m_state.coverage.isComplete();
}

std::optional<QList<DayCounts>> RollUp::readSlice(const QSqlDatabase& history)
{
    QElapsedTimer elapsed;
    elapsed.start();
    QList<DayCounts> slice;
    RollUpCoverage& coverage = m_state.coverage;
    while (!coverage.isComplete() && elapsed.elapsed() < SliceMs) {
        std::optional<QDate> day = coverage.newestPending();
        if (day->isNull()) {
            day = DayList::before(history, QDate::fromJulianDay(coverage.from));
        }
        if (!day) {
            return std::nullopt;
        }
        if (day->isNull()) {
            coverage.from = RollUpCoverage::Beginning;
            break;
        }
        const std::optional<DayCounts> counts = RollUpDays::read(history, day->toJulianDay());
        if (!counts) {
            return std::nullopt;
        }
        slice.append(*counts);
        coverage.add(counts->day);
    }
    return slice;
}

bool RollUp::write(const QList<DayCounts>& slice, int currentMonth)
{
    if (!m_file.begin()) {
        return false;
    }
    RollUpDays days(m_file.connection());
    days.addChanged(currentMonth);
    return std::ranges::all_of(slice,
                               [&days](const DayCounts& counts) { return days.add(counts); }) &&
           days.sumMonths(m_state.coverage.summedMonths()) && m_state.store(m_file) &&
           m_file.commit();
}

void RollUp::discard()
{
    m_isOpen = false;
    m_file.remove();
    if (++m_failures > MostFailures) {
        giveUp();
    }
}

void RollUp::giveUp()
{
    m_isGivenUp = true;
    m_file.remove();
    Log::warn("Unable to keep sums of the history in: {}", m_file.fileName());
}
