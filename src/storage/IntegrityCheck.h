// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

#include <atomic>
#include <optional>

/// What SQLite says about a database's soundness. Plain value. Thread: that of the connection.
struct IntegrityCheck
{
    enum class Depth
    {
        Quick, ///< Every page and every row; reads the file once.
        Full,  ///< Also every index against its table; several times as long.
    };

    enum class Verdict
    {
        Sound,
        Damaged,
        Unknown, ///< The check could not run: no permission, locked, no memory.
    };

    Verdict verdict = Verdict::Unknown;
    QString text; ///< "ok", the first fault found, or why the check could not run.

    static IntegrityCheck run(const QSqlDatabase& connection, Depth depth);

    /// As `run`, and gives up within a moment, without a result, once `abandoned` is set by another
    /// thread. For a connection that `sqliteHandle` knows; on another it runs to the end.
    static std::optional<IntegrityCheck> runUntil(const std::atomic<bool>& abandoned,
                                                  const QSqlDatabase& connection, Depth depth);

    /// Whether a file that no one uses passes the quick check.
    static bool isSound(const QString& databaseFile);

    /// Whether a running check on the connection can be given up.
    static bool canBeAbandoned(const QSqlDatabase& connection);
};
