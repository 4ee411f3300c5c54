// SPDX-License-Identifier: GPL-3.0-or-later
#include "WebsocketHost.h"
#include "support/TestRegistry.h"

#include <QTcpSocket>

#include <vector>

using namespace WebsocketMessages;

namespace {

constexpr int LongestMessage = static_cast<int>(ClientApiWebsocketServer::LongestMessage);
const QString Ipv4 = QStringLiteral("127.0.0.1");
const QString Ok = QStringLiteral(R"({"status":200})");
const QString Bad = QStringLiteral(R"({"status":400})");
const QString Missing = QStringLiteral(R"({"status":404})");
const QString Update = QStringLiteral("update");

struct Expected
{
    QStringList replies = {};
    int activeProfile = 0;
    const char* emitted = "";
    const char* logged = "";
};

void addColumns()
{
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<int>("activeProfile");
    QTest::addColumn<QString>("signals_");
    QTest::addColumn<QString>("logged");
}

void row(const char* title, const QStringList& messages, const Expected& expected)
{
    QTest::newRow(title) << messages << expected.replies << expected.activeProfile
                         << QString::fromLatin1(expected.emitted)
                         << QString::fromUtf8(expected.logged);
}

} // namespace

class ClientApiWebsocketServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answers_data();
    void answers();
    void activatesProfiles_data();

    void activatesProfiles() { answers(); }

    void refusesAddresses();
    void knowsClientsByTheirOwnFamily();
    void refusesWebPages_data();
    void refusesWebPages();
    void buildsAnUpdateOncePerBeat();
    void stopsAndStartsAnew();

private:
    std::unique_ptr<WebsocketHost> m_host;
};

void ClientApiWebsocketServerTest::init()
{
    m_host = std::make_unique<WebsocketHost>();
    QVERIFY(m_host->isReady);
    QVERIFY(m_host->log.contains(QStringLiteral("[ClientApi] [WebSocket] Server listening on port "
                                                "%1\n")
                                     .arg(m_host->server.port())));
}

void ClientApiWebsocketServerTest::cleanup()
{
    m_host.reset();
}

void ClientApiWebsocketServerTest::answers_data()
{
    addColumns();
    const auto invalid = "warn [ClientApi] [WebSocket] Invalid JSON in WebSocket message: ";
    const auto ignoring = "[ClientApi] [WebSocket] Message from unknown source, ignoring.\n";
    row("identify with a name", {message("identify", QStringLiteral(R"(,"identifier":"Désk")"))},
        {.replies = {Update}, .logged = "[ClientApi] [WebSocket] New connection from: Désk\n"});
    row("identify without a name", {message("identify")},
        {.replies = {Update},
         .logged = "[ClientApi] [WebSocket] New connection from: Stream Deck\n"});
    row("identify twice", {message("identify"), message("identify"), message("update-status")},
        {.replies = {Update, Update, Update}});
    row("the other source",
        {QStringLiteral(R"({"source":"streamdeck-plugin","action":"identify"})")},
        {.replies = {Update}});
    row("update of nobody who identified", {message("update-status")}, {});
    row("no source", {QStringLiteral(R"({"action":"identify"})")}, {.logged = ignoring});
    row("unknown source", {QStringLiteral(R"({"source":"Plugin","action":"zurge"})")},
        {.logged = ignoring});
    row("source that is no text", {QStringLiteral(R"({"source":1,"action":"zurge"})")},
        {.logged = ignoring});
    row("zurge", {message("zurge")}, {.emitted = "zurge"});
    row("open window", {message("open-window")}, {.emitted = "window"});
    row("keep alive", {message("keep-alive")},
        {.logged = "debug [ClientApi] [WebSocket] Keepalive from 127.0.0.1:"});
    row("unknown actions", {message("Zurge"), message("identify "), message("")}, {});
    row("no JSON", {QStringLiteral("hello"), message("identify")},
        {.replies = {Update}, .logged = "Invalid JSON in WebSocket message: hello\n"});
    row("no object", {QStringLiteral("[1]")}, {.logged = "WebSocket message: [1]\n"});
    row("too deep", {QStringLiteral("[").repeated(LongestMessage)}, {.logged = invalid});
    row("longest", {QString(LongestMessage, u'x')}, {.logged = "xxx… (cut)\n"});
    row("control characters", {QStringLiteral("a\r\nforged\x1b[2J\u0000b")},
        {.logged = R"(WebSocket message: a\x0d\nforged\x1b[2J\x00b)"
                   "\n"});
}

void ClientApiWebsocketServerTest::activatesProfiles_data()
{
    addColumns();
    const auto noName = "ClientApiWebsocketServer: No profile_name provided in the request.\n";
    const auto noProfile =
        "ClientApiWebsocketServer: Invalid profile_name provided in the request.\n";
    row("activate", {activation("Work")},
        {.replies = {Ok},
         .activeProfile = 1,
         .logged =
             "ClientApiResponder: Activating profile 'Work' with id '1' on the request of the "
             "websocket Client API from: 127.0.0.1:"});
    row("activate another", {activation("Work"), activation("Games")},
        {.replies = {Ok, Ok}, .activeProfile = 2});
    row("activate the active one", {activation("Work"), activation("Work")}, {.replies = {Ok, Ok}});
    row("activate the default one", {activation("Games"), activation("General")},
        {.replies = {Ok, Ok}, .logged = "Activating profile 'General' with id '0' on the request"});
    row("activate the default one, active", {activation("General")}, {.replies = {Ok}});
    row("activate in another case", {activation("work")},
        {.replies = {Missing}, .logged = noProfile});
    row("activate nothing", {activation("")}, {.replies = {Missing}, .logged = noProfile});
    row("no profile name", {message("activate-profile")}, {.replies = {Bad}, .logged = noName});
    row("profile name that is no text",
        {message("activate-profile", QStringLiteral(R"(,"profile_name":1)"))},
        {.replies = {Bad}, .logged = noName});
}

void ClientApiWebsocketServerTest::answers()
{
    QFETCH(QStringList, messages);
    QFETCH(QStringList, replies);
    QFETCH(QString, logged);
    QStringList emitted;
    connect(&m_host->server, &ClientApiWebsocketServer::websocketWantsToZurge, this,
            [&emitted] { emitted << QStringLiteral("zurge"); });
    connect(&m_host->server, &ClientApiWebsocketServer::websocketWantsToOpenMainWindow, this,
            [&emitted] { emitted << QStringLiteral("window"); });
    WebsocketClient client(*m_host);
    QTRY_VERIFY(client.isConnected());
    for (const QString& text : messages) {
        client.send(text);
    }
    // Its answer comes after all others.
    client.send(message("activate-profile", QStringLiteral(R"(,"profile_name":[])")));
    replies << QStringLiteral(R"({"status":400})");
    QTRY_COMPARE(client.told, replies);
    QTEST(emitted.join(QLatin1Char(' ')), "signals_");
    QTEST(m_host->profiles.getActiveStatsProfileId(), "activeProfile");
    QVERIFY2(m_host->log.contains(logged), qPrintable(m_host->log.text()));
    QVERIFY(m_host->log.contains(QStringLiteral("debug Message received: ") +
                                 messages.first().first(1)));
    QVERIFY(m_host->log.contains(
        QStringLiteral(R"(debug Sending to websocket client: {"status":400})")));
}

void ClientApiWebsocketServerTest::refusesAddresses()
{
    const QString ending = QStringLiteral("1008 You are not allowed to connect to this server.");
    const QString blocked = QStringLiteral(
        "[Client API] [Websocket] Blocked IP address 127.0.0.1 because it is not on the allowed IP "
        "list (::1, 127.0.0.2)\n");
    WebsocketClient early(*m_host);
    QTRY_VERIFY(early.isConnected());
    early.send(message("identify"));
    QTRY_COMPARE(early.told.size(), 1);

    m_host->server.setAllowedIps({QStringLiteral("::1"), QStringLiteral("127.0.0.2")});
    QTRY_VERIFY(early.isEnded());
    QCOMPARE(early.ending(), ending);
    QCOMPARE(m_host->log.count(blocked), 1);

    WebsocketClient late(*m_host);
    QTRY_COMPARE(m_host->log.count(blocked), 2);
    QTRY_VERIFY(late.isEnded());
    QCOMPARE(late.ending(), ending);
    QCOMPARE(
        m_host->log.count(QStringLiteral("[ClientApi] [WebSocket] New connection from 127.0.0.1:")),
        1);
    QTRY_COMPARE(m_host->log.count(QStringLiteral("[ClientApi] [WebSocket] socketDisconnected: ")),
                 2);

    m_host->server.setAllowedIps({});
    WebsocketClient allowed(*m_host);
    QTRY_VERIFY(allowed.isConnected());
}

void ClientApiWebsocketServerTest::knowsClientsByTheirOwnFamily()
{
    m_host->server.setAllowedIps({QStringLiteral("::1")});
    WebsocketClient client(*m_host, QStringLiteral("[::1]"));
    QTRY_VERIFY(client.isConnected() || client.isEnded());
    if (client.isEnded()) {
        QSKIP("This machine has no IPv6");
    }
    QTRY_VERIFY(m_host->log.contains(QStringLiteral("[WebSocket] New connection from [::1]:")));
    client.send(message("identify"));
    QTRY_COMPARE(client.told.size(), 1);
}

void ClientApiWebsocketServerTest::refusesWebPages_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<QByteArray>("userAgent");
    QTest::addColumn<bool>("isServed");
    const auto row = [](const char* name, const char* origin, const char* userAgent,
                        bool isServed) {
        QTest::newRow(name) << QString::fromLatin1(origin) << QByteArray(userAgent) << isServed;
    };
    constexpr auto browser = "Mozilla/5.0 (X11; Linux x86_64)";
    row("a web page", "https://www.example.com", browser, false);
    row("a page of another port", "http://127.0.0.1:8080", browser, false);
    row("a frame that hides its page", "null", browser, false);
    row("the own page", "http://127.0.0.1:3490", browser, true);
    row("a plug-in", "file://", browser, true);
    row("a program", "null", "surface/1.2", true);
}

void ClientApiWebsocketServerTest::refusesWebPages()
{
    constexpr quint16 httpPort = 3490;
    QFETCH(QString, origin);
    QFETCH(QByteArray, userAgent);
    QFETCH(bool, isServed);
    m_host->server.setHttpPort(httpPort);
    WebsocketClient client(*m_host, Ipv4, origin, userAgent);
    QTRY_VERIFY(isServed ? client.isConnected() : client.isEnded());
    const QString refused =
        QStringLiteral("Refused a connection from the web page %1: ").arg(origin);
    QTRY_COMPARE(m_host->log.count(refused), isServed ? 0 : 1);
    QCOMPARE(m_host->log.count(QStringLiteral("[WebSocket] New connection")), isServed ? 1 : 0);
}

void ClientApiWebsocketServerTest::buildsAnUpdateOncePerBeat()
{
    QCOMPARE(m_host->timer->interval(), 2'000);
    constexpr int count = 30;
    std::vector<std::unique_ptr<WebsocketClient>> clients;
    clients.reserve(count);
    for (int i = 0; i < count; ++i) {
        clients.push_back(std::make_unique<WebsocketClient>(*m_host));
    }
    for (const auto& client : clients) {
        QTRY_VERIFY(client->isConnected());
    }
    m_host->beat();
    QCOMPARE(m_host->built, 0);

    for (const auto& client : clients) {
        client->send(message("identify"));
        QTRY_VERIFY(!client->told.isEmpty());
    }
    QCOMPARE(m_host->built, count);
    QTRY_COMPARE(clients.front()->told.size(), count);
    m_host->beat();
    QCOMPARE(m_host->built, count + 1);
    QTRY_COMPARE(clients.front()->told.size(), count + 1);
    QTRY_COMPARE(clients.back()->told, (QStringList{Update, Update}));

    clients.clear();
    QTRY_COMPARE(m_host->log.count(QStringLiteral("socketDisconnected: ")), qsizetype{count});
    m_host->beat();
    QCOMPARE(m_host->built, count + 1);
}

void ClientApiWebsocketServerTest::stopsAndStartsAnew()
{
    const quint16 port = m_host->server.port();
    WebsocketClient client(*m_host);
    QTRY_VERIFY(client.isConnected());
    QTcpSocket handshaking;
    handshaking.connectToHost(QHostAddress::LocalHost, port);
    handshaking.write("GET / HTTP/1.1\r\n");
    QTRY_COMPARE(handshaking.state(), QAbstractSocket::ConnectedState);

    ClientApiWebsocketServer second([] { return QJsonObject(); }, m_host->profiles);
    QVERIFY(!second.listen(port));
    QVERIFY(m_host->log.contains(QStringLiteral(
        "[ClientApi] [WebSocket] Unable to open websocket server for incoming connections\n")));
    QVERIFY(m_host->log.contains(
        QStringLiteral("[ClientApi] [WebSocket] Error message: The bound address "
                       "is already in use\n")));

    m_host->server.stop();
    QCOMPARE(m_host->server.port(), 0);
    QVERIFY(second.listen(port));
    QTRY_VERIFY(client.isEnded());
    QCOMPARE(client.ending(), QStringLiteral("1001 The server is stopped."));
    QTRY_COMPARE(handshaking.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(m_host->server.listen(0));
    WebsocketClient next(*m_host);
    QTRY_VERIFY(next.isConnected());
    // Ends with the connection open.
}

REGISTER_TEST(ClientApiWebsocketServerTest);
#include "ClientApiWebsocketServerTest.moc"
