// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>

struct sqlite3;

/// SQLite's own handle of a Qt connection; null where Qt's driver brings a SQLite of its own, whose
/// handles the library this program is linked to must not touch. Thread: that of the connection.
sqlite3* sqliteHandle(const QSqlDatabase& connection);
