// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/GuardedHttpServer.h"
#include "clientapi/GuardedTcpServer.h"
#include "clientapi/HttpClient.h"
#include "clientapi/ListeningPair.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QAbstractEventDispatcher>
#include <QHttpServerRequest>
#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <vector>

using namespace std::chrono_literals;

namespace {

/// Small, so that no test waits long.
constexpr ConnectionLimits SmallLimits{
    .connections = 4,
    .whenFull = ConnectionLimits::WhenFull::DropIdlest,
    .unansweredBytes = 4'096,
    .unsentBytes = 65'536,
    .unanswered = 200ms,
    .idle = 1s,
};

const QByteArray Get = "GET /here HTTP/1.1\r\nHost: localhost\r\n\r\n";

QByteArray post(const QByteArray& headers)
{
    return "POST /there HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

} // namespace

/// A server that answers with the method, the path and the body of each request, and on "/long"
/// with a megabyte.
class GuardedHttpServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void endsConnections_data();
    void endsConnections();
    void answersInTurn();
    void leavesTimeForOthers();
    void dropsHostileClients_data();
    void dropsHostileClients();
    void makesRoom();
    void refusesWhenFull();
    void leavesWithoutWaiting();

private:
    void listen(const ConnectionLimits& limits);

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<GuardedHttpServer> m_server;
    QStringList m_requests; ///< That were answered.
    quint16 m_port = 0;
};

void GuardedHttpServerTest::init()
{
    m_log = std::make_unique<LogCapture>();
    m_requests.clear();
    listen(SmallLimits);
}

void GuardedHttpServerTest::cleanup()
{
    m_server.reset();
    m_log.reset();
}

void GuardedHttpServerTest::listen(const ConnectionLimits& limits)
{
    m_server = std::make_unique<GuardedHttpServer>([this](const QHttpServerRequest& request) {
        constexpr qsizetype longAnswer = 1'000'000;
        const QString path = request.url().path();
        m_requests << path;
        QByteArray body = path.toUtf8() + ' ' + request.body();
        if (path == QLatin1String("/long")) {
            body = QByteArray(longAnswer, 'x');
        }
        return QHttpServerResponse("text/plain", body);
    });
    const ListeningPair sockets = ListeningPair::open(0, limits, m_server.get());
    m_server->serve(sockets.servers);
    m_port = sockets.port();
    QVERIFY2(m_port != 0, qPrintable(sockets.error));
}

void GuardedHttpServerTest::endsConnections_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("body"); ///< Of the answer; empty: there is none.
    QTest::addColumn<bool>("isKept");
    const auto row = [](const char* name, const QByteArray& request, const QByteArray& body,
                        bool isKept) { QTest::newRow(name) << request << body << isKept; };
    row("kept alive", Get, "/here ", true);
    row("with a length", post("Content-Length: 3\r\n") + "abc", "/there abc", true);
    row("in chunks", post("Transfer-Encoding: chunked\r\n") + "2\r\nab\r\n1;x=y\r\nc\r\n0\r\n\r\n",
        "/there abc", true);
    row("asked to close", "GET /here HTTP/1.1\r\nHost: localhost\r\nConnection: Close\r\n\r\n",
        "/here ", false);
    row("of HTTP/1.0", "GET /here HTTP/1.0\r\n\r\n", "/here ", false);
    row("two lengths", post("Content-Length: 3\r\nContent-Length: 30\r\n") + "abc", {}, false);
    row("negative length", post("Content-Length: -3\r\n") + "abc", {}, false);
    row("length beyond 64 bits", post("Content-Length: 99999999999999999999\r\n") + "abc", {},
        false);
    row("length in words", post("Content-Length: three\r\n") + "abc", {}, false);
    row("unknown coding", post("Transfer-Encoding: gzip, chunked\r\n") + "abc", {}, false);
    row("length and coding",
        post("Transfer-Encoding: chunked\r\nContent-Length: 5\r\n") + "0\r\n\r\n", {}, false);
    row("no HTTP at all", QByteArray("\x16\x03\x01\x02\x00\x01\x00\r\n\r\n", 11), {}, false);
}

/// Whatever follows such a request on its connection is none of its client's.
void GuardedHttpServerTest::endsConnections()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, body);
    QFETCH(bool, isKept);
    HttpClient client(m_port);
    client.send(request + "GET /smuggled HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QCOMPARE(client.answer().body, body);
    QCOMPARE(client.answer().body, isKept ? QByteArray("/smuggled ") : QByteArray());
    QCOMPARE(client.isEnded(), !isKept);
    QCOMPARE(m_requests.contains(QStringLiteral("/smuggled")), isKept);
}

void GuardedHttpServerTest::answersInTurn()
{
    HttpClient client(m_port);
    constexpr int requests = 2'000; // With answers beyond what may wait for a client.
    QByteArray all;
    for (int i = 0; i < requests; ++i) {
        all += "GET /" + QByteArray::number(i) + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
    }
    client.send(all);
    for (int i = 0; i < requests; ++i) {
        QCOMPARE(client.answer().body, '/' + QByteArray::number(i) + ' ');
    }
    QVERIFY(!m_log->contains(QStringLiteral("Dropping")));
}

/// A client with thousands of requests ready at once.
void GuardedHttpServerTest::leavesTimeForOthers()
{
    constexpr int requests = 5'000;
    HttpClient client(m_port);
    client.send(Get.repeated(requests));
    qsizetype answered = 0;
    qsizetype mostInOneTurn = 0;
    const QObject test; // Ends the connection with this function.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &test, [&] {
        mostInOneTurn = std::max(mostInOneTurn, m_requests.size() - answered);
        answered = m_requests.size();
    });
    QTRY_COMPARE(m_requests.size(), requests);
    QVERIFY2(mostInOneTurn < 40, qPrintable(QString::number(mostInOneTurn)));
}

void GuardedHttpServerTest::dropsHostileClients_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("times"); ///< How often they are sent, without haste.
    QTest::addColumn<QString>("reason");
    const QByteArray begun = "GET / HTTP/1.1\r\nHost: localhost\r\n";
    const auto tooLong = QStringLiteral("its request is too long");
    const auto tooSlow = QStringLiteral("its request takes too long");
    QTest::newRow("header of a million bytes")
        << begun + "X: " + QByteArray(1'000'000, 'x') << 1 << tooLong;
    QTest::newRow("header in small pieces") << begun.repeated(40) << 100 << tooLong;
    QTest::newRow("body that never ends")
        << post("Content-Length: 4611686018427387904\r\n") + QByteArray(10'000, 'x') << 1
        << tooLong;
    QTest::newRow("chunk of any length")
        << post("Transfer-Encoding: chunked\r\n") + "7fffffffffffffff\r\n" + QByteArray(10'000, 'x')
        << 1 << tooLong;
    QTest::newRow("chunk of less than nothing")
        << post("Transfer-Encoding: chunked\r\n") + "-5\r\nabc" << 1 << tooSlow;
    QTest::newRow("body that is waited for")
        << post("Content-Length: 5\r\n") + "abc" << 1 << tooSlow;
    QTest::newRow("slow writer") << QByteArray("x") << 100 << tooSlow;
    QTest::newRow("silent") << QByteArray() << 1 << QStringLiteral("it is silent");
    QTest::newRow("line ends alone") << QByteArray("\r\n") << 1 << QStringLiteral("it is silent");
    QTest::newRow("never reads")
        << QByteArray("GET /long HTTP/1.1\r\nHost: localhost\r\n\r\n").repeated(20) << 1
        << QStringLiteral("it does not take what it asked for");
}

void GuardedHttpServerTest::dropsHostileClients()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, times);
    QFETCH(QString, reason);
    QTest::failOnWarning(QRegularExpression(QStringLiteral("GuardedSocket")));
    HttpClient client(m_port);
    client.stopReading();
    for (int i = 0; i < times && !client.isEnded(); ++i) {
        client.send(bytes);
        QTest::qWait(5);
    }
    const QString line = QStringLiteral("Dropping the connection from 127.0.0.1: ");
    QTRY_COMPARE(m_log->count(line), 1);
    QVERIFY2(m_log->contains(line + reason), qPrintable(m_log->text()));
    QTRY_VERIFY(m_server->findChildren<QTcpSocket*>().isEmpty());
    QCOMPARE(HttpClient(m_port).ask(Get).status, 200);
}

void GuardedHttpServerTest::makesRoom()
{
    HttpClient busy(m_port);
    std::vector<std::unique_ptr<HttpClient>> idle;
    constexpr int many = 20;
    for (int i = 0; i < many; ++i) {
        idle.push_back(std::make_unique<HttpClient>(m_port));
        QTest::qWait(2);
        QCOMPARE(busy.ask(Get).status, 200);
    }
    QTRY_COMPARE(m_server->findChildren<QTcpSocket*>().size(), SmallLimits.connections);
    QVERIFY(idle.front()->waitForEnd());
    QVERIFY(!idle.back()->isEnded());
    QCOMPARE(m_log->count(QStringLiteral("it was silent longest")),
             many + 1 - SmallLimits.connections);
}

void GuardedHttpServerTest::refusesWhenFull()
{
    ConnectionLimits limits = SmallLimits;
    limits.connections = 1;
    limits.whenFull = ConnectionLimits::WhenFull::Refuse;
    listen(limits);
    auto first = std::make_unique<HttpClient>(m_port);
    QCOMPARE(first->ask(Get).status, 200);
    QCOMPARE(HttpClient(m_port).ask(Get).status, 0);
    QVERIFY(m_log->contains(QStringLiteral("Refusing a connection from 127.0.0.1: 1 are open")));
    first->sendNoMore();
    QTRY_VERIFY(m_server->findChildren<QTcpSocket*>().isEmpty());
    QCOMPARE(HttpClient(m_port).ask(Get).status, 200);
}

/// Connections in every state, and a request whose answer nobody took.
void GuardedHttpServerTest::leavesWithoutWaiting()
{
    HttpClient silent(m_port);
    HttpClient waiting(m_port);
    waiting.send("GET /here HTTP/1.1\r\n");
    HttpClient deaf(m_port);
    deaf.stopReading();
    deaf.send("GET /long HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QTRY_COMPARE(m_requests.size(), 1);
    m_server.reset();
    QVERIFY(silent.waitForEnd());
    QVERIFY(waiting.waitForEnd());
    QCOMPARE(HttpClient(m_port).ask(Get).status, 0);
}

REGISTER_TEST(GuardedHttpServerTest);
#include "GuardedHttpServerTest.moc"
