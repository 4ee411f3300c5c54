// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/// The meaning of the kernel's and the system's text files, see proc(5) and os-release(5). Each
/// takes the whole content of one file, however damaged or cut off, and touches nothing else. Any
/// thread.
namespace ProcText {

/// The text of the file at `path`, or empty where it cannot be read. At most 4 MiB, which is far
/// beyond the size of every file that is asked for here.
QByteArray read(const QString& path);

/// The boot time of "/proc/stat", in seconds since the epoch.
std::optional<qint64> bootSeconds(QByteArrayView stat);

/// The installed memory of "/proc/meminfo", in KiB.
std::optional<qint64> memoryKib(QByteArrayView meminfo);

/// The first processor's name in "/proc/cpuinfo", under whichever heading its architecture uses.
QString processorName(QByteArrayView cpuinfo);

/// How many lines of "/proc/net/tcp" or "/proc/net/tcp6" are established connections.
int establishedConnections(QByteArrayView table);

/// The first word of "/proc/<pid>/cmdline", whose words end with a zero byte.
QByteArrayView firstArgument(QByteArrayView commandLine);

/// The value of `key` in "/etc/os-release", its quotes and escapes resolved.
QString osReleaseValue(QByteArrayView text, QByteArrayView key);

} // namespace ProcText
