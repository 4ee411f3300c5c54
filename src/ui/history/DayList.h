// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QSqlDatabase>

#include <optional>

/// Finds the days of which there are hourly rows. Thread: that of the connection.
namespace DayList {

/// The first of them, null where there is none; nothing where a statement failed.
std::optional<QDate> first(const QSqlDatabase& connection);

} // namespace DayList
