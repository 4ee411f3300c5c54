// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/history/HistoryTypes.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class HistorySource;
class RawHistory;
class ReadingConnection;

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
    explicit History(const QString& databaseFile);
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

    /// How much of the days before today is summed up, 0 to 1: while less than 1, answers over long
    /// ranges lack the rest.
    double preparedShare() const;

    /// In the order of their starts, those that touch the days of `scope`, whatever its profile.
    std::optional<QList<BootSession>> boots(const HistoryScope& scope);

    /// The first day on which anything was counted; null where nothing was.
    std::optional<QDate> firstDay();

    /// The connection to the client's database, for reading; not open where the file cannot be
    /// opened, which the next call tries again.
    const QSqlDatabase& connection();

private:
    using Add = std::function<bool(HistorySource& source, const HistoryScope& part)>;

    /// Runs `add` for parts of `scope` that together are all of it.
    bool collect(const HistoryScope& scope, const Add& add);

    QString m_databaseFile;
    std::unique_ptr<ReadingConnection> m_connection;
    std::unique_ptr<RawHistory> m_raw; ///< After the connection that it reads.
};
