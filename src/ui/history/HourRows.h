// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/history/HistoryTypes.h"

#include <QSqlDatabase>

#include <map>
#include <optional>
#include <tuple>

/// One hour of one day under one profile.
struct CountedHour
{
    qint64 julianDay = 0;
    int hour = 0; ///< Local, 0 to 23.
    int profileId = 0;

    friend bool operator==(const CountedHour&, const CountedHour&) = default;

    friend bool operator<(const CountedHour& left, const CountedHour& right)
    {
        return std::tie(left.julianDay, left.hour, left.profileId) <
               std::tie(right.julianDay, right.hour, right.profileId);
    }
};

using HourSums = std::map<CountedHour, Totals>;

/// Reads what was counted hour by hour.
///
/// Three tables count the same keys and three the same clicks, and each leaves some out:
/// `keypresses` and `mouseclicks` those of the first write of an hour and profile;
/// `keypress_frequency` the unknown keys, and all while the heat map is off;
/// `mouseclicks_frequency` all that are older than three months; `input_per_application` those in
/// excluded applications, and all while that is off. None counts one twice, so for each hour and
/// profile the largest of the three is the nearest to the truth.
///
/// Thread: that of the connection. One short statement per table.
namespace HourRows {

/// Adds to `sums`; false where a statement failed (which is in the log).
bool read(const QSqlDatabase& connection, const HistoryScope& scope, HourSums& sums);

/// The sum of the keys alone; nothing where a statement failed.
std::optional<qint64> keys(const QSqlDatabase& connection, const HistoryScope& scope);

} // namespace HourRows
