// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Database;

/// What the database remembers of the account and the computer that it is linked to: what the
/// service has been told, and what it has told last. Thread: main.
namespace AccountMarks {

/// Forgets all of it, since another account, another computer or none is linked from now on.
/// Nothing that was counted is touched.
void forget(Database& database);

} // namespace AccountMarks
