// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Version.h"

QString versionString()
{
    return QStringLiteral(TALLYVANE_VERSION);
}
