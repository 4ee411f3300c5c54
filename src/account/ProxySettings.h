// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkProxy>
#include <QString>

class Settings;

/// How the program reaches the network, as the user set it. Plain value.
///
/// A proxy of the user's own goes before the desktop's: `useSystem` is on by default, so whoever
/// switches `useOwn` on means it.
struct ProxySettings
{
    bool useOwn = false;   ///< The HTTP proxy at `hostName` and `port`.
    bool useSystem = true; ///< What the desktop and the environment say.
    QString hostName = {};
    int port = 0;       ///< As stored; 1 to 65535 is a port.
    bool logIn = false; ///< With `user` and `password`, where the proxy asks.
    QString user = {};
    QString password = {};

    static ProxySettings from(const Settings& settings);

    /// The proxy these settings ask for. `QNetworkProxy::DefaultProxy` stands for the desktop's; an
    /// own proxy without a host or a port is none.
    QNetworkProxy proxy() const;
};

/// Makes every connection of the program, from now on, go through what `proxy` returned. Main
/// thread.
void applyNetworkProxy(const QNetworkProxy& proxy);
