// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/network/LiveTraffic.h"

#include <QSqlDatabase>

/// Reads the traffic of the last hour, which only the connection that counts can see: it lies in a
/// temporary table. Thread: main, for a few milliseconds at most.
namespace RecentTraffic {

/// From the second `since` on, or, without one, of the last hour: seconds of the last two minutes,
/// sums of the minutes before. Nothing where a statement failed, which is in the log.
std::optional<QList<SecondTraffic>> read(const QSqlDatabase& counting, std::optional<qint64> since);

} // namespace RecentTraffic
