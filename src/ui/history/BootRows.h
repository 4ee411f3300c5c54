// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryScope.h"
#include "ui/history/HistoryTypes.h"

#include <QSqlDatabase>

#include <optional>

/// Reads the boots of the machine.
namespace BootRows {

/// A session as it is stored: `start` in local time; `end` in UTC once a running session was
/// extended, but in local time as it was first inserted, at most `FirstEndSeconds` after the start.
/// Nothing where one of the texts is no time.
std::optional<BootSession> session(const QString& start, const QString& end);

constexpr int FirstEndSeconds = 65;

/// In the order of their starts, those that touch the days of `scope`; nothing where the statement
/// failed (which is in the log).
std::optional<QList<BootSession>> read(const QSqlDatabase& connection, const HistoryScope& scope);

} // namespace BootRows
