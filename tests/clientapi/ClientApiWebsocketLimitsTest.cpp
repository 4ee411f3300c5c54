// SPDX-License-Identifier: GPL-3.0-or-later
#include "WebsocketBytes.h"
#include "WebsocketHost.h"
#include "support/TestRegistry.h"

#include <QHostAddress>
#include <QTcpSocket>
#include <QThread>

#include <algorithm>

using namespace WebsocketBytes;
using namespace WebsocketMessages;

namespace {

constexpr int LongestMessage = static_cast<int>(ClientApiWebsocketServer::LongestMessage);

} // namespace

/// Clients that send and ask for more than a client should, or in another way.
class ClientApiWebsocketLimitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void boundsUpdatesAskedFor();
    void takesPieces();
    void letsTimersHaveTheirTurn();
    void endsLongHandshakes();
    void endsHostileConnections_data();
    void endsHostileConnections();
    void dropsWhoNeverReads();

private:
    std::unique_ptr<WebsocketHost> m_host;
};

void ClientApiWebsocketLimitsTest::init()
{
    m_host = std::make_unique<WebsocketHost>();
    QVERIFY(m_host->isReady);
}

void ClientApiWebsocketLimitsTest::cleanup()
{
    m_host.reset();
}

void ClientApiWebsocketLimitsTest::boundsUpdatesAskedFor()
{
    constexpr int most = ClientApiWebsocketServer::MostUpdatesAskedFor;
    const QString missing = QStringLiteral(R"({"status":404})");
    WebsocketClient client(*m_host);
    QTRY_VERIFY(client.isConnected());
    client.send(message("identify"));
    for (int i = 0; i < 3 * most; ++i) {
        client.send(message("update-status"));
    }
    client.send(activation("nobody"));
    QTRY_VERIFY(client.told.contains(missing));
    QCOMPARE(client.told.size(), most + 1);

    m_host->beat();
    client.send(message("update-status"));
    QTRY_COMPARE(client.told.size(), most + 3);
    QCOMPARE(m_host->built, most + 2);
}

/// A handshake byte by byte, and a message in fragments of which the largest is as long as a frame
/// may be.
void ClientApiWebsocketLimitsTest::takesPieces()
{
    QTcpSocket socket;
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.connectToHost(QHostAddress::LocalHost, m_host->server.port());
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
    QTRY_COMPARE(m_host->built, 1);

    // Many that nothing answers, as a client may send them.
    constexpr int messages = 20;
    for (int i = 0; i < messages; ++i) {
        socket.write(frame(QByteArray(LongestMessage, ' ')));
    }
    QTRY_COMPARE(m_host->log.count(QStringLiteral("Invalid JSON in WebSocket message:  ")),
                 messages);
    QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
}

/// Timers have their turn between messages that arrive together, however long each takes.
void ClientApiWebsocketLimitsTest::letsTimersHaveTheirTurn()
{
    constexpr int count = 300;
    constexpr int mostAtOnce = 60; // Many more are in what the kernel holds.
    int handled = 0;
    int before = 0;
    int most = 0;
    connect(&m_host->server, &ClientApiWebsocketServer::websocketWantsToZurge, this, [&handled] {
        QThread::msleep(1);
        ++handled;
    });
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&] {
        most = std::max(most, handled - before);
        before = handled;
    });
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_host->server.port());
    socket.write(handshake());
    QTRY_VERIFY(isUpgraded(socket));
    tick.start(1);
    socket.write(frame(message("zurge").toUtf8()).repeated(count));
    QTRY_COMPARE(before, count);
    QVERIFY2(most <= mostAtOnce, qPrintable(QString::number(most)));
}

void ClientApiWebsocketLimitsTest::endsLongHandshakes()
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_host->server.port());
    socket.write("GET / HTTP/1.1\r\nX: " + QByteArray(1'000'000, 'x'));
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(m_host->log.contains(QStringLiteral(
        "[ClientApi] Dropping the connection from 127.0.0.1: its request is too long\n")));
}

void ClientApiWebsocketLimitsTest::endsHostileConnections_data()
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

void ClientApiWebsocketLimitsTest::endsHostileConnections()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, code);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_host->server.port());
    socket.write(handshake());
    QTRY_VERIFY(isUpgraded(socket));
    const QString peer = QStringLiteral("127.0.0.1:%1").arg(socket.localPort());
    socket.write(bytes);
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
    QTRY_VERIFY(m_host->log.contains(
        QStringLiteral("[ClientApi] [WebSocket] socketDisconnected: %1 (%2").arg(peer, code)));
    WebsocketClient next(*m_host);
    QTRY_VERIFY(next.isConnected());
}

void ClientApiWebsocketLimitsTest::dropsWhoNeverReads()
{
    WebsocketClient reader(*m_host);
    QTRY_VERIFY(reader.isConnected());
    reader.send(message("identify"));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_host->server.port());
    socket.write(handshake());
    QTRY_VERIFY(isUpgraded(socket));
    socket.setReadBufferSize(1);
    socket.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 1);
    const quint16 port = socket.localPort();
    socket.write(frame(message("identify").toUtf8()));
    QTRY_COMPARE(reader.told.size(), 2);

    // As much as may wait, again and again: the kernel takes some of it on behalf of a client.
    m_host->padding = QString(100'000, u'x');
    const QString dropped = QStringLiteral(
        "[ClientApi] Dropping the connection from 127.0.0.1: it does not take what it asked for\n");
    for (int i = 3; i < ClientApiWebsocketServer::MostUpdatesAskedFor; ++i) {
        reader.send(message("update-status"));
        QTRY_COMPARE(reader.told.size(), i);
    }
    QCOMPARE(m_host->log.count(dropped), 1);
    QVERIFY(m_host->log.contains(QStringLiteral("socketDisconnected: 127.0.0.1:%1\n").arg(port)));
    QVERIFY(reader.isConnected());
}

REGISTER_TEST(ClientApiWebsocketLimitsTest);
#include "ClientApiWebsocketLimitsTest.moc"
