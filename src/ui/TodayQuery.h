// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>

#include <optional>

/// What was counted on one day, over all profiles. Plain value.
struct TodayFigures
{
    struct HourCount
    {
        int hour = 0; ///< Local, 0 to 23.
        qint64 keys = 0;
        friend bool operator==(const HourCount&, const HourCount&) = default;
    };

    struct KeyCount
    {
        int key = 0; ///< A stored key; see `KeyNames`.
        qint64 keys = 0;
        friend bool operator==(const KeyCount&, const KeyCount&) = default;
    };

    struct ApplicationCount
    {
        QString path;
        qint64 keys = 0;
        friend bool operator==(const ApplicationCount&, const ApplicationCount&) = default;
    };

    QDate day;
    qint64 keys = 0;                      ///< The sum of `hours`.
    QList<HourCount> hours;               ///< Those with keys, in their order.
    QList<KeyCount> keyCounts;            ///< Most used first.
    QList<ApplicationCount> applications; ///< Most used first.

    friend bool operator==(const TodayFigures&, const TodayFigures&) = default;
};

/// Reads what was counted on a day.
///
/// Three tables count the same keys, and each leaves some out: `keypresses` those of the first
/// write of an hour and profile; `keypress_frequency` the unknown ones, and all while the heat map
/// is off; `input_per_application` those of excluded applications, and all while that is off. None
/// counts a key twice, so for each hour and profile the largest of the three is the nearest to the
/// truth.
///
/// Thread: that of the connection. The statements are short on purpose and share no transaction: a
/// reader holds up whoever writes.
namespace TodayQuery {

/// The figures of `day`; nothing where a statement failed (which is in the log).
std::optional<TodayFigures> run(const QSqlDatabase& connection, const QDate& day);

/// The keys of `day` alone; 0 where the statement failed.
qint64 keys(const QSqlDatabase& connection, const QDate& day);

/// A number that differs from the last one where another connection has written since; nothing
/// where the database cannot be read.
std::optional<qint64> dataVersion(const QSqlDatabase& connection);

} // namespace TodayQuery
