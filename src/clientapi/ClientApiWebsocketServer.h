// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <QWebSocketServer>

#include <functional>

class ProfileManager;
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
    static constexpr quint64 LongestMessage = 65'536;   ///< Bytes, over all its fragments.
    static constexpr qint64 LargestBacklog = 1'048'576; ///< Bytes not taken by the client.
    static constexpr int MostConnections = 256;         ///< Per address family.

    /// `statistics` is asked for what an update holds, once a beat, and only when some client has
    /// identified itself. `profiles` outlives this object.
    ClientApiWebsocketServer(Statistics statistics, ProfileManager& profiles,
                             QObject* parent = nullptr);
    ~ClientApiWebsocketServer() override;

    /// On all addresses of IPv4 and IPv6. False (and log lines) where the port is in use.
    bool listen(unsigned short port);
    void stop(); ///< Closes the server and the sockets.

    /// Addresses as texts; none: all are allowed.
    void setAllowedIps(const QList<QString>& addresses);

    /// Whose pages may connect; see `WebPages::isOwnOrigin`.
    void setHttpPort(quint16 port);

Q_SIGNALS:
    void websocketWantsToZurge();
    void websocketWantsToOpenMainWindow();

private Q_SLOTS:
    void onNewConnection();
    void sendUpdateToClients();

private:
    void processTextMessage(const QString& text, QWebSocket* socket);
    void identify(const WebsocketMessage& message, QWebSocket* socket);
    void activateProfile(const WebsocketMessage& message, QWebSocket* socket);
    void socketDisconnected(QWebSocket* socket);
    void removeSocket(QWebSocket* socket);
    void checkOrigin(QWebSocketCorsAuthenticator* authenticator) const;
    static void getJSONAndOutputToClient(const QMap<QString, QVariant>& object, QWebSocket* socket);
    static void respondWithOK(QWebSocket* socket);
    static void respondWith400(QWebSocket* socket);
    static void respondWith404(QWebSocket* socket);

    Statistics m_statistics;
    ProfileManager& m_profiles;
    QWebSocketServer m_server;
    QList<QWebSocket*> m_sockets;    ///< Connected; owned by `m_server` until they are gone.
    QList<QWebSocket*> m_identified; ///< Of these.
    QList<QString> m_allowedIps;
    quint16 m_httpPort = 0;
    QTimer m_updateTimer;
};
