// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ClientApiResponses.h"

#include <QObject>
#include <QString>

#include <memory>

class ClientApiResponder;
class ClientApiWebsocketServer;
class LiveRates;
class LocalStats;
class ProfileManager;
class QHostAddress;
class QHttpServer;
class QHttpServerRequest;
class QHttpServerResponse;

/// Lets other programs read the statistics and ask the client to act, over HTTP and WebSocket, as
/// the settings allow. Thread: main.
class ClientApiServer : public QObject
{
    Q_OBJECT

public:
    /// Stopped at first. All three outlive this object.
    ClientApiServer(const LocalStats& localStats, const LiveRates& rates, ProfileManager& profiles,
                    QObject* parent = nullptr);
    ~ClientApiServer() override;

    /// Follows the settings: starts, stops, or starts anew on other ports; another list of
    /// addresses holds from the next request on, and closes the WebSocket connections it no longer
    /// allows.
    void changeState();

    void stop(); ///< Closes both servers and their connections.

    quint16 getHttpPort() const;
    quint16 getWebsocketPort() const;
    bool isRunning() const;

    /// Addresses separated by commas, each compared as text; empty: every address is allowed.
    QString getAllowedIPs() const;
    void setAllowedIPs(const QString& addresses);

Q_SIGNALS:
    void apiWantsToZurge();
    void apiWantsToOpenMainWindow();
    void apiWantsToActivateProfile(int profileId, const QString& profileName);

    /// A port is in use: what it means and what to do.
    void signalNeedTrayIconMessage(const QString& title, const QString& text);

private:
    bool setup();
    bool listen();
    bool isRemoteIpAllowed(const QHostAddress& address) const;

    ClientApiResponses m_responses;
    ProfileManager& m_profiles;
    std::unique_ptr<QHttpServer> m_http; ///< Null while stopped.
    std::unique_ptr<ClientApiWebsocketServer> m_websocket;
    std::unique_ptr<ClientApiResponder> m_responder;
    quint16 m_httpPort = 0;
    quint16 m_websocketPort = 0;
    QString m_allowedIps;
    bool m_running = false;
};
