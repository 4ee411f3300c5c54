// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/RollUpMonths.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>

#include <array>
#include <optional>

/// What tells that days of the hourly rows have changed after they were over. Plain value.
struct HistoryMarks
{
    /// The tables of which old days are deleted, in the order of `firstDays`.
    static constexpr int PrunedTables = 2;

    QString stamp; ///< Another one where any day may have changed; may be empty.

    /// The first day in each pruned table, Julian; 0 where it has none.
    std::array<qint64, PrunedTables> firstDays{};

    /// Those of the client's database; nothing where it cannot be read.
    static std::optional<HistoryMarks> read(const QSqlDatabase& history);

    /// The days that `newer` does not have any more; up to `end` where it has none at all.
    QList<DayRange> prunedSince(const HistoryMarks& newer, qint64 end) const;

    friend bool operator==(const HistoryMarks&, const HistoryMarks&) = default;
};
