// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class Database;

/// What a start of the client puts right before it counts. Thread: main.
namespace StartupRepair {

/// Puts a database that waits in `dataDirectory` as "tallyvane-restore.db" in the place of
/// "tallyvane.db", which is kept as "tallyvane-before-restore.db". Before the database is opened.
/// Returns true if one was put in place; where that fails, the old database stays.
bool applyPendingRestore(const QString& dataDirectory);

/// Removes the negative distances that older versions could store.
void removeNegativeDistances(Database& database);

} // namespace StartupRepair
