// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

#include <optional>

/// Marks a database by a random text that is renewed whenever days that were stored already change
/// after the fact: moved in time, folded into another profile, deleted, or replaced by those of
/// another file. Whoever keeps sums of those days elsewhere notes the stamp beside them, and builds
/// them anew where it differs.
///
/// It lies in the table `settings`, and is neither read nor written through `Settings`, whose cache
/// would outlive a transaction that is rolled back. Thread: that of the connection.
namespace HistoryStamp {

/// Writes a new stamp, inside the transaction that changes the days. False (logged) where that
/// failed: the caller rolls back.
bool renew(const QSqlDatabase& connection);

/// As `renew`, for a database file that nobody has open.
bool renewFile(const QString& fileName);

/// The stamp; null where there is none yet.
std::optional<QString> read(const QSqlDatabase& connection);

} // namespace HistoryStamp
