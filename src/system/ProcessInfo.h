// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QString>

/// What "/proc" tells of processes. Thread: any one at a time.
class ProcessInfo
{
public:
    /// Reads below `root`, "/" for the running system.
    explicit ProcessInfo(const QString& root);

    /// The executable of a process, by the link "/proc/%1/exe"; one that was replaced or removed
    /// since it started keeps its path. Empty for a process that has gone and for a kernel thread.
    ///
    /// The link of another user's process may not be read. Its command line may: its first word
    /// counts when it leads to a program that exists, so that a tool started as root is still told
    /// apart.
    QString processPath(qint64 processId) const;

private:
    QString programOfCommandLine(qint64 processId) const;

    QDir m_root;
};
