// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ClientApiResponder.h"
#include "clientapi/ClientApiResponses.h"

#include <QHttpServerResponse>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class ClientApiWebsocketServer;
class GuardedHttpServer;
class LiveRates;
class LocalStats;
class ProfileManager;
class QHostAddress;
class QHttpServerRequest;

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

    /// Where it listens; 0 while stopped. A port 0 in the settings is one that the system chooses.
    quint16 getHttpPort() const;
    quint16 getWebsocketPort() const;
    bool isRunning() const;

    /// The port that it could not listen at, as the settings hold it; none where it did not try or
    /// runs.
    std::optional<int> refusedPort() const;

    /// Addresses separated by commas, each compared as text; empty: every address is allowed.
    QString getAllowedIPs() const;
    void setAllowedIPs(const QString& addresses);

Q_SIGNALS:
    // Emitted from the event loop, after the answer was given.
    void apiWantsToZurge();
    void apiWantsToOpenMainWindow();
    void apiWantsToActivateProfile(int profileId, const QString& profileName);

    /// It could not listen at a port: what it means and what to do. Once for the ports that the
    /// settings hold, though every change of the settings tries them again.
    void signalNeedTrayIconMessage(const QString& title, const QString& text);

    /// The settings were followed: it may run now, or no more, or elsewhere.
    void stateChanged();

private:
    /// As the settings hold them: numbers that are no ports among them.
    struct Ports
    {
        int http = 0;
        int websocket = 0;
        bool operator==(const Ports&) const = default;
    };

    static Ports portsOfSettings();
    void followSettings();
    bool setup();
    bool listen();
    bool listenForHttp();
    bool listenForWebsockets();
    void close();
    void refuse(int port);
    QHttpServerResponse respond(const QHttpServerRequest& request);
    QHttpServerResponse responseTo(const QHttpServerRequest& request);
    bool isRemoteIpAllowed(const QHostAddress& address) const;
    bool isOfWebPage(const QHttpServerRequest& request) const;

    ClientApiResponses m_responses;
    ClientApiResponder m_responder;
    ProfileManager& m_profiles;
    std::unique_ptr<GuardedHttpServer> m_http; ///< Null while stopped, like the next.
    std::unique_ptr<ClientApiWebsocketServer> m_websocket;
    Ports m_wanted;
    std::optional<Ports> m_told; ///< Of these the user knows that they do not work.
    quint16 m_httpPort = 0;
    quint16 m_websocketPort = 0;
    std::optional<int> m_refusedPort;
    QString m_allowedIps;
    bool m_running = false;
};
