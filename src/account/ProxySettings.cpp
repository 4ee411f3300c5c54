// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ProxySettings.h"

#include "base/Log.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

#include <QNetworkProxyFactory>

#include <utility>

ProxySettings ProxySettings::from(const Settings& settings)
{
    ProxySettings result;
    result.useOwn = settings.value(SettingsKeys::ProxyEnabled);
    result.useSystem = settings.value(SettingsKeys::ProxySystemEnabled);
    result.hostName = settings.value(SettingsKeys::ProxyHostname).trimmed();
    result.port = settings.value(SettingsKeys::ProxyPort);
    result.logIn = settings.value(SettingsKeys::ProxyAuthEnabled);
    result.user = settings.value(SettingsKeys::ProxyUser);
    result.password = settings.value(SettingsKeys::ProxyPassword);
    return result;
}

QNetworkProxy ProxySettings::proxy() const
{
    if (!useOwn) {
        return QNetworkProxy(useSystem ? QNetworkProxy::DefaultProxy : QNetworkProxy::NoProxy);
    }
    if (hostName.isEmpty() || port <= 0 || !std::in_range<quint16>(port)) {
        Log::warn("The proxy {}:{} is incomplete; connecting without one", hostName, port);
        return QNetworkProxy(QNetworkProxy::NoProxy);
    }
    QNetworkProxy proxy(QNetworkProxy::HttpProxy, hostName, static_cast<quint16>(port));
    if (logIn) {
        proxy.setUser(user);
        proxy.setPassword(password);
    }
    return proxy;
}

void applyNetworkProxy(const QNetworkProxy& proxy)
{
    const bool system = proxy.type() == QNetworkProxy::DefaultProxy;
    // Leaving the system's configuration also forgets the proxy set before, so this comes first.
    QNetworkProxyFactory::setUseSystemConfiguration(system);
    if (!system) {
        QNetworkProxy::setApplicationProxy(proxy);
    }
}
