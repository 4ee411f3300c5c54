// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// While it lives, counts what SQLite writes anywhere in this process, and makes one write fail as
/// on a full disk, or end the process. Nothing is forced to the disk meanwhile: the tests end
/// processes, they do not cut the power.
class FailingVfs
{
public:
    enum class Fault
    {
        DiskFull, ///< From the chosen write on.
        Kill,     ///< Before the chosen write, the process ends with `KilledExitCode`.
    };

    static constexpr int KilledExitCode = 77;

    /// `write` counts from 0.
    FailingVfs(Fault fault, int write);
    ~FailingVfs();

    FailingVfs(const FailingVfs&) = delete;
    FailingVfs& operator=(const FailingVfs&) = delete;

    /// Whether the chosen write was reached.
    bool hasStruck() const;
};
