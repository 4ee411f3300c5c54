// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QVariant>

/// Turns the hourly rows of a range of days into the series that goes with a zurge: per hour the
/// totals of the computer, of each application that the service knows, and of each profile. Reads
/// the main database; logs the range. Thread: main.
class ZurgeGenerateTimeSeries
{
public:
    /// From `time_series_last_sent`, or a week ago, until now.
    ZurgeGenerateTimeSeries();

    ZurgeGenerateTimeSeries(const QDateTime& from, const QDateTime& to);

    /// The series, by "day_hour_subject"; stores the current time as `time_series_last_sent`.
    QMap<QString, QVariant> getTimeSeries();
};
