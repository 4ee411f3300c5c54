// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiServer.h"

#include "base/Log.h"
#include "clientapi/ClientApiWebsocketServer.h"
#include "clientapi/ConnectionLimits.h"
#include "clientapi/GuardedHttpServer.h"
#include "clientapi/ListeningPair.h"
#include "clientapi/WebPages.h"
#include "storage/Settings.h"

#include <QHostAddress>
#include <QHttpServerRequest>
#include <QStringList>
#include <QSysInfo>

#include <chrono>
#include <limits>
#include <utility>

namespace {

/// What HTTP clients may ask of us: no request of the API has more than a few hundred bytes, and
/// the page's largest file has 1.5 million.
constexpr ConnectionLimits HttpLimits{
    .connections = 64,
    .whenFull = ConnectionLimits::WhenFull::DropIdlest,
    .unansweredBytes = 65'536,
    .unsentBytes = 262'144,
    .unanswered = std::chrono::seconds(10),
    .idle = std::chrono::seconds(60),
};

bool isPort(int number)
{
    return number >= 0 && number <= std::numeric_limits<quint16>::max();
}

/// No address is on an empty list, which is not the same as a list of empty addresses.
QStringList addressesOf(const QString& list)
{
    return list.isEmpty() ? QStringList() : list.split(QLatin1Char(','));
}

QHttpServerResponse withConnectionClosed(QHttpServerResponse response)
{
    response.setHeader("Connection", "close");
    return response;
}

} // namespace

/// What a client asks for is passed on by the event loop: whoever fulfils it may stop this server,
/// which is still busy with the request.
ClientApiServer::ClientApiServer(const LocalStats& localStats, const LiveRates& rates,
                                 ProfileManager& profiles, QObject* parent)
    : QObject(parent)
    , m_responses(localStats, rates, profiles)
    , m_responder(m_responses, profiles)
    , m_profiles(profiles)
{
    connect(&m_responder, &ClientApiResponder::apiWantsToZurge, this,
            &ClientApiServer::apiWantsToZurge, Qt::QueuedConnection);
    connect(&m_responder, &ClientApiResponder::apiWantsToOpenMainWindow, this,
            &ClientApiServer::apiWantsToOpenMainWindow, Qt::QueuedConnection);
    connect(&m_responder, &ClientApiResponder::apiWantsToActivateProfile, this,
            &ClientApiServer::apiWantsToActivateProfile, Qt::QueuedConnection);
}

ClientApiServer::~ClientApiServer()
{
    stop();
}

void ClientApiServer::changeState()
{
    m_refusedPort.reset();
    followSettings();
    Q_EMIT stateChanged();
}

void ClientApiServer::followSettings()
{
    if (!Settings::instance().value(SettingsKeys::ClientApiHttpEnable)) {
        stop();
        m_told.reset();
        return;
    }
    if (m_running && portsOfSettings() == m_wanted) {
        setAllowedIPs(Settings::instance().value(SettingsKeys::ClientApiHttpAllowedIps));
        return;
    }
    stop();
    m_running = setup();
}

void ClientApiServer::stop()
{
    if (!m_running) {
        return;
    }
    Log::info("[ClientApiServer] Stopping HTTP and Websocket server.");
    close();
}

quint16 ClientApiServer::getHttpPort() const
{
    return m_httpPort;
}

quint16 ClientApiServer::getWebsocketPort() const
{
    return m_websocketPort;
}

bool ClientApiServer::isRunning() const
{
    return m_running;
}

std::optional<int> ClientApiServer::refusedPort() const
{
    return m_refusedPort;
}

QString ClientApiServer::getAllowedIPs() const
{
    return m_allowedIps;
}

void ClientApiServer::setAllowedIPs(const QString& addresses)
{
    m_allowedIps = addresses;
    if (m_websocket) {
        m_websocket->setAllowedIps(addressesOf(addresses));
    }
}

ClientApiServer::Ports ClientApiServer::portsOfSettings()
{
    const Settings& settings = Settings::instance();
    return {.http = settings.value(SettingsKeys::ClientApiHttpPort),
            .websocket = settings.value(SettingsKeys::ClientApiWebsocketPort)};
}

/// Both servers or none.
bool ClientApiServer::setup()
{
    m_wanted = portsOfSettings();
    m_http = std::make_unique<GuardedHttpServer>(
        [this](const QHttpServerRequest& request) { return respond(request); });
    m_websocket = std::make_unique<ClientApiWebsocketServer>(
        [this] { return m_responses.formatAllStats(); }, m_profiles);
    connect(m_websocket.get(), &ClientApiWebsocketServer::websocketWantsToZurge, this,
            &ClientApiServer::apiWantsToZurge, Qt::QueuedConnection);
    connect(m_websocket.get(), &ClientApiWebsocketServer::websocketWantsToOpenMainWindow, this,
            &ClientApiServer::apiWantsToOpenMainWindow, Qt::QueuedConnection);
    setAllowedIPs(Settings::instance().value(SettingsKeys::ClientApiHttpAllowedIps));
    if (listen()) {
        m_told.reset();
        return true;
    }
    close();
    return false;
}

bool ClientApiServer::listen()
{
    if (!listenForHttp()) {
        Log::error("ClientApiServer: TCP Server failed to listen on port {}", m_wanted.http);
        refuse(m_wanted.http);
        return false;
    }
    if (!listenForWebsockets()) {
        Log::error("ClientApiServer: Websocket server failed to listen on port {}",
                   m_wanted.websocket);
        refuse(m_wanted.websocket);
        return false;
    }
    Log::info("ClientApiServer: Running on ws://127.0.0.1:{}/", m_websocketPort);
    return true;
}

bool ClientApiServer::listenForHttp()
{
    if (!isPort(m_wanted.http)) {
        return false;
    }
    const ListeningPair sockets =
        ListeningPair::open(static_cast<quint16>(m_wanted.http), HttpLimits, m_http.get());
    m_http->serve(sockets.servers);
    m_httpPort = sockets.port();
    return m_httpPort != 0;
}

bool ClientApiServer::listenForWebsockets()
{
    if (!isPort(m_wanted.websocket)) {
        return false;
    }
    m_websocket->setHttpPort(m_httpPort);
    if (!m_websocket->listen(static_cast<quint16>(m_wanted.websocket))) {
        return false;
    }
    m_websocketPort = m_websocket->port();
    return true;
}

void ClientApiServer::close()
{
    m_running = false;
    m_http.reset();
    m_websocket.reset();
    m_httpPort = 0;
    m_websocketPort = 0;
}

void ClientApiServer::refuse(int port)
{
    m_refusedPort = port;
    if (m_told == m_wanted) {
        return;
    }
    m_told = m_wanted;
    Q_EMIT signalNeedTrayIconMessage(
        tr("Client API"),
        tr("The Client API is off: port %1 is in use by another program or may not be used. "
           "Counting goes on. Choose another port in the settings, or end the other program and "
           "try again there.")
            .arg(port));
}

QHttpServerResponse ClientApiServer::respond(const QHttpServerRequest& request)
{
    if (!isRemoteIpAllowed(request.remoteAddress())) {
        return withConnectionClosed(ClientApiResponder::handleIpNotAllowed());
    }
    if (isOfWebPage(request)) {
        return withConnectionClosed(ClientApiResponder::handleWebPage());
    }
    return responseTo(request);
}

QHttpServerResponse ClientApiServer::responseTo(const QHttpServerRequest& request)
{
    switch (request.method()) {
    case QHttpServerRequest::Method::Get:
        return m_responder.responseToGetRequest(request);
    case QHttpServerRequest::Method::Post:
        return m_responder.responseToPostRequest(request);
    default:
        return ClientApiResponder::handleOtherMethod();
    }
}

bool ClientApiServer::isRemoteIpAllowed(const QHostAddress& address) const
{
    const QString text = address.toString();
    if (m_allowedIps.isEmpty() || addressesOf(m_allowedIps).contains(text)) {
        return true;
    }
    Log::warn("Client API: Blocked IP address {} because it is not on the allowed IP list ({})",
              text, m_allowedIps);
    return false;
}

bool ClientApiServer::isOfWebPage(const QHttpServerRequest& request) const
{
    const QString host = QString::fromUtf8(request.value("Host"));
    const QString origin = QString::fromUtf8(request.value("Origin"));
    const QString machine = QSysInfo::machineHostName();
    const QString userAgent = QString::fromUtf8(request.value("User-Agent"));
    if (WebPages::isOwnHost(host, machine) && WebPages::isOwnOrigin(origin, m_httpPort, machine) &&
        !WebPages::isHiddenPage(origin, userAgent)) {
        return false;
    }
    Log::warn("Client API: Refused a request of a web page from {} (Host: {}, Origin: {})",
              request.remoteAddress().toString(), host, origin);
    return true;
}
