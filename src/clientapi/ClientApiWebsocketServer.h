// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ListeningPair.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <QWebSocketServer>

#include <functional>

class GuardedSocket;
class GuardedTcpServer;
class ProfileManager;
class QHostAddress;
class QWebSocket;
class QWebSocketCorsAuthenticator;
struct WebsocketMessage;

/// The WebSocket server for control surfaces: a client that identifies itself receives the
/// statistics every two seconds and may ask the client to act. Thread: main.
class ClientApiWebsocketServer : public QObject
{
    Q_OBJECT

public:
    using Statistics = std::function<QJsonObject()>;

    /// What one client may cost. A message beyond, or a client that lets more than that wait, ends
    /// its connection.
    static constexpr quint64 LongestMessage = 65'536; ///< Bytes, over all its fragments.
    static constexpr int LargestBacklog = 131'072;    ///< Bytes not taken by the client.
    static constexpr int MostConnections = 256;       ///< Per address family.

    /// Updates between two beats because some client asked. Whoever asks for more waits for the
    /// beat.
    static constexpr int MostUpdatesAskedFor = 100;

    /// `statistics` is asked for what an update holds, once for each, and only when some client has
    /// identified itself. `profiles` outlives this object.
    ClientApiWebsocketServer(Statistics statistics, ProfileManager& profiles,
                             QObject* parent = nullptr);
    ~ClientApiWebsocketServer() override;

    /// On all addresses of IPv4 and IPv6; 0: at a port that is free. False (and log lines) where
    /// the port is in use. To be called while stopped.
    bool listen(unsigned short port);
    void stop(); ///< Closes the server and the sockets.

    quint16 port() const; ///< 0 while stopped.

    /// Addresses as texts; none: all are allowed. Those connected that are not among them are
    /// refused now.
    void setAllowedIps(const QList<QString>& addresses);

    /// Whose pages may connect; see `WebPages::isOwnOrigin`.
    void setHttpPort(quint16 port);

Q_SIGNALS:
    void websocketWantsToZurge();
    void websocketWantsToOpenMainWindow();

private:
    void onNewConnection();
    void beginHandshakes(GuardedTcpServer* server);
    GuardedSocket* connectionOf(const QWebSocket& socket) const;
    void checkOrigin(QWebSocketCorsAuthenticator* authenticator) const;
    bool isAllowed(const QHostAddress& address) const;
    void accept(QWebSocket* socket);
    void refuse(QWebSocket* socket);

    void processTextMessage(const QString& text, QWebSocket* socket);
    void perform(const WebsocketMessage& message, QWebSocket* socket);
    void identify(const WebsocketMessage& message, QWebSocket* socket);
    void activateProfile(const WebsocketMessage& message, QWebSocket* socket);
    void sendUpdateToClients();
    void sendUpdateAskedFor();
    void onBeat();
    void socketDisconnected(QWebSocket* socket, const QString& peer);
    void removeSocket(QWebSocket* socket);

    static void getJSONAndOutputToClient(const QMap<QString, QVariant>& object, QWebSocket* socket);
    static void respondWithOK(QWebSocket* socket);
    static void respondWith400(QWebSocket* socket);
    static void respondWith404(QWebSocket* socket);

    Statistics m_statistics;
    ProfileManager& m_profiles;
    QWebSocketServer m_server;       ///< Never listens itself: it is handed each connection.
    ListeningPair m_listening;       ///< Empty while stopped.
    QList<QWebSocket*> m_sockets;    ///< Connected and allowed; children of this object.
    QList<QWebSocket*> m_identified; ///< Of these.
    QList<QString> m_allowedIps;
    quint16 m_httpPort = 0;
    QTimer m_updateTimer;
    int m_updatesAskedFor = 0; ///< Since the last beat.
};
