// SPDX-License-Identifier: GPL-3.0-or-later
#include "WebsocketBytes.h"
#include "clientapi/ClientApiWebsocketServer.h"
#include "profiles/ProfileManager.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QTest>
#include <QUrl>
#include <QWebSocket>

#include <vector>

using namespace WebsocketBytes;

namespace {

constexpr int LongestMessage = static_cast<int>(ClientApiWebsocketServer::LongestMessage);
const QString Ipv4 = QStringLiteral("127.0.0.1");

/// A client that keeps what it is told: replies as they are, updates as "update".
class Client
{
public:
    explicit Client(quint16 port, const QString& host = Ipv4, const QString& origin = {})
        : m_socket(origin)
    {
        QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket,
                         [this](const QString& text) { keep(text); });
        m_socket.open(QUrl(QStringLiteral("ws://%1:%2").arg(host).arg(port)));
    }

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

    bool isEnded() const { return m_socket.state() == QAbstractSocket::UnconnectedState; }

    /// The code and the reason with which the server ended the connection.
    QString ending() const
    {
        return QStringLiteral("%1 %2").arg(m_socket.closeCode()).arg(m_socket.closeReason());
    }

    void send(const QString& text) { m_socket.sendTextMessage(text); }

    QStringList told;

private:
    void keep(const QString& text)
    {
        const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
        const bool isUpdate =
            object.value(QStringLiteral("action")) == QJsonValue(QStringLiteral("update-status")) &&
            object.value(QStringLiteral("data")).isObject() && object.size() == 2;
        told << (isUpdate ? QStringLiteral("update") : text);
    }

    QWebSocket m_socket;
};

QString message(const char* action, const QString& more = {})
{
    return QStringLiteral(R"({"source":"plugin","action":"%1"%2})")
        .arg(QLatin1String(action), more);
}

QString activation(const char* name)
{
    return message("activate-profile",
                   QStringLiteral(R"(,"profile_name":"%1")").arg(QLatin1String(name)));
}

} // namespace

/// The profiles "Work" (1) and "Games" (2), and a server at a port of its own for each test.
class ClientApiWebsocketServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answers_data();
    void answers();
    void refusesAddresses();
    void knowsClientsByTheirOwnFamily();
    void refusesWebPages_data();
    void refusesWebPages();
    void takesPieces();
    void endsHostileConnections_data();
    void endsHostileConnections();
    void dropsWhoNeverReads();
    void buildsAnUpdateOncePerBeat();
    void boundsUpdatesAskedFor();
    void stopsAndStartsAnew();

private:
    QJsonObject statistics()
    {
        ++m_built;
        return {{QStringLiteral("padding"), m_padding}};
    }

    std::unique_ptr<TestDatabase> m_database;
    std::unique_ptr<ProfileManager> m_profiles;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<ClientApiWebsocketServer> m_server;
    int m_built = 0; ///< Updates.
    QString m_padding;
};

void ClientApiWebsocketServerTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    QVERIFY(m_database->exec(QStringLiteral("INSERT INTO profiles (name) VALUES ('Work'), "
                                            "('Games')")));
    m_profiles = std::make_unique<ProfileManager>();
    m_log = std::make_unique<LogCapture>(Log::Level::Debug);
    m_server =
        std::make_unique<ClientApiWebsocketServer>([this] { return statistics(); }, *m_profiles);
    m_built = 0;
    m_padding.clear();
    QVERIFY(m_server->listen(0));
    QVERIFY(m_log->contains(QStringLiteral("[ClientApi] [WebSocket] Server listening on port %1\n")
                                .arg(m_server->port())));
}

void ClientApiWebsocketServerTest::cleanup()
{
    m_server.reset();
    m_log.reset();
    m_profiles.reset();
    m_database.reset();
}

void ClientApiWebsocketServerTest::answers_data()
{
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<int>("activeProfile");
    QTest::addColumn<QString>("signals_");
    QTest::addColumn<QString>("logged");

    struct Expected
    {
        QStringList replies = {};
        int activeProfile = 0;
        const char* emitted = "";
        const char* logged = "";
    };

    const auto row = [](const char* title, const QStringList& messages, const Expected& expected) {
        QTest::newRow(title) << messages << expected.replies << expected.activeProfile
                             << QString::fromLatin1(expected.emitted)
                             << QString::fromUtf8(expected.logged);
    };
    const QString ok = QStringLiteral(R"({"status":200})");
    const QString bad = QStringLiteral(R"({"status":400})");
    const QString missing = QStringLiteral(R"({"status":404})");
    const QString update = QStringLiteral("update");
    const auto invalid = "warn [ClientApi] [WebSocket] Invalid JSON in WebSocket message: ";
    const auto ignoring = "[ClientApi] [WebSocket] Message from unknown source, ignoring.\n";
    const auto noName = "ClientApiWebsocketServer: No profile_name provided in the request.\n";
    const auto noProfile =
        "ClientApiWebsocketServer: Invalid profile_name provided in the request.\n";

    row("identify with a name", {message("identify", QStringLiteral(R"(,"identifier":"Désk")"))},
        {.replies = {update}, .logged = "[ClientApi] [WebSocket] New connection from: Désk\n"});
    row("identify without a name", {message("identify")},
        {.replies = {update},
         .logged = "[ClientApi] [WebSocket] New connection from: Stream Deck\n"});
    row("identify twice", {message("identify"), message("identify"), message("update-status")},
        {.replies = {update, update, update}});
    row("the other source",
        {QStringLiteral(R"({"source":"streamdeck-plugin","action":"identify"})")},
        {.replies = {update}});
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
    row("activate", {activation("Work")},
        {.replies = {ok},
         .activeProfile = 1,
         .logged =
             "ClientApiResponder: Activating profile 'Work' with id '1' on the request of the "
             "websocket Client API from: 127.0.0.1:"});
    row("activate another", {activation("Work"), activation("Games")},
        {.replies = {ok, ok}, .activeProfile = 2});
    row("activate the active one", {activation("Work"), activation("Work")}, {.replies = {ok, ok}});
    row("activate the default one", {activation("Games"), activation("General")},
        {.replies = {ok, ok}});
    row("activate the default one, active", {activation("General")}, {.replies = {ok}});
    row("activate in another case", {activation("work")},
        {.replies = {missing}, .logged = noProfile});
    row("activate nothing", {activation("")}, {.replies = {missing}, .logged = noProfile});
    row("no profile name", {message("activate-profile")}, {.replies = {bad}, .logged = noName});
    row("profile name that is no text",
        {message("activate-profile", QStringLiteral(R"(,"profile_name":1)"))},
        {.replies = {bad}, .logged = noName});
    row("no JSON", {QStringLiteral("hello"), message("identify")},
        {.replies = {update}, .logged = "Invalid JSON in WebSocket message: hello\n"});
    row("no object", {QStringLiteral("[1]")}, {.logged = "WebSocket message: [1]\n"});
    row("too deep", {QStringLiteral("[").repeated(LongestMessage)}, {.logged = invalid});
    row("longest", {QString(LongestMessage, u'x')}, {.logged = "xxx… (cut)\n"});
    row("control characters", {QStringLiteral("a\r\nforged\x1b[2J\u0000b")},
        {.logged = R"(WebSocket message: a\x0d\nforged\x1b[2J\x00b)"
                   "\n"});
}

void ClientApiWebsocketServerTest::answers()
{
    QFETCH(QStringList, messages);
    QFETCH(QStringList, replies);
    QFETCH(QString, logged);
    QStringList emitted;
    connect(m_server.get(), &ClientApiWebsocketServer::websocketWantsToZurge, this,
            [&emitted] { emitted << QStringLiteral("zurge"); });
    connect(m_server.get(), &ClientApiWebsocketServer::websocketWantsToOpenMainWindow, this,
            [&emitted] { emitted << QStringLiteral("window"); });
    Client client(m_server->port());
    QTRY_VERIFY(client.isConnected());
    for (const QString& text : messages) {
        client.send(text);
    }
    // Its answer comes after all others.
    client.send(message("activate-profile", QStringLiteral(R"(,"profile_name":[])")));
    replies << QStringLiteral(R"({"status":400})");
    QTRY_COMPARE(client.told, replies);
    QTEST(emitted.join(QLatin1Char(' ')), "signals_");
    QTEST(m_profiles->getActiveStatsProfileId(), "activeProfile");
    QVERIFY2(m_log->contains(logged), qPrintable(m_log->text()));
    QVERIFY(
        m_log->contains(QStringLiteral("debug Message received: ") + messages.first().first(1)));
    QVERIFY(
        m_log->contains(QStringLiteral(R"(debug Sending to websocket client: {"status":400})")));
}

void ClientApiWebsocketServerTest::refusesAddresses()
{
    const QString ending = QStringLiteral("1008 You are not allowed to connect to this server.");
    const QString blocked = QStringLiteral(
        "[Client API] [Websocket] Blocked IP address 127.0.0.1 because it is not on the allowed IP "
        "list (::1, 127.0.0.2)\n");
    Client early(m_server->port());
    QTRY_VERIFY(early.isConnected());
    early.send(message("identify"));
    QTRY_COMPARE(early.told.size(), 1);

    m_server->setAllowedIps({QStringLiteral("::1"), QStringLiteral("127.0.0.2")});
    QTRY_VERIFY(early.isEnded());
    QCOMPARE(early.ending(), ending);
    QCOMPARE(m_log->count(blocked), 1);

    Client late(m_server->port());
    QTRY_COMPARE(m_log->count(blocked), 2);
    QTRY_VERIFY(late.isEnded());
    QCOMPARE(late.ending(), ending);
    QCOMPARE(m_log->count(QStringLiteral("[ClientApi] [WebSocket] New connection from 127.0.0.1:")),
             1);
    QTRY_COMPARE(m_log->count(QStringLiteral("[ClientApi] [WebSocket] socketDisconnected: ")), 2);

    m_server->setAllowedIps({});
    Client allowed(m_server->port());
    QTRY_VERIFY(allowed.isConnected());
}

void ClientApiWebsocketServerTest::knowsClientsByTheirOwnFamily()
{
    m_server->setAllowedIps({QStringLiteral("::1")});
    Client client(m_server->port(), QStringLiteral("[::1]"));
    QTRY_VERIFY(client.isConnected() || client.isEnded());
    if (client.isEnded()) {
        QSKIP("This machine has no IPv6");
    }
    QTRY_VERIFY(m_log->contains(QStringLiteral("[WebSocket] New connection from [::1]:")));
    client.send(message("identify"));
    QTRY_COMPARE(client.told.size(), 1);
}

void ClientApiWebsocketServerTest::refusesWebPages_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<bool>("isServed");
    QTest::newRow("a web page") << QStringLiteral("https://www.example.com") << false;
    QTest::newRow("a page of another port") << QStringLiteral("http://127.0.0.1:8080") << false;
    QTest::newRow("the own page") << QStringLiteral("http://127.0.0.1:3490") << true;
    QTest::newRow("a program") << QStringLiteral("file://") << true;
}

void ClientApiWebsocketServerTest::refusesWebPages()
{
    constexpr quint16 httpPort = 3490;
    QFETCH(QString, origin);
    QFETCH(bool, isServed);
    m_server->setHttpPort(httpPort);
    Client client(m_server->port(), Ipv4, origin);
    QTRY_VERIFY(isServed ? client.isConnected() : client.isEnded());
    const QString refused =
        QStringLiteral("Refused a connection from the web page %1: ").arg(origin);
    QTRY_COMPARE(m_log->count(refused), isServed ? 0 : 1);
    QCOMPARE(m_log->count(QStringLiteral("[WebSocket] New connection")), isServed ? 1 : 0);
}

/// A handshake byte by byte, and a message in fragments of which the largest is as long as a frame
/// may be.
void ClientApiWebsocketServerTest::takesPieces()
{
    QTcpSocket socket;
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.connectToHost(QHostAddress::LocalHost, m_server->port());
    QTRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);
    for (const char byte : handshake()) {
        socket.putChar(byte);
        socket.flush();
        QCoreApplication::processEvents();
    }
    QTRY_VERIFY(isUpgraded(socket));
    const QByteArray text = message("identify").toUtf8();
    socket.write(frame(text.first(10), Part::First) + frame({}, Part::Middle));
    socket.flush();
    QTest::qWait(1);
    socket.write(frame(text.sliced(10).leftJustified(LongestMessage - 10), Part::Last));
    QTRY_COMPARE(m_built, 1);

    // Many that nothing answers, as a client may send them.
    constexpr int messages = 20;
    for (int i = 0; i < messages; ++i) {
        socket.write(frame(QByteArray(LongestMessage, ' ')));
    }
    QTRY_COMPARE(m_log->count(QStringLiteral("Invalid JSON in WebSocket message:  ")), messages);
    QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
}

void ClientApiWebsocketServerTest::endsHostileConnections_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("code");
    constexpr quint64 huge = 104'857'600;
    const QByteArray half(LongestMessage / 2 + 1, 'x');
    const QString tooMuch = QStringLiteral("1009 ");
    QTest::newRow("a byte too long") << frame(QByteArray(LongestMessage + 1, 'x')) << tooMuch;
    QTest::newRow("too long in two")
        << frame(half, Part::First) + frame(half, Part::Last) << tooMuch;
    QTest::newRow("100 MiB announced") << frameHeader(Part::Only, huge) + "x" << tooMuch;
    QTest::newRow("100 MiB") << frame(QByteArray(huge, 'x')) << tooMuch;
    QTest::newRow("2^64 - 1 bytes")
        << frameHeader(Part::Only, ~quint64(0)) << QStringLiteral("1002 ");
    QTest::newRow("invalid UTF-8")
        << frame("{\"source\":\"plugin\xc3\x28\"}") << QStringLiteral("1007 ");
}

void ClientApiWebsocketServerTest::endsHostileConnections()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, code);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_server->port());
    socket.write(handshake());
    QTRY_VERIFY(isUpgraded(socket));
    const QString peer = QStringLiteral("127.0.0.1:%1").arg(socket.localPort());
    socket.write(bytes);
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
    QTRY_VERIFY(m_log->contains(
        QStringLiteral("[ClientApi] [WebSocket] socketDisconnected: %1 (%2").arg(peer, code)));
    Client next(m_server->port());
    QTRY_VERIFY(next.isConnected());
}

void ClientApiWebsocketServerTest::dropsWhoNeverReads()
{
    Client reader(m_server->port());
    QTRY_VERIFY(reader.isConnected());
    reader.send(message("identify"));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_server->port());
    socket.write(handshake());
    QTRY_VERIFY(isUpgraded(socket));
    socket.setReadBufferSize(1);
    socket.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 1);
    const quint16 port = socket.localPort();
    socket.write(frame(message("identify").toUtf8()));
    QTRY_COMPARE(reader.told.size(), 2);

    // As much as may wait, again and again: the kernel takes some of it on behalf of a client.
    m_padding = QString(100'000, u'x');
    const QString dropped = QStringLiteral(
        "[ClientApi] Dropping the connection from 127.0.0.1: it does not take what it asked for\n");
    for (int i = 3; i < ClientApiWebsocketServer::MostUpdatesAskedFor; ++i) {
        reader.send(message("update-status"));
        QTRY_COMPARE(reader.told.size(), i);
    }
    QCOMPARE(m_log->count(dropped), 1);
    QVERIFY(m_log->contains(QStringLiteral("socketDisconnected: 127.0.0.1:%1\n").arg(port)));
    QVERIFY(reader.isConnected());
}

void ClientApiWebsocketServerTest::buildsAnUpdateOncePerBeat()
{
    constexpr size_t count = 30;
    constexpr int moreThanABeatMs = 2'300;
    std::vector<std::unique_ptr<Client>> clients;
    for (size_t i = 0; i < count; ++i) {
        clients.push_back(std::make_unique<Client>(m_server->port()));
    }
    for (const auto& client : clients) {
        QTRY_VERIFY(client->isConnected());
        client->send(message("keep-alive"));
    }
    QTest::qWait(moreThanABeatMs);
    QCOMPARE(m_built, 0);

    for (const auto& client : clients) {
        client->send(message("identify"));
    }
    QTRY_VERIFY(m_built >= static_cast<int>(count));
    QTRY_COMPARE(clients.front()->told.size(), m_built);
    const int before = m_built;
    for (const auto& client : clients) {
        client->told.clear();
    }
    QTRY_COMPARE(m_built, before + 1);
    for (const auto& client : clients) {
        QTRY_COMPARE(client->told, QStringList{QStringLiteral("update")});
    }
    QCOMPARE(m_built, before + 1);

    clients.clear();
    QTRY_COMPARE(m_log->count(QStringLiteral("socketDisconnected: ")), qsizetype{count});
    const int after = m_built;
    QTest::qWait(moreThanABeatMs);
    QCOMPARE(m_built, after);
}

void ClientApiWebsocketServerTest::boundsUpdatesAskedFor()
{
    Client client(m_server->port());
    QTRY_VERIFY(client.isConnected());
    client.send(message("identify"));
    constexpr int asked = 3 * ClientApiWebsocketServer::MostUpdatesAskedFor;
    for (int i = 0; i < asked; ++i) {
        client.send(message("update-status"));
    }
    client.send(activation("nobody"));
    QTRY_VERIFY(client.told.contains(QStringLiteral(R"({"status":404})")));
    // A beat may have passed in between.
    QVERIFY(m_built >= ClientApiWebsocketServer::MostUpdatesAskedFor);
    QVERIFY(m_built <= 2 * ClientApiWebsocketServer::MostUpdatesAskedFor + 1);
    QTRY_VERIFY(client.told.endsWith(QStringLiteral("update")));
}

void ClientApiWebsocketServerTest::stopsAndStartsAnew()
{
    const quint16 port = m_server->port();
    Client client(port);
    QTRY_VERIFY(client.isConnected());
    QTcpSocket handshaking;
    handshaking.connectToHost(QHostAddress::LocalHost, port);
    handshaking.write("GET / HTTP/1.1\r\n");
    QTRY_COMPARE(handshaking.state(), QAbstractSocket::ConnectedState);

    ClientApiWebsocketServer second([] { return QJsonObject(); }, *m_profiles);
    QVERIFY(!second.listen(port));
    QVERIFY(m_log->contains(QStringLiteral(
        "[ClientApi] [WebSocket] Unable to open websocket server for incoming connections\n")));
    QVERIFY(
        m_log->contains(QStringLiteral("[ClientApi] [WebSocket] Error message: The bound address "
                                       "is already in use\n")));

    m_server->stop();
    QCOMPARE(m_server->port(), 0);
    QVERIFY(second.listen(port));
    QTRY_VERIFY(client.isEnded());
    QCOMPARE(client.ending(), QStringLiteral("1001 The server is stopped."));
    QTRY_COMPARE(handshaking.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(m_server->listen(0));
    Client next(m_server->port());
    QTRY_VERIFY(next.isConnected());
    // Ends with the connection open.
}

REGISTER_TEST(ClientApiWebsocketServerTest);
#include "ClientApiWebsocketServerTest.moc"
