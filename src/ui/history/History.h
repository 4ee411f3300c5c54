// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/CountTable.h"
#include "ui/history/HistoryScope.h"
#include "ui/history/HistorySums.h"
#include "ui/history/HistoryTypes.h"
#include "ui/history/KnownInterfaces.h"
#include "ui/history/TrafficTypes.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class HistorySource;
class RawHistory;
class ReadingConnection;
class RollUp;
struct AnswerParts;

/// Answers what was counted over any days, for the views.
///
/// Every answer is nothing (`std::nullopt`) where the database could not be read, which is in the
/// log. Lists hold no entries of zero. A statement reads the database for a few milliseconds only,
/// since a reader holds up whoever writes; transactions that span several are never open.
///
/// Thread: the query worker's, which makes and destroys it.
class History
{
public:
    /// Whether sums of past days are kept in a file beside the database; without, long ranges take
    /// seconds.
    enum class RollUps
    {
        Kept,
        None,
    };

    using Today = std::function<QDate()>;

    explicit History(const QString& databaseFile, RollUps rollUps = RollUps::Kept,
                     Today today = &QDate::currentDate);
    ~History();

    History(const History&) = delete;
    History& operator=(const History&) = delete;

    /// A number that differs from the last one where something was written since; nothing where
    /// the database cannot be read.
    std::optional<qint64> version();

    std::optional<Totals> totals(const HistoryScope& scope);

    /// In the order of days; days on which nothing was counted are left out.
    std::optional<QList<DayTotals>> days(const HistoryScope& scope);

    /// In the order of hours; `scope` is one day.
    std::optional<QList<HourTotals>> hours(const HistoryScope& scope);

    /// In the order of weekdays and hours.
    std::optional<QList<WeekHourTotals>> weekHours(const HistoryScope& scope);

    // Most used first.
    std::optional<QList<KeyCount>> keys(const HistoryScope& scope);
    std::optional<QList<CombinationCount>> combinations(const HistoryScope& scope, int limit);
    std::optional<QList<ButtonCount>> buttons(const HistoryScope& scope); ///< Of three months.
    std::optional<QList<ScrollCount>> scrolls(const HistoryScope& scope);
    std::optional<QList<ClickCell>> clickCells(const HistoryScope& scope); ///< Of three months.

    /// Most keys first; ties by time in front.
    std::optional<QList<ApplicationTotals>> applications(const HistoryScope& scope);

    /// In the order of days; only `paths`.
    std::optional<QList<ApplicationDay>> applicationDays(const HistoryScope& scope,
                                                         const QStringList& paths);

    /// What crossed all interfaces, in the order of days or hours. Interfaces are counted for all
    /// profiles together, so that of `scope` is not looked at; hours are of one day.
    std::optional<QList<TrafficDay>> trafficDays(const HistoryScope& scope);
    std::optional<QList<TrafficHour>> trafficHours(const HistoryScope& scope);
    std::optional<QList<InterfaceTotals>> interfaces(const HistoryScope& scope);

    /// By MAC address; also those that nothing crossed.
    std::optional<QHash<QString, InterfaceFacts>> knownInterfaces();

    // Most bytes first.
    std::optional<QList<ApplicationTraffic>> applicationTraffic(const HistoryScope& scope);
    std::optional<QList<CountryTraffic>> countries(const HistoryScope& scope);
    std::optional<QList<ServiceTraffic>> services(const HistoryScope& scope);

    /// How much of the days asked for is in the answers since `version` was last asked for, 0 to 1;
    /// of several answers, in the one that lacks most. While days are still being summed, answers
    /// over long ranges lack the oldest.
    double preparedShare() const;

    /// Sums some of the days that are over, for some 30 ms. False where nothing is left to do: call
    /// it again after the next question.
    bool prepareMore();

    /// In the order of their starts, those that touch the days of `scope`, whatever its profile.
    std::optional<QList<BootSession>> boots(const HistoryScope& scope);

    /// The first day on which anything was counted; null where nothing was.
    std::optional<QDate> firstDay();

    /// The connection to the client's database, for reading; not open where the file cannot be
    /// opened, which the next call tries again.
    const QSqlDatabase& connection();

private:
    enum class Outcome
    {
        Read,
        Unreadable,
        SumsFailed, ///< What was added is of no use; ask again.
    };

    using Add = std::function<bool(HistorySource& source, const HistoryScope& part)>;

    /// Sums up over the parts of `scope` by `add`, which is handed the sums to add to; nothing
    /// where something could not be read.
    template <typename Sums, typename AddTo>
    std::optional<Sums> gather(const HistoryScope& scope, AddTo add);

    template <typename Sums, typename TakeRow>
    std::optional<Sums> gatherCounts(CountTable table, const HistoryScope& scope, TakeRow take);

    std::optional<TotalsSums> gatherTotals(const HistoryScope& scope, TotalsBy by);

    Outcome collect(const HistoryScope& scope, const Add& add);
    AnswerParts parts(const HistoryScope& scope) const;

    /// Follows what happened since the last question; false where the database cannot be read.
    bool follow();

    QString m_databaseFile;
    Today m_today;
    std::unique_ptr<ReadingConnection> m_connection;
    std::unique_ptr<RawHistory> m_raw; ///< After the connection that it reads.
    std::unique_ptr<RollUp> m_rollUp;  ///< None where no sums are kept.
    bool m_hasSums = false;            ///< As of the last question.
    std::optional<qint64> m_version;   ///< As of the last question.
    QDate m_firstDay;                  ///< As of `m_version`.
    double m_share = 1;
};
