// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What may be written to a disk. Any thread.
namespace DiskSpace {

/// Bytes that stay free for everyone else, the counting first.
constexpr qint64 ReserveBytes = Q_INT64_C(64) << 20;

/// Bytes that large files may still take in `directory`; 0 where that cannot be told.
qint64 usable(const QString& directory);

} // namespace DiskSpace
