// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkInterfaces.h"

#include <QFileInfo>
#include <QHostAddress>
#include <QNetworkInterface>

namespace {

bool isWireless(const QString& sysClassNet, const QString& name)
{
    const QString directory = sysClassNet + QLatin1Char('/') + name;
    return QFileInfo::exists(directory + QStringLiteral("/wireless")) ||
           QFileInfo::exists(directory + QStringLiteral("/phy80211"));
}

QStringList addressTexts(const QNetworkInterface& source)
{
    QStringList texts;
    for (const QNetworkAddressEntry& entry : source.addressEntries()) {
        QHostAddress address = entry.ip();
        address.setScopeId({});
        texts.append(address.toString());
    }
    return texts;
}

} // namespace

QList<Interface> networkInterfaces(const QString& sysClassNet)
{
    QList<Interface> result;
    for (const QNetworkInterface& source : QNetworkInterface::allInterfaces()) {
        if (source.flags().testFlag(QNetworkInterface::IsLoopBack)) {
            continue;
        }
        Interface interface;
        interface.mac_address = source.hardwareAddress().toUpper();
        interface.description = source.humanReadableName();
        interface.wifi = isWireless(sysClassNet, source.name());
        interface.ip_list = addressTexts(source);
        interface.index = source.index();
        interface.name = source.name();
        result.append(interface);
    }
    return result;
}
