// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DatabaseFiles.h"

#include <QSqlDatabase>
#include <QString>

/// How connections to the database are made. Any thread: that of the connection.
namespace DatabaseConnection {

/// How long a statement waits for the lock of another connection.
constexpr int BusyTimeoutMs = 300'000;

/// The connection of that name, which is made where there is none yet.
QSqlDatabase named(const QString& name);

/// The options of every connection.
QString options(DatabaseFiles::Access access);

/// The settings of every connection that writes.
void tune(const QSqlDatabase& connection);

/// The limit of SQLite's memory, which concerns all connections of the process.
void limitMemory(const QSqlDatabase& connection);

} // namespace DatabaseConnection
