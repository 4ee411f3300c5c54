// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>

/// Whether a file can take the place of the client's database. Plain value.
struct RestoreCheck
{
    enum class Verdict
    {
        Fit,
        NoDatabase,
        Foreign, ///< Another program's.
        Newer,   ///< A newer client's.
        Damaged,
        Abandoned,
    };

    Verdict verdict = Verdict::NoDatabase;
    QString text; ///< In SQLite's words, where it is damaged.

    /// Reads all of `file`, which nobody has open and which may hold anything. Gives up within a
    /// moment once `abandoned` is set by another thread. Changes nothing. Any thread.
    static RestoreCheck run(const QString& file, const std::atomic<bool>& abandoned);
};
