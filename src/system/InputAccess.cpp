// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/InputAccess.h"

#include <QDir>

bool hasInputDevices(const QString& directory)
{
    return !QDir(directory)
                .entryList({QStringLiteral("event*")}, QDir::Files | QDir::System, QDir::Unsorted)
                .isEmpty();
}
