// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PortableMode.h"

#include "account/TvwFile.h"
#include "base/Log.h"
#include "base/SnapStandardPaths.h"
#include "storage/DatabaseFiles.h"

#include <QCoreApplication>
#include <QFile>

namespace {

QString markerPath()
{
    return PortableMode::directory() + QStringLiteral("/tallyvane.portable");
}

bool copyData(const QString& from, const QString& to)
{
    if (!SnapStandardPaths::createPrivateDirectory(to)) {
        Log::error("Unable to create the directory {}", to);
        return false;
    }
    if (QFile::exists(to + QLatin1Char('/') + DatabaseFiles::Name)) {
        return true;
    }
    for (const QString& name : {TvwFile::FileName, DatabaseFiles::Name}) {
        QFile source(from + QLatin1Char('/') + name);
        const QString target = to + QLatin1Char('/') + name;
        if (source.exists() && !QFile::exists(target) && !source.copy(target)) {
            Log::error("Unable to copy {} to {}: {}", source.fileName(), target,
                       source.errorString());
            return false;
        }
    }
    return true;
}

} // namespace

bool PortableMode::isActive()
{
    return QFile::exists(markerPath());
}

QString PortableMode::directory()
{
    return QCoreApplication::applicationDirPath();
}

bool PortableMode::toggle(const QString& userDirectory)
{
    QFile marker(markerPath());
    if (isActive()) {
        return copyData(directory(), userDirectory) && marker.remove();
    }
    if (!copyData(userDirectory, directory())) {
        return false;
    }
    if (!marker.open(QIODevice::WriteOnly)) {
        Log::error("Unable to create {}: {}", marker.fileName(), marker.errorString());
        return false;
    }
    return true;
}
