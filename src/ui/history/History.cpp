// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/History.h"

#include "storage/DSqlQuery.h"
#include "storage/ReadingConnection.h"
#include "ui/history/BootRows.h"
#include "ui/history/DayList.h"
#include "ui/history/HistoryLists.h"
#include "ui/history/RawHistory.h"
#include "ui/history/RollUp.h"
#include "ui/history/RollUpSource.h"
#include "ui/history/TrafficLists.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace {

QString rollUpFile(const QString& databaseFile)
{
    return QFileInfo(databaseFile).dir().filePath(RollUp::FileName);
}

/// A number that differs from the last one where another connection has written since; nothing
/// where the database cannot be read.
std::optional<qint64> dataVersion(const QSqlDatabase& connection)
{
    DSqlQuery query(connection);
    if (!query.exec(QStringLiteral("PRAGMA data_version")) || !query.next()) {
        return std::nullopt;
    }
    return query.value(0).toLongLong();
}

void addNumber(NumberSums& sums, const QSqlQuery& row, int at)
{
    sums[row.value(at).toInt()] += row.value(at + 1).toLongLong();
}

void addText(TextSums& sums, const QSqlQuery& row, int at)
{
    sums[row.value(at).toString()] += row.value(at + 1).toLongLong();
}

void addCell(CellSums& sums, const QSqlQuery& row, int at)
{
    sums[{row.value(at).toInt(), row.value(at + 1).toInt()}] += row.value(at + 2).toLongLong();
}

void addApplication(ApplicationSums& sums, const QSqlQuery& row, int at)
{
    sums[row.value(at).toString()] += ApplicationCounts::fromRow(row, at + 1);
}

void addTraffic(TrafficSums& sums, const QSqlQuery& row, int at)
{
    sums[row.value(at).toString()] += trafficFromRow(row, at + 1);
}

void addService(ServiceSums& sums, const QSqlQuery& row, int at)
{
    sums[{row.value(at).toInt(), row.value(at + 1).toString()}] += trafficFromRow(row, at + 2);
}

/// Interfaces are counted for all profiles together.
HistoryScope ofAllProfiles(const HistoryScope& scope)
{
    return {.first = scope.first, .last = scope.last, .profileId = {}};
}

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

History::History(const QString& databaseFile, RollUps rollUps, Today today)
    : m_databaseFile(databaseFile)
    , m_today(std::move(today))
{
    if (rollUps == RollUps::Kept) {
        m_rollUp = std::make_unique<RollUp>(rollUpFile(databaseFile));
    }
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
    m_share = 1;
    return dataVersion(connection());
}

double History::preparedShare() const
{
    return m_share;
}

bool History::prepareMore()
{
    return m_rollUp && follow() && m_hasSums && m_rollUp->prepareSome(connection());
}

bool History::follow()
{
    const std::optional<qint64> version = dataVersion(connection());
    if (!version) {
        return false;
    }
    if (version != m_version) {
        const std::optional<QDate> first = DayList::first(connection());
        if (!first) {
            return false;
        }
        m_firstDay = *first;
        m_version = version;
    }
    m_hasSums = m_rollUp && m_rollUp->follow(connection(), *version, m_today());
    return true;
}

AnswerParts History::parts(const HistoryScope& scope) const
{
    const qint64 firstDay = m_firstDay.toJulianDay();
    const RollUpCoverage none{.from = firstDay, .until = firstDay, .pending = {}};
    return (m_hasSums ? m_rollUp->coverage() : none).parts(scope, m_firstDay, m_today());
}

History::Outcome History::collect(const HistoryScope& scope, const Add& add)
{
    if (!follow()) {
        return Outcome::Unreadable;
    }
    const AnswerParts answer = parts(scope);
    if (answer.summed) {
        RollUpSource summed(m_rollUp->connection(), m_rollUp->coverage().summedMonths());
        if (!add(summed, *answer.summed)) {
            return Outcome::SumsFailed;
        }
    }
    const bool isRead = std::ranges::all_of(
        answer.hourly, [&](const HistoryScope& part) { return add(*m_raw, part); });
    m_share = std::min(m_share, answer.share);
    return isRead ? Outcome::Read : Outcome::Unreadable;
}

template <typename Sums, typename AddTo>
std::optional<Sums> History::gather(const HistoryScope& scope, AddTo add)
{
    while (true) {
        Sums sums;
        const Outcome outcome =
            collect(scope, [&](HistorySource& source, const HistoryScope& part) {
                return add(source, part, sums);
            });
        if (outcome == Outcome::SumsFailed) {
            m_rollUp->discard();
            continue;
        }
        return outcome == Outcome::Read ? std::optional(std::move(sums)) : std::nullopt;
    }
}

template <typename Sums, typename TakeRow>
std::optional<Sums> History::gatherCounts(CountTable table, const HistoryScope& scope, TakeRow take)
{
    return gather<Sums>(
        scope, [table, take](HistorySource& source, const HistoryScope& part, Sums& sums) {
            return source.eachCount(table, part,
                                    [&](const QSqlQuery& row, int at) { take(sums, row, at); });
        });
}

std::optional<TotalsSums> History::gatherTotals(const HistoryScope& scope, TotalsBy by)
{
    return gather<TotalsSums>(scope,
                              [by](HistorySource& source, const HistoryScope& part,
                                   TotalsSums& sums) { return source.addTotals(part, by, sums); });
}

std::optional<Totals> History::totals(const HistoryScope& scope)
{
    auto sums = gatherTotals(scope, TotalsBy::Nothing);
    return sums ? std::optional((*sums)[0]) : std::nullopt;
}

std::optional<QList<DayTotals>> History::days(const HistoryScope& scope)
{
    const auto sums = gatherTotals(scope, TotalsBy::Day);
    return sums ? std::optional(HistoryLists::days(*sums)) : std::nullopt;
}

std::optional<QList<HourTotals>> History::hours(const HistoryScope& scope)
{
    const auto sums = gatherTotals(scope, TotalsBy::Hour);
    return sums ? std::optional(HistoryLists::hours(*sums)) : std::nullopt;
}

std::optional<QList<WeekHourTotals>> History::weekHours(const HistoryScope& scope)
{
    const auto sums = gatherTotals(scope, TotalsBy::WeekHour);
    return sums ? std::optional(HistoryLists::weekHours(*sums)) : std::nullopt;
}

std::optional<QList<KeyCount>> History::keys(const HistoryScope& scope)
{
    const auto sums = gatherCounts<NumberSums>(CountTable::Keys, scope, addNumber);
    return sums ? std::optional(HistoryLists::keys(*sums)) : std::nullopt;
}

std::optional<QList<CombinationCount>> History::combinations(const HistoryScope& scope, int limit)
{
    const auto sums = gatherCounts<TextSums>(CountTable::Combinations, scope, addText);
    return sums ? std::optional(HistoryLists::combinations(*sums, limit)) : std::nullopt;
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
    const auto sums = gatherCounts<NumberSums>(CountTable::Scrolls, scope, addNumber);
    return sums ? std::optional(HistoryLists::scrolls(*sums)) : std::nullopt;
}

std::optional<QList<ClickCell>> History::clickCells(const HistoryScope& scope)
{
    const auto sums = gatherCounts<CellSums>(CountTable::ClickCells, scope, addCell);
    return sums ? std::optional(HistoryLists::clickCells(*sums)) : std::nullopt;
}

std::optional<QList<ApplicationTotals>> History::applications(const HistoryScope& scope)
{
    const auto sums =
        gatherCounts<ApplicationSums>(CountTable::Applications, scope, addApplication);
    const auto known = KnownApplications::read(connection(), scope.profileId);
    return sums && known ? std::optional(HistoryLists::applications(*sums, *known)) : std::nullopt;
}

std::optional<QList<ApplicationDay>> History::applicationDays(const HistoryScope& scope,
                                                              const QStringList& paths)
{
    const QStringList distinct(QSet<QString>(paths.cbegin(), paths.cend()).values());
    const auto sums = gather<ApplicationDaySums>(
        scope,
        [&distinct](HistorySource& source, const HistoryScope& part, ApplicationDaySums& days) {
            return source.addApplicationDays(part, distinct, days);
        });
    return sums ? std::optional(HistoryLists::applicationDays(*sums)) : std::nullopt;
}

std::optional<QList<TrafficDay>> History::trafficDays(const HistoryScope& scope)
{
    const auto sums = gather<TrafficGroupSums>(
        scope, [](HistorySource& source, const HistoryScope& part, TrafficGroupSums& days) {
            return source.addTrafficDays(part, days);
        });
    return sums ? std::optional(TrafficLists::days(*sums)) : std::nullopt;
}

std::optional<QList<TrafficHour>> History::trafficHours(const HistoryScope& scope)
{
    connection();
    TrafficGroupSums sums;
    const bool isRead = m_raw->addTrafficHours(scope, sums);
    return isRead ? std::optional(TrafficLists::hours(sums)) : std::nullopt;
}

std::optional<QList<InterfaceTotals>> History::interfaces(const HistoryScope& scope)
{
    const auto sums =
        gatherCounts<TrafficSums>(CountTable::Interfaces, ofAllProfiles(scope), addTraffic);
    const auto known = KnownInterfaces::read(connection());
    return sums && known ? std::optional(TrafficLists::interfaces(*sums, *known)) : std::nullopt;
}

std::optional<QHash<QString, InterfaceFacts>> History::knownInterfaces()
{
    return KnownInterfaces::read(connection());
}

std::optional<QList<ApplicationTraffic>> History::applicationTraffic(const HistoryScope& scope)
{
    const auto sums = gatherCounts<TrafficSums>(CountTable::ApplicationTraffic, scope, addTraffic);
    const auto names = KnownApplications::names(connection());
    return sums && names ? std::optional(TrafficLists::applications(*sums, *names)) : std::nullopt;
}

std::optional<QList<CountryTraffic>> History::countries(const HistoryScope& scope)
{
    const auto sums = gatherCounts<TrafficSums>(CountTable::Countries, scope, addTraffic);
    return sums ? std::optional(TrafficLists::countries(*sums)) : std::nullopt;
}

std::optional<QList<ServiceTraffic>> History::services(const HistoryScope& scope)
{
    const auto sums = gatherCounts<ServiceSums>(CountTable::Services, scope, addService);
    return sums ? std::optional(TrafficLists::services(*sums)) : std::nullopt;
}

std::optional<QList<BootSession>> History::boots(const HistoryScope& scope)
{
    return BootRows::read(connection(), scope);
}

std::optional<QDate> History::firstDay()
{
    return follow() ? std::optional(m_firstDay) : std::nullopt;
}
