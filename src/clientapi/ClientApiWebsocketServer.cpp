// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiWebsocketServer.h"

#include "base/Log.h"
#include "clientapi/ConnectionLimits.h"
#include "clientapi/GuardedSocket.h"
#include "clientapi/GuardedTcpServer.h"
#include "clientapi/WebPages.h"
#include "clientapi/WebsocketMessage.h"
#include "profiles/ProfileManager.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QNetworkRequest>
#include <QSysInfo>
#include <QWebSocket>
#include <QWebSocketCorsAuthenticator>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace {

constexpr int BeatMs = 2'000;

/// Bytes: what a browser sends with all its headers, and more.
constexpr qint64 LongestHandshake = 16'384;

/// Bytes before a frame's payload: RFC 6455, section 5.2.
constexpr qint64 LongestFrameHeader = 14;

constexpr qint64 LongestFrame = ClientApiWebsocketServer::LongestMessage + LongestFrameHeader;

/// Bytes read at once. All messages among them are handled in one turn of the event loop, before
/// any timer has its turn.
constexpr qint64 FirstPiece = 1'024;

/// Of one connection. A client that is connected may be silent as long as it likes; where all
/// connections are taken, it is the first to go.
constexpr ConnectionLimits Limits{
    .connections = ClientApiWebsocketServer::MostConnections,
    .whenFull = ConnectionLimits::WhenFull::DropIdlest,
    .unansweredBytes = LongestHandshake,
    .unsentBytes = ClientApiWebsocketServer::LargestBacklog,
    .unanswered = std::chrono::seconds(10),
};

bool isAcceptedSource(const QString& source)
{
    static const QStringList accepted{QStringLiteral("streamdeck-plugin"),
                                      QStringLiteral("plugin")};
    return accepted.contains(source);
}

QString peerOf(const QWebSocket& socket)
{
    const QHostAddress address = socket.peerAddress();
    const bool isIpv6 = address.protocol() == QAbstractSocket::IPv6Protocol;
    return (isIpv6 ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(address.toString())
        .arg(socket.peerPort());
}

/// What a client wrote, as the log may hold it: a line stays one that can be read.
QString forLog(const QString& text)
{
    constexpr qsizetype longest = 1'024;
    return text.size() <= longest ? text : text.left(longest) + QStringLiteral("… (cut)");
}

QString written(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

/// The profile of that name, the default one among them.
std::optional<Profile> profileNamed(const ProfileManager& manager, const QString& name)
{
    QList<Profile> profiles = manager.profiles();
    profiles.prepend({ProfileManager::DefaultProfileId, ProfileManager::tr("General")});
    const auto found =
        std::find_if(profiles.cbegin(), profiles.cend(),
                     [&name](const Profile& profile) { return profile.name == name; });
    return found == profiles.cend() ? std::nullopt : std::optional(*found);
}

/// The WebSocket takes a frame only when all of it is there: for one that fills the buffer, that
/// grows step by step until the frame is taken.
void readInPieces(QWebSocket& socket, GuardedSocket& connection)
{
    const auto shrink = [&socket] { socket.setReadBufferSize(FirstPiece); };
    const auto grow = [&connection] {
        const qint64 available = connection.bytesAvailable();
        if (available >= connection.readBufferSize()) {
            connection.setReadBufferSize(std::min(2 * available, LongestFrame));
        }
    };
    shrink();
    QObject::connect(&socket, &QWebSocket::textFrameReceived, &socket, shrink);
    QObject::connect(&socket, &QWebSocket::binaryFrameReceived, &socket, shrink);
    // Queued, so that the WebSocket has read what it can.
    QObject::connect(&connection, &QIODevice::readyRead, &connection, grow, Qt::QueuedConnection);
}

/// Ends the connection now: a client that does not read is not waited for.
void end(QWebSocket* socket, QWebSocketProtocol::CloseCode code, const QString& reason)
{
    socket->close(code, reason);
    socket->abort();
}

void logWebPage(const QString& origin)
{
    Log::warn(
        "[ClientApi] [WebSocket] Refused a connection from the web page {}: requests from web "
        "pages are not allowed",
        forLog(origin));
}

bool isHiddenPage(const QWebSocket& socket)
{
    return WebPages::isHiddenPage(socket.origin(),
                                  QString::fromUtf8(socket.request().rawHeader("User-Agent")));
}

} // namespace

ClientApiWebsocketServer::ClientApiWebsocketServer(Statistics statistics, ProfileManager& profiles,
                                                   QObject* parent)
    : QObject(parent)
    , m_statistics(std::move(statistics))
    , m_profiles(profiles)
    , m_server(QStringLiteral("Tallyvane Client API WebSocket Server"),
               QWebSocketServer::NonSecureMode)
    , m_updateTimer(this)
{
    connect(&m_server, &QWebSocketServer::newConnection, this,
            &ClientApiWebsocketServer::onNewConnection);
    connect(&m_server, &QWebSocketServer::originAuthenticationRequired, this,
            &ClientApiWebsocketServer::checkOrigin);
    connect(&m_updateTimer, &QTimer::timeout, this, &ClientApiWebsocketServer::onBeat);
    m_updateTimer.start(BeatMs);
}

ClientApiWebsocketServer::~ClientApiWebsocketServer()
{
    stop();
}

bool ClientApiWebsocketServer::listen(unsigned short port)
{
    m_listening = ListeningPair::open(port, Limits, this);
    if (m_listening.servers.isEmpty()) {
        Log::error(
            "[ClientApi] [WebSocket] Unable to open websocket server for incoming connections");
        Log::error("[ClientApi] [WebSocket] Error message: {}", m_listening.error);
        return false;
    }
    for (GuardedTcpServer* server : std::as_const(m_listening.servers)) {
        connect(server, &QTcpServer::newConnection, this,
                [this, server] { beginHandshakes(server); });
    }
    Log::info("[ClientApi] [WebSocket] Server listening on port {}", m_listening.port());
    return true;
}

void ClientApiWebsocketServer::stop()
{
    for (GuardedTcpServer* server : std::as_const(m_listening.servers)) {
        server->close();
        server->deleteLater();
    }
    m_listening = {};
    for (QWebSocket* socket : QList(m_sockets)) {
        end(socket, QWebSocketProtocol::CloseCodeGoingAway,
            QStringLiteral("The server is stopped."));
    }
}

quint16 ClientApiWebsocketServer::port() const
{
    return m_listening.port();
}

void ClientApiWebsocketServer::setAllowedIps(const QList<QString>& addresses)
{
    m_allowedIps = addresses;
    for (QWebSocket* socket : QList(m_sockets)) {
        if (!isAllowed(socket->peerAddress())) {
            refuse(socket);
        }
    }
}

void ClientApiWebsocketServer::setHttpPort(quint16 port)
{
    m_httpPort = port;
}

void ClientApiWebsocketServer::beginHandshakes(GuardedTcpServer* server)
{
    while (QTcpSocket* connection = server->nextPendingConnection()) {
        connection->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, LargestBacklog);
        m_server.handleConnection(connection);
    }
}

/// The one that the WebSocket reads and writes; null where it is gone already. Qt tells of it only
/// by its ends.
GuardedSocket* ClientApiWebsocketServer::connectionOf(const QWebSocket& socket) const
{
    for (const GuardedTcpServer* server : m_listening.servers) {
        for (auto* connection : server->findChildren<GuardedSocket*>()) {
            if (connection->peerPort() == socket.peerPort() &&
                connection->peerAddress() == socket.peerAddress()) {
                return connection;
            }
        }
    }
    return nullptr;
}

void ClientApiWebsocketServer::checkOrigin(QWebSocketCorsAuthenticator* authenticator) const
{
    const QString origin = authenticator->origin();
    const bool isOwn = WebPages::isOwnOrigin(origin, m_httpPort, QSysInfo::machineHostName());
    authenticator->setAllowed(isOwn);
    if (!isOwn) {
        logWebPage(origin);
    }
}

bool ClientApiWebsocketServer::isAllowed(const QHostAddress& address) const
{
    return m_allowedIps.isEmpty() || m_allowedIps.contains(address.toString());
}

void ClientApiWebsocketServer::onNewConnection()
{
    while (QWebSocket* socket = m_server.nextPendingConnection()) {
        socket->setParent(this); // Qt leaves it to whoever takes it.
        if (GuardedSocket* connection = connectionOf(*socket)) {
            connection->handOver();
            readInPieces(*socket, *connection);
        }
        connect(socket, &QWebSocket::disconnected, this,
                [this, socket, peer = peerOf(*socket)] { socketDisconnected(socket, peer); });
        if (!isAllowed(socket->peerAddress())) {
            refuse(socket);
        } else if (isHiddenPage(*socket)) {
            // Known only now: of the handshake, Qt tells the origin alone.
            logWebPage(socket->origin());
            end(socket, QWebSocketProtocol::CloseCodePolicyViolated,
                QStringLiteral("Requests from web pages are not allowed."));
        } else {
            accept(socket);
        }
    }
}

void ClientApiWebsocketServer::accept(QWebSocket* socket)
{
    Log::info("[ClientApi] [WebSocket] New connection from {}", peerOf(*socket));
    socket->setMaxAllowedIncomingFrameSize(LongestMessage);
    socket->setMaxAllowedIncomingMessageSize(LongestMessage);
    connect(socket, &QWebSocket::textMessageReceived, this,
            [this, socket](const QString& text) { processTextMessage(text, socket); });
    m_sockets << socket;
}

void ClientApiWebsocketServer::refuse(QWebSocket* socket)
{
    Log::warn("[Client API] [Websocket] Blocked IP address {} because it is not on the allowed IP "
              "list ({})",
              socket->peerAddress().toString(),
              QStringList(m_allowedIps).join(QStringLiteral(", ")));
    end(socket, QWebSocketProtocol::CloseCodePolicyViolated,
        QStringLiteral("You are not allowed to connect to this server."));
}

void ClientApiWebsocketServer::socketDisconnected(QWebSocket* socket, const QString& peer)
{
    const QWebSocketProtocol::CloseCode code = socket->closeCode();
    if (code == QWebSocketProtocol::CloseCodeNormal) {
        Log::info("[ClientApi] [WebSocket] socketDisconnected: {}", peer);
    } else {
        Log::info("[ClientApi] [WebSocket] socketDisconnected: {} ({} {})", peer,
                  static_cast<int>(code), socket->closeReason());
    }
    removeSocket(socket);
    socket->deleteLater();
}

void ClientApiWebsocketServer::removeSocket(QWebSocket* socket)
{
    m_sockets.removeOne(socket);
    m_identified.removeOne(socket);
}

void ClientApiWebsocketServer::processTextMessage(const QString& text, QWebSocket* socket)
{
    Log::debug("Message received: {}", forLog(text));
    const std::optional<WebsocketMessage> message = WebsocketMessage::fromJson(text);
    if (!message) {
        Log::warn("[ClientApi] [WebSocket] Invalid JSON in WebSocket message: {}", forLog(text));
    } else if (!isAcceptedSource(message->source)) {
        Log::warn("[ClientApi] [WebSocket] Message from unknown source, ignoring.");
    } else {
        perform(*message, socket);
    }
}

void ClientApiWebsocketServer::perform(const WebsocketMessage& message, QWebSocket* socket)
{
    if (message.action == QLatin1String("identify")) {
        identify(message, socket);
    } else if (message.action == QLatin1String("update-status")) {
        sendUpdateAskedFor();
    } else if (message.action == QLatin1String("zurge")) {
        Q_EMIT websocketWantsToZurge();
    } else if (message.action == QLatin1String("open-window")) {
        Q_EMIT websocketWantsToOpenMainWindow();
    } else if (message.action == QLatin1String("keep-alive")) {
        Log::debug("[ClientApi] [WebSocket] Keepalive from {}", peerOf(*socket));
    } else if (message.action == QLatin1String("activate-profile")) {
        activateProfile(message, socket);
    }
}

void ClientApiWebsocketServer::identify(const WebsocketMessage& message, QWebSocket* socket)
{
    if (!m_identified.contains(socket)) {
        m_identified << socket;
    }
    Log::info("[ClientApi] [WebSocket] New connection from: {}", message.identifier.isEmpty()
                                                                     ? QStringLiteral("Stream Deck")
                                                                     : forLog(message.identifier));
    sendUpdateAskedFor();
}

void ClientApiWebsocketServer::activateProfile(const WebsocketMessage& message, QWebSocket* socket)
{
    if (!message.profileName) {
        Log::warn("ClientApiWebsocketServer: No profile_name provided in the request.");
        respondWith400(socket);
        return;
    }
    if (*message.profileName == m_profiles.getActiveStatsProfileName()) {
        // A control surface's button for a profile is pressed again to leave it.
        m_profiles.activateDefaultProfile();
        respondWithOK(socket);
        return;
    }
    const std::optional<Profile> profile = profileNamed(m_profiles, *message.profileName);
    if (!profile) {
        Log::warn("ClientApiWebsocketServer: Invalid profile_name provided in the request.");
        respondWith404(socket);
        return;
    }
    Log::info("ClientApiResponder: Activating profile '{}' with id '{}' on the request of the "
              "websocket Client API from: {}",
              profile->name, profile->id, peerOf(*socket));
    m_profiles.setActiveStatsProfile(profile->id, profile->name);
    respondWithOK(socket);
}

void ClientApiWebsocketServer::sendUpdateAskedFor()
{
    if (m_updatesAskedFor < MostUpdatesAskedFor) {
        ++m_updatesAskedFor;
        sendUpdateToClients();
    }
}

void ClientApiWebsocketServer::onBeat()
{
    m_updatesAskedFor = 0;
    sendUpdateToClients();
}

void ClientApiWebsocketServer::sendUpdateToClients()
{
    if (m_identified.isEmpty()) {
        return;
    }
    const QString update = written({{QStringLiteral("action"), QStringLiteral("update-status")},
                                    {QStringLiteral("data"), m_statistics()}});
    for (QWebSocket* socket : QList(m_identified)) {
        socket->sendTextMessage(update);
    }
}

void ClientApiWebsocketServer::getJSONAndOutputToClient(const QMap<QString, QVariant>& object,
                                                        QWebSocket* socket)
{
    const QString text = written(QJsonObject::fromVariantMap(object));
    Log::debug("Sending to websocket client: {}", text);
    socket->sendTextMessage(text);
}

void ClientApiWebsocketServer::respondWithOK(QWebSocket* socket)
{
    getJSONAndOutputToClient({{QStringLiteral("status"), 200}}, socket);
}

void ClientApiWebsocketServer::respondWith400(QWebSocket* socket)
{
    getJSONAndOutputToClient({{QStringLiteral("status"), 400}}, socket);
}

void ClientApiWebsocketServer::respondWith404(QWebSocket* socket)
{
    getJSONAndOutputToClient({{QStringLiteral("status"), 404}}, socket);
}
