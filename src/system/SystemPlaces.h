// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where the probe finds the machine. The defaults are the real places; a test hands in its own.
struct SystemPlaces
{
    QString root = QStringLiteral("/"); ///< Below it lie "proc", "sys", "etc" and "usr".
    QString inputDirectory = QStringLiteral("/dev/input");

    /// The client's data directory, for the small file that keeps the boot time; empty means the
    /// per-user one.
    QString dataDirectory;
};
