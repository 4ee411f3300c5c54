// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/LocalStats.h"
#include "clientapi/ClientApiServer.h"
#include "clientapi/HttpClient.h"
#include "profiles/ProfileManager.h"
#include "stats/LiveRates.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QSysInfo>
#include <QTcpServer>

#include <memory>

namespace {

const QByteArray NotFound = R"({"error":"Not found."})";
const QByteArray NoProfileId = R"({"error":"No profile id provided."})";
const QByteArray NoSuchProfile = "{\"error\":\"Profile id doesn't exist.\"}";
const QByteArray NotAllowed =
    R"({"error":"This IP address is not allowed to connect. Please check the allowed IPs settings."})";
const QByteArray WebPage = R"({"error":"Requests from web pages are not allowed."})";
const QByteArray ZurgeRequested = R"({"msg":"Zurge requested."})";
const QByteArray Handshake =
    "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
    "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";
const QString LogOfNoProfileId =
    QStringLiteral("ClientApiResponder: No profile id provided in the request.\n");
const QString LogOfNoSuchProfile = QStringLiteral(
    "ClientApiResponder: No profile id provided in the request not found in profiles.");

QByteArray request(const QByteArray& method, const QByteArray& path, const QByteArray& headers = {})
{
    return method + ' ' + path + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

QByteArray activation(const QByteArray& body)
{
    return request("POST", "/v1/profiles/activate",
                   "Content-Length: " + QByteArray::number(body.size()) + "\r\n") +
           body;
}

template <typename T>
void set(const SettingKey<T>& key, const T& value)
{
    QVERIFY(Settings::instance().setValue(key, value));
}

bool hasIpv6()
{
    return QTcpServer().listen(QHostAddress(QHostAddress::LocalHostIPv6));
}

void addColumns()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("part"); ///< Of the body; empty: there is no body.
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QString>("line"); ///< Of the log.
}

void row(const char* name, const QByteArray& bytes, int status, const QByteArray& part,
         const QString& line = {}, const QByteArray& type = "application/json")
{
    QTest::newRow(name) << bytes << status << part << type << line;
}

} // namespace

/// A server on ports that the system chose, and the profile "gaming" (1).
class ClientApiServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answers_data();
    void answers();
    void activatesProfiles_data();

    void activatesProfiles() { answers(); }

    void passesWishesOn();
    void letsListedAddressesIn_data();
    void letsListedAddressesIn();
    void keepsWebPagesOut_data();
    void keepsWebPagesOut();
    void followsSettings();
    void reportsPorts_data();
    void reportsPorts();

private:
    HttpAnswer ask(const QByteArray& bytes) const
    {
        return HttpClient(m_server->getHttpPort()).ask(bytes);
    }

    std::unique_ptr<TestDatabase> m_database;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<LocalStats> m_localStats;
    std::unique_ptr<ProfileManager> m_profiles;
    std::unique_ptr<LiveRates> m_rates;
    std::unique_ptr<ClientApiServer> m_server;
};

void ClientApiServerTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    m_log = std::make_unique<LogCapture>(Log::Level::Debug);
    m_localStats = std::make_unique<LocalStats>();
    m_profiles = std::make_unique<ProfileManager>();
    QCOMPARE(m_profiles->addProfile(QStringLiteral("gaming")), ProfileManager::NameResult::Ok);
    m_rates = std::make_unique<LiveRates>();
    m_server = std::make_unique<ClientApiServer>(*m_localStats, *m_rates, *m_profiles);
    set(SettingsKeys::ClientApiHttpEnable, true);
    set(SettingsKeys::ClientApiHttpPort, 0);
    set(SettingsKeys::ClientApiWebsocketPort, 0);
    m_server->changeState();
    QVERIFY2(m_server->isRunning(), qPrintable(m_log->text()));
}

void ClientApiServerTest::cleanup()
{
    m_server.reset();
    m_rates.reset();
    m_profiles.reset();
    m_localStats.reset();
    m_log.reset();
    m_database.reset();
}

void ClientApiServerTest::answers_data()
{
    addColumns();
    const auto get = [](const QByteArray& path, const QByteArray& part,
                        const QByteArray& type = "application/json") {
        row(path.constData(), request("GET", path), 200, part,
            QStringLiteral("path=") + QString::fromLatin1(path), type);
    };
    get("/v1/account-totals", R"("rank_distance_formatted":"0th")");
    get("/v1/realtime", R"({"clicks":"0,00")");
    get("/v1/unzurged", R"("distance_inches":0)");
    get("/v1/all-stats", R"({"account-totals":{)");
    get("/v1/profiles", R"("name":"gaming")");
    get("/tallyvane-api-spec.json", R"("3.0.3")");
    get("/tallyvane-api-spec.yaml", "openapi: 3.0.3", "application/yaml");
    get("/", "/swagger-ui-bundle.js", "text/html; charset=utf-8");
    get("/swagger-ui", "/swagger-ui-bundle.js", "text/html; charset=utf-8");
    get("/swagger-ui.css", ".swagger-ui", "text/css; charset=utf-8");
    get("/swagger-ui-bundle.js", "SwaggerUIBundle", "text/javascript; charset=utf-8");
    get("/swagger-ui-standalone-preset.js", "Standalone", "text/javascript; charset=utf-8");

    row("query", request("GET", "/v1/realtime?now"), 200, R"({"clicks":"0,00")");
    for (const char* path : {"/V1/realtime", "/v1/realtime/", "/v1%2Frealtime", "/v1/zurge", "/../",
                             "*", "/\xff\xfe", "/%00", "/v1/profiles/activate"}) {
        row(path, request("GET", path), 404, NotFound);
    }
    for (const char* method : {"HEAD", "PUT", "OPTIONS", "get", "BREW"}) {
        row(method, request(method, "/v1/realtime"), 405, {});
    }

    row("zurge", request("POST", "/v1/zurge"), 200, ZurgeRequested,
        QStringLiteral("ClientApiResponder: Zurging on the request of the Client API from IP: "
                       "127.0.0.1"));
    row("window", request("POST", "/v1/open-window"), 200,
        R"({"msg":"Requested window to be opened."})",
        QStringLiteral("ClientApiResponder: Opening main window on the request of the Client API "
                       "from IP: 127.0.0.1"));
    row("post to what is read", request("POST", "/v1/realtime"), 404, {});
}

void ClientApiServerTest::activatesProfiles_data()
{
    addColumns();
    row("default profile", activation(R"({"profile_id":0})"), 200,
        R"({"msg":"Default profile activated."})",
        QStringLiteral("ClientApiResponder: Activating default profile General' on the request of "
                       "the Client API from IP: 127.0.0.1"));
    row("profile", activation(R"({"profile_id": 1})"), 200,
        "{\"msg\":\"Profile 'gaming 'activated.\"}",
        QStringLiteral("ClientApiResponder: Activating profile 'gaming' with id '1' on the request "
                       "of the Client API from IP: 127.0.0.1"));
    for (const char* body : {"", "{}", "[1]", "1", R"({"profile_id":"1"})", R"({"profile_id":1.5})",
                             R"({"profile_id":null})", R"({"profile_id":2147483648})",
                             R"({"profile_id":18446744073709551616})", R"({"Profile_id":1})",
                             R"({"profile_id":1)", "{\"profile_id\":\"\xff\"}", "profile_id=1"}) {
        row(body, activation(body), 400, NoProfileId, LogOfNoProfileId);
    }
    constexpr int deep = 20'000;
    row("deep", activation(QByteArray(R"({"profile_id":)") + QByteArray(deep, '[')), 400,
        NoProfileId, LogOfNoProfileId);
    for (const char* body : {R"({"profile_id":999})", R"({"profile_id":-1})"}) {
        row(body, activation(body), 404, NoSuchProfile, LogOfNoSuchProfile);
    }
}

void ClientApiServerTest::answers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, part);
    QFETCH(QString, line);
    const HttpAnswer answer = ask(bytes);
    QTEST(answer.status, "status");
    QTEST(answer.header("Content-Type"), "type");
    QCOMPARE(answer.header("Server"), "Tallyvane Client API");
    QCOMPARE(answer.header("Allow"), answer.status == 405 ? QByteArray("GET, POST") : QByteArray());
    QVERIFY2(part.isEmpty() ? answer.body.isEmpty() : answer.body.contains(part),
             answer.body.left(1'000).constData());
    QVERIFY2(m_log->contains(line), qPrintable(m_log->text()));
}

/// Each once, when the answer is given: the application may stop the server on account of it.
void ClientApiServerTest::passesWishesOn()
{
    const QSignalSpy zurges(m_server.get(), &ClientApiServer::apiWantsToZurge);
    const QSignalSpy windows(m_server.get(), &ClientApiServer::apiWantsToOpenMainWindow);
    const QSignalSpy profiles(m_server.get(), &ClientApiServer::apiWantsToActivateProfile);
    connect(m_server.get(), &ClientApiServer::apiWantsToZurge, this, [this] { m_server->stop(); });
    HttpClient client(m_server->getHttpPort());
    client.send(request("POST", "/v1/open-window") + activation(R"({"profile_id":1})") +
                activation(R"({"profile_id":0})") + activation(R"({"profile_id":7})") +
                request("POST", "/v1/zurge") + request("POST", "/v1/zurge"));
    QVERIFY(client.waitForEnd());
    QCOMPARE(windows.size(), 1);
    QCOMPARE(profiles.size(), 2);
    QCOMPARE(profiles.at(0), QVariantList({1, QStringLiteral("gaming")}));
    QCOMPARE(profiles.at(1), QVariantList({0, QString()}));
    QCOMPARE(zurges.size(), 1);
    QVERIFY(!m_server->isRunning());
}

void ClientApiServerTest::letsListedAddressesIn_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<bool>("ipv4");
    QTest::addColumn<bool>("ipv6");
    const auto row = [](const char* list, bool ipv4, bool ipv6) {
        QTest::newRow(list) << QString::fromLatin1(list) << ipv4 << ipv6;
    };
    row("127.0.0.1,::1,::ffff:127.0.0.1", true, true);
    row("127.0.0.1", true, false);
    row("10.0.0.1,::1", false, true);
    row("", true, true);
    row(",", false, false);
    row("127.0.0.1 ,127.0.0.0/8, ::1,::ffff:127.0.0.1,localhost", false, false);
    row("127.0.0.10", false, false);
}

void ClientApiServerTest::letsListedAddressesIn()
{
    QFETCH(QString, list);
    QFETCH(bool, ipv4);
    QFETCH(bool, ipv6);
    set(SettingsKeys::ClientApiHttpAllowedIps, list);
    m_server->changeState();
    const auto check = [&](const QHostAddress& address, bool isAllowed) {
        HttpClient client(m_server->getHttpPort(), address);
        const HttpAnswer answer = client.ask(request("POST", "/v1/zurge"));
        QCOMPARE(answer.status, isAllowed ? 200 : 401);
        QCOMPARE(answer.body, isAllowed ? ZurgeRequested : NotAllowed);
        QCOMPARE(answer.header("Server"), "Tallyvane Client API");
        QCOMPARE(m_log->contains(QStringLiteral("Client API: Blocked IP address %1 because it is "
                                                "not on the allowed IP list (%2)")
                                     .arg(address.toString(), list)),
                 !isAllowed);
        QVERIFY(isAllowed || client.waitForEnd());
        HttpClient plugin(m_server->getWebsocketPort(), address);
        QCOMPARE(plugin.ask(request("GET", "/", Handshake)).status, 101);
        QCOMPARE(
            m_log->contains(QStringLiteral("[Websocket] Blocked IP address ") + address.toString()),
            !isAllowed);
    };
    check(QHostAddress(QHostAddress::LocalHost), ipv4);
    if (hasIpv6()) {
        check(QHostAddress(QHostAddress::LocalHostIPv6), ipv6);
    }
}

void ClientApiServerTest::keepsWebPagesOut_data()
{
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<bool>("isServed");
    const auto row = [](const QByteArray& headers, bool isServed) {
        QTest::newRow(headers.constData()) << headers << isServed;
    };
    row("Host: localhost\r\n", true);
    row("Host: " + QSysInfo::machineHostName().toLatin1() + ":1\r\n", true);
    row("Host: 127.0.0.1\r\nOrigin: http://localhost:PORT\r\n", true);
    row("Host: 127.0.0.1\r\nOrigin: null\r\n", true);
    row("Host: 127.0.0.1\r\nOrigin: null\r\nUser-Agent: Mozilla/5.0 (X11)\r\n", false);
    row("Host: evil.example\r\n", false);
    row("Host: localhost\r\nHost: evil.example\r\n", false);
    row("Host: localhost\r\nOrigin: http://evil.example\r\n", false);
    row("Host: localhost\r\norigin: http://localhost:1\r\n", false);
    row("Host: localhost\r\nOrigin: null\r\nOrigin: http://evil.example\r\n", false);
}

void ClientApiServerTest::keepsWebPagesOut()
{
    QFETCH(QByteArray, headers);
    QFETCH(bool, isServed);
    const QSignalSpy zurges(m_server.get(), &ClientApiServer::apiWantsToZurge);
    headers.replace("PORT", QByteArray::number(m_server->getHttpPort()));
    const QByteArray bytes = "POST /v1/zurge HTTP/1.1\r\n" + headers + "\r\n";
    HttpClient client(m_server->getHttpPort());
    const HttpAnswer answer = client.ask(bytes);
    QCOMPARE(answer.status, isServed ? 200 : 403);
    QCOMPARE(answer.body, isServed ? ZurgeRequested : WebPage);
    QCOMPARE(answer.header("Content-Type"), "application/json");
    QVERIFY(isServed || client.waitForEnd());
    QCOMPARE(m_log->contains(QStringLiteral("Client API: Refused a request of a web page from "
                                            "127.0.0.1 (Host: ")),
             !isServed);
    QCOMPARE(zurges.size(), isServed ? 1 : 0);
}

void ClientApiServerTest::followsSettings()
{
    const quint16 before = m_server->getHttpPort();
    HttpClient client(before);
    QCOMPARE(client.ask(request("GET", "/v1/realtime")).status, 200);
    QVERIFY(m_log->contains(QStringLiteral("ClientApiServer: Running on ws://127.0.0.1:%1/")
                                .arg(m_server->getWebsocketPort())));

    set(SettingsKeys::ClientApiHttpAllowedIps, QStringLiteral("10.0.0.1"));
    m_server->changeState();
    QCOMPARE(m_server->getHttpPort(), before);
    QCOMPARE(client.ask(request("GET", "/v1/realtime")).status, 401);
    set(SettingsKeys::ClientApiHttpAllowedIps, QString());

    QTcpServer reserved; // A port that was free a moment ago.
    QVERIFY(reserved.listen());
    const quint16 other = reserved.serverPort();
    reserved.close();
    set(SettingsKeys::ClientApiHttpPort, int{other});
    m_server->changeState();
    QCOMPARE(m_server->getHttpPort(), other);
    QCOMPARE(ask(request("GET", "/v1/realtime")).status, 200);
    QCOMPARE(HttpClient(before).ask(request("GET", "/v1/realtime")).status, 0);

    set(SettingsKeys::ClientApiHttpEnable, false);
    m_server->changeState();
    QVERIFY(!m_server->isRunning());
    QCOMPARE(HttpClient(other).ask(request("GET", "/v1/realtime")).status, 0);
    m_server->changeState();
    QCOMPARE(m_log->count(QStringLiteral("[ClientApiServer] Stopping HTTP and Websocket server.")),
             2);

    set(SettingsKeys::ClientApiHttpEnable, true);
    m_server->changeState();
    QCOMPARE(ask(request("GET", "/v1/realtime")).status, 200);
}

void ClientApiServerTest::reportsPorts_data()
{
    QTest::addColumn<bool>("isHttp");
    QTest::addColumn<int>("port"); ///< 0: one that another program has.
    QTest::newRow("HTTP, in use") << true << 0;
    QTest::newRow("WebSocket, in use") << false << 0;
    QTest::newRow("HTTP, no port") << true << 65'536 + 80;
    QTest::newRow("WebSocket, no port") << false << -1;
}

void ClientApiServerTest::reportsPorts()
{
    QFETCH(bool, isHttp);
    QFETCH(int, port);
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress(QHostAddress::AnyIPv4)));
    port = port == 0 ? other.serverPort() : port;
    QSignalSpy messages(m_server.get(), &ClientApiServer::signalNeedTrayIconMessage);
    const auto& key =
        isHttp ? SettingsKeys::ClientApiHttpPort : SettingsKeys::ClientApiWebsocketPort;
    set(key, port);
    const QSignalSpy states(m_server.get(), &ClientApiServer::stateChanged);
    m_server->changeState();
    m_server->changeState(); // Tried again, and told no more.
    QVERIFY(!m_server->isRunning());
    QCOMPARE(m_server->refusedPort(), port);
    QCOMPARE(states.size(), 2);
    QCOMPARE(m_server->getHttpPort(), 0);
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages.at(0).at(1).toString().contains(QString::number(port)));
    const auto server = isHttp ? QStringLiteral("TCP Server") : QStringLiteral("Websocket server");
    QVERIFY(m_log->contains(
        QStringLiteral("ClientApiServer: %1 failed to listen on port %2").arg(server).arg(port)));

    set(key, 0);
    m_server->changeState();
    QCOMPARE(ask(request("GET", "/v1/realtime")).status, 200);
    QCOMPARE(messages.size(), 1);
    QVERIFY(!m_server->refusedPort());
}

REGISTER_TEST(ClientApiServerTest);
#include "ClientApiServerTest.moc"
