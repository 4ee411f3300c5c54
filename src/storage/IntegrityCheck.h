// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

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
};
