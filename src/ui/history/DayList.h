// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QSqlDatabase>

#include <optional>

/// Finds days of which there are hourly rows. Answers are null where there is no such day, and
/// nothing where the statement failed, which is in the log. Thread: that of the connection.
namespace DayList {

std::optional<QDate> first(const QSqlDatabase& connection);

/// The newest before `day`.
std::optional<QDate> before(const QSqlDatabase& connection, const QDate& day);

} // namespace DayList
