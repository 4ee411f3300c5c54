// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DiskSpace.h"

#include <QFile>

#include <sys/statvfs.h>

#include <algorithm>
#include <limits>

qint64 DiskSpace::usable(const QString& directory)
{
    struct statvfs disk = {};
    if (::statvfs(QFile::encodeName(directory).constData(), &disk) != 0 || disk.f_frsize == 0) {
        return 0;
    }
    constexpr quint64 most = std::numeric_limits<qint64>::max();
    const quint64 blocks = std::min<quint64>(disk.f_bavail, most / disk.f_frsize);
    const auto free = static_cast<qint64>(blocks * disk.f_frsize);
    return std::max<qint64>(0, free - ReserveBytes);
}
