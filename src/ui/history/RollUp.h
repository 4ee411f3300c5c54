// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/RollUpFile.h"
#include "ui/history/RollUpState.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

#include <optional>

struct DayCounts;

/// Sums of the days that are over, in a file beside the client's database, so that long ranges need
/// not read every hour. Made from the hourly rows and equal to them; whoever deletes the file loses
/// nothing but the time to make it again. Where it cannot be kept, that is in the log once, and
/// there are no sums.
///
/// The last two days are never summed: around midnight, and while their owner crosses time zones,
/// rows of yesterday still change.
///
/// Thread: the query worker's.
class RollUp
{
public:
    static inline const QString FileName = QStringLiteral("tallyvane-rollup.db");
    static constexpr int OpenDays = 2; ///< Today included.

    explicit RollUp(const QString& fileName);

    /// Brings the sums in line with the client's database, as far as a few milliseconds allow: what
    /// is no longer right is forgotten. Due before every use; `version` is the database's. False
    /// where there are no sums.
    bool follow(const QSqlDatabase& history, qint64 version, const QDate& today);

    /// Sums some days more: reads for `SliceMs`, and writes for about as long. False where nothing
    /// is left to do for now.
    bool prepareSome(const QSqlDatabase& history);

    const RollUpCoverage& coverage() const { return m_state.coverage; }

    /// To read the sums by. No query on it may outlive the next call.
    const QSqlDatabase& connection() const { return m_file.connection(); }

    /// Deletes the file, which could not be read or written. It is made anew once.
    void discard();

    static constexpr int SliceMs = 10;

private:
    bool open(const QSqlDatabase& history, const HistoryMarks& marks, const QDate& today);
    bool startAnew(const HistoryMarks& marks, const QDate& today);
    bool adjust(const HistoryMarks& marks, const QDate& today);
    bool isAsCounted(const QSqlDatabase& history) const;
    std::optional<QList<DayCounts>> readSlice(const QSqlDatabase& history);

    /// `currentMonth` is the one that the slices before were busy with.
    bool write(const QList<DayCounts>& slice, int currentMonth);
    void giveUp();

    RollUpFile m_file;
    RollUpState m_state;
    bool m_isOpen = false;
    bool m_isGivenUp = false;
    int m_failures = 0;
    qint64 m_version = 0; ///< Of the client's database as last followed.
    QDate m_today;        ///< As last followed.
};
