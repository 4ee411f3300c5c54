// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/InstalledFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString installedFile(const QString& name)
{
    const QDir programs(QCoreApplication::applicationDirPath());
    for (const QString& directory : {programs.filePath(QStringLiteral("../share/tallyvane")),
                                     QStringLiteral(TALLYVANE_DATA_DIR)}) {
        const QFileInfo file(QDir(directory), name);
        if (file.isFile()) {
            return QDir::cleanPath(file.filePath());
        }
    }
    return {};
}
