// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QDir>
#include <QString>

#include <optional>

/// When the machine was booted, the same to the second as long as this boot lasts.
///
/// The kernel derives the "btime" of "/proc/stat" from the clock, so it moves whenever the clock is
/// set, as most machines do some seconds after start-up. The rows of `uptimes` are found by this
/// value, so the first one seen is kept in the file "boot-time" of the data directory, beside the
/// id that the kernel gives each boot ("/proc/sys/kernel/random/boot_id"). It is kept as local time
/// text, as it stands in those rows: a change of time zone does not change it either. Thread: main.
class BootTime
{
public:
    /// Reads below `root`; `dataDirectory` must exist for the value to outlast this run.
    BootTime(const QString& root, const QString& dataDirectory);

    /// Invalid where the kernel does not tell.
    QDateTime value();

private:
    QDateTime determine() const;
    QDateTime keptFor(const QString& bootId) const;
    void keep(const QString& bootId, const QDateTime& time) const;

    QDir m_root;
    QString m_file;
    std::optional<QDateTime> m_value;
};
