// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Database;

/// Moves the stored history in time.
namespace HistoryShift {

/// Moves every row of the tables that follow the clock: dates by `days`, times by `days` and
/// `seconds` (both usually negative). A value keeps its written form ("T" or space, fraction,
/// zone); one that is no date stays as it is.
///
/// Runs inside the caller's transaction. Returns false (the log says why) at the first statement
/// that fails, with some tables moved: the caller rolls back to a savepoint. It fails while another
/// statement on the same connection is still being read, since SQLite then refuses to drop an
/// index. Thread: main.
bool apply(Database* database, int days, int seconds);

} // namespace HistoryShift
