// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SnapStandardPaths.h"

#include <QDir>
#include <QFile>

namespace {

QString dataRoot()
{
    const QString snap = qEnvironmentVariable("SNAP_USER_DATA");
    if (!snap.isEmpty()) {
        return snap + QStringLiteral("/.local/share");
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

} // namespace

QString SnapStandardPaths::writableLocation(QStandardPaths::StandardLocation location)
{
    if (location == QStandardPaths::AppDataLocation ||
        location == QStandardPaths::AppLocalDataLocation) {
        return dataRoot() + QStringLiteral("/Tallyvane");
    }
    return QStandardPaths::writableLocation(location);
}

bool SnapStandardPaths::createPrivateDirectory(const QString& directory)
{
    if (QDir(directory).exists()) {
        return true;
    }
    // QDir::mkpath would create the last directory with the process's umask first, and so leave a
    // moment in which others may look inside.
    const QFileInfo info(directory);
    if (!QDir().mkpath(info.absolutePath())) {
        return false;
    }
    return QDir().mkdir(info.absoluteFilePath(),
                        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
