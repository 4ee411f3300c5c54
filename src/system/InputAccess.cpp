// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/InputAccess.h"

#include <QDir>

QStringList inputDeviceNodes(const QString& directory)
{
    QStringList paths;
    const QDir::Filters filters =
        QDir::Dirs | QDir::Files | QDir::Drives | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo& entry : QDir(directory).entryInfoList(filters, QDir::Unsorted)) {
        if (entry.fileName().startsWith(QStringLiteral("event"))) {
            paths.append(entry.absoluteFilePath());
        }
    }
    return paths;
}

bool hasInputDevices(const QString& directory)
{
    return !inputDeviceNodes(directory).isEmpty();
}
