// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

/// Is told how far some work on a file is, in bytes, and answers whether to go on. Called on the
/// thread that works.
using FileProgress = std::function<bool(qint64 done, qint64 total)>;

/// How work on a file ended. Plain value.
struct FileWork
{
    enum class End
    {
        Done,
        Abandoned, ///< Its progress said so.
        Failed,
    };

    End end = End::Failed;
    QString reason = {}; ///< Why it failed, for the user to read.

    bool isDone() const { return end == End::Done; }

    static FileWork done() { return {.end = End::Done}; }

    static FileWork abandoned() { return {.end = End::Abandoned}; }

    static FileWork failed(const QString& reason) { return {.end = End::Failed, .reason = reason}; }
};
