// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/CountryNames.h"

#include <QCoreApplication>
#include <QLocale>

QString countryName(const QString& code)
{
    if (code == QStringLiteral("LAN")) {
        return QCoreApplication::translate("CountryNames", "Local network");
    }
    if (code == QStringLiteral("??")) {
        return QCoreApplication::translate("CountryNames", "Unknown");
    }
    const QLocale::Territory territory = QLocale::codeToTerritory(code);
    return territory == QLocale::AnyTerritory ? code : QLocale::territoryToString(territory);
}
