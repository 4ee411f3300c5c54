// SPDX-License-Identifier: GPL-3.0-or-later
// What happens to a request on the way: lost connections, owners that go, proxies.
#include "HttpClient.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QTcpServer>

#include <utility>

using namespace std::chrono_literals;

class tHTTPConnectionTest : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void sendsOnce_data();
    void sendsOnce();
    void refusesLargeAnswers_data();
    void refusesLargeAnswers();
    void givesUpOnSilenceOnly();
    void dropsASecondRequest();
    void goesWithItsOwner_data();
    void goesWithItsOwner();
    void reportsUnreachable_data();
    void reportsUnreachable();
    void usesTheProxy_data();
    void usesTheProxy();

private:
    QSslConfiguration m_tls;
    std::unique_ptr<TestDatabase> m_database;
};

void tHTTPConnectionTest::initTestCase()
{
    m_tls = untrustedTls();
    QVERIFY(!m_tls.localCertificate().isNull());
}

void tHTTPConnectionTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    Settings::instance().setValue(SettingsKeys::ProxySystemEnabled, false);
}

void tHTTPConnectionTest::cleanup()
{
    m_database.reset();
}

void tHTTPConnectionTest::sendsOnce_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("isReset");
    QTest::addColumn<bool>("isUpload");
    QTest::addColumn<bool>("isSecond"); ///< The object has had an answer before.
    const QByteArray half = Fine.first(20);
    for (const bool upload : {false, true}) {
        const char* what = upload ? "upload" : "form";
        QTest::addRow("%s, closed", what) << QByteArray() << false << upload << false;
        QTest::addRow("%s, reset", what) << QByteArray() << true << upload << false;
        QTest::addRow("%s, closed in the headers", what) << half << false << upload << false;
        QTest::addRow("%s, reset in the headers", what) << half << true << upload << false;
        QTest::addRow("second %s, closed", what) << QByteArray() << false << upload << true;
        QTest::addRow("second %s, reset", what) << QByteArray() << true << upload << true;
    }
}

void tHTTPConnectionTest::sendsOnce()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, isReset);
    QFETCH(bool, isUpload);
    QFETCH(bool, isSecond);
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("backup.zip"));
    QVERIFY(writeFile(path, QByteArray(100000, 'x')));
    bool isFine = isSecond;
    WireServer server([&](QTcpSocket& client, const QByteArray&) {
        client.write(std::exchange(isFine, false) ? Fine : answer);
        if (isSecond && client.bytesToWrite() > 0) {
            return;
        }
        client.flush();
        isReset ? client.abort() : client.disconnectFromHost();
    });
    HttpClient client(server.url());
    const auto send = [&] {
        isUpload ? client.http->uploadFile(QStringLiteral("{}"), path)
                 : client.http->request(QStringLiteral("{}"));
    };
    if (isSecond) {
        client.http->request(QStringLiteral("{}"));
        QVERIFY(client.finishes());
        QCOMPARE(client.responses.size(), 1);
        server.requests.clear();
    }
    send();
    QVERIFY(comesTrue([&] { return !client.errors.isEmpty(); }));
    QVERIFY(!client.another());
    QCOMPARE(client.errors.size(), 1);
    QVERIFY(client.error().size() > QLatin1String("Error while talking to website: ").size());
    QCOMPARE(server.requests.size(), 1);
}

void tHTTPConnectionTest::refusesLargeAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("fits");
    const QByteArray frame = R"({"text":""})";
    const auto object = [&frame](qsizetype size) {
        return QByteArray(frame).insert(9, QByteArray(size - frame.size(), 'x'));
    };
    const QByteArray largest = object(tHTTP::LargestReply);
    const QByteArray larger = object(tHTTP::LargestReply + 1);
    QTest::newRow("largest") << WireServer::reply(largest) << true;
    QTest::newRow("largest, compressed") << deflated(largest) << true;
    QTest::newRow("larger") << WireServer::reply(larger) << false;
    QTest::newRow("larger, in a chunk") << chunked(larger) << false;
    QTest::newRow("larger, compressed") << deflated(larger) << false;
    QTest::newRow("much larger, compressed") << deflated(object(4 * tHTTP::LargestReply)) << false;
    QTest::newRow("larger, without a length")
        << QByteArray("HTTP/1.0 200 OK\r\n\r\n") + larger << false;
}

void tHTTPConnectionTest::refusesLargeAnswers()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, fits);
    WireServer server([&answer](QTcpSocket& client, const QByteArray&) { client.write(answer); });
    HttpClient client(server.url());
    client.http->request(QStringLiteral("{}"));
    QVERIFY(client.finishes());
    QCOMPARE(client.responses.size(), fits ? 1 : 0);
    QCOMPARE(client.error().contains(QLatin1String("larger than 32 MiB")), !fits);
}

void tHTTPConnectionTest::givesUpOnSilenceOnly()
{
    const auto patience = 4000ms;
    WireServer mute(m_tls, stayStill);
    // Longer in all, but never silent for more than an eighth of it.
    WireServer slow(m_tls, [&patience](QTcpSocket& client, const QByteArray&) {
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 11\r\n\r\n{");
        for (int step = 1; step <= 10; ++step) {
            QTimer::singleShot(patience * step / 8, &client,
                               [&client, step] { client.write(step < 10 ? " " : "}"); });
        }
    });
    HttpClient unanswered(mute.url());
    HttpClient answered(slow.url());
    for (HttpClient* client : {&unanswered, &answered}) {
        client->http->setStallLimit(patience);
        client->http->request(QStringLiteral("{}"));
    }
    QVERIFY(unanswered.finishes());
    QCOMPARE(unanswered.error(),
             QStringLiteral("Error while talking to website: the service does not answer"));
    QVERIFY(answered.finishes());
    QCOMPARE(answered.responses.size(), 1);
}

void tHTTPConnectionTest::dropsASecondRequest()
{
    const LogCapture log;
    QTcpSocket* waiting = nullptr;
    WireServer server([&waiting](QTcpSocket& client, const QByteArray&) { waiting = &client; });
    HttpClient client(server.url());
    client.http->request(QStringLiteral("{}"));
    client.http->request(QStringLiteral("[]"));
    client.http->uploadFile(QStringLiteral("{}"), QStringLiteral("/etc/passwd"));
    QTRY_VERIFY_WITH_TIMEOUT(waiting != nullptr, 30000);
    waiting->write(Fine);
    QVERIFY(client.finishes());
    QCOMPARE(server.requests.size(), 1);
    QVERIFY(server.requests.constFirst().contains("&p=e30%3D"));
    QCOMPARE(log.count(QStringLiteral(
                 "Already busy doing a HTTP request, putting a new request on hold.")),
             2);
}

void tHTTPConnectionTest::goesWithItsOwner_data()
{
    QTest::addColumn<QByteArray>("answer"); ///< Before the owner goes.
    QTest::addColumn<bool>("isUpload");
    QTest::addColumn<QString>("moment");
    const QByteArray large = WireServer::reply(QByteArray(20'000'000, '{'));
    for (const bool upload : {false, true}) {
        const char* what = upload ? "upload" : "form";
        QTest::addRow("%s, at once", what) << QByteArray() << upload << QStringLiteral("at once");
        QTest::addRow("%s, sent", what) << QByteArray() << upload << QStringLiteral("sent");
        QTest::addRow("%s, half answered", what)
            << large.first(10'000'000) << upload << QStringLiteral("sent");
        QTest::addRow("%s, answered", what) << large << upload << QStringLiteral("sent");
        QTest::addRow("%s, in the slot", what) << Fine << upload << QStringLiteral("in the slot");
    }
}

void tHTTPConnectionTest::goesWithItsOwner()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, isUpload);
    QFETCH(QString, moment);
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("backup.zip"));
    QVERIFY(writeFile(path, QByteArray(1'000'000, 'x')));
    auto owner = std::make_unique<QObject>();
    bool isAnswered = false;
    WireServer server(m_tls, [&](QTcpSocket& client, const QByteArray&) {
        client.write(answer);
        isAnswered = true;
    });
    HttpClient client(server.url());
    client.http->setParent(owner.get());
    tHTTP* http = client.http.release();
    connect(http, &tHTTP::response, this, [&owner] { owner.reset(); });
    isUpload ? http->uploadFile(QStringLiteral("{}"), path) : http->request(QStringLiteral("{}"));
    if (moment == QLatin1String("sent")) {
        QTRY_VERIFY_WITH_TIMEOUT(isAnswered, 30000);
    }
    if (moment != QLatin1String("in the slot")) {
        owner.reset();
    }
    QTRY_VERIFY_WITH_TIMEOUT(owner == nullptr, 30000);
    QVERIFY(!client.another());
    QCOMPARE(client.signalCount(), moment == QLatin1String("in the slot") ? 1 : 0);
}

void tHTTPConnectionTest::reportsUnreachable_data()
{
    QTest::addColumn<QString>("url"); ///< "%1" stands for a port.
    QTest::addColumn<QString>("end"); ///< Of the message.
    QTest::newRow("nobody listens")
        << QStringLiteral("https://127.0.0.1:9/api") << QStringLiteral("Connection refused");
    QTest::newRow("no such host") << QStringLiteral("https://service.invalid/")
                                  << QStringLiteral("not found");
    QTest::newRow("no address") << QStringLiteral("tallyvane") << QString();
    QTest::newRow("no TLS") << QStringLiteral("https://127.0.0.1:%1/")
                            << QStringLiteral(". We recommend trying again in a little while.");
    QTest::newRow("no file") << QStringLiteral("upload") << QStringLiteral("cannot be read.");
}

void tHTTPConnectionTest::reportsUnreachable()
{
    QFETCH(QString, url);
    QFETCH(QString, end);
    QTcpServer mail;
    QVERIFY(mail.listen(QHostAddress::LocalHost));
    connect(&mail, &QTcpServer::newConnection, &mail,
            [&mail] { mail.nextPendingConnection()->write("220 mail.example ESMTP\r\n"); });
    HttpClient client(url.replace(QLatin1String("%1"), QString::number(mail.serverPort())));
    if (url == QLatin1String("upload")) {
        client.http->uploadFile(QStringLiteral("{}"), m_database->directory());
    } else {
        client.http->request(QStringLiteral("{}"));
    }
    QCOMPARE(client.signalCount(), 0);
    QVERIFY(client.finishes());
    QCOMPARE(client.errors.size(), 1);
    QVERIFY2(client.error().endsWith(end), qPrintable(client.error()));
}

void tHTTPConnectionTest::usesTheProxy_data()
{
    QTest::addColumn<bool>("isOwn");
    QTest::addColumn<bool>("isSystem");
    QTest::addColumn<QString>("password"); ///< Empty: no credentials are set.
    QTest::addColumn<bool>("asks");        ///< The proxy wants credentials.
    QTest::addColumn<bool>("arrives");
    QTest::addColumn<int>("challenges");
    QTest::addColumn<bool>("isLost"); ///< The service hangs up instead of answering.
    const QString right = QStringLiteral("right");
    const QString wrong = QStringLiteral("wrong");
    QTest::newRow("none") << false << false << QString() << true << true << 0 << false;
    QTest::newRow("system") << false << true << QString() << false << true << 0 << false;
    QTest::newRow("system, right password") << false << true << right << true << true << 1 << false;
    QTest::newRow("own") << true << false << QString() << false << true << 0 << false;
    QTest::newRow("own, no password") << true << false << QString() << true << false << 1 << false;
    QTest::newRow("own, right password") << true << false << right << true << true << 1 << false;
    QTest::newRow("own, wrong password") << true << false << wrong << true << false << 2 << false;
    QTest::newRow("own, lost behind it") << true << false << right << true << true << 1 << true;
}

void tHTTPConnectionTest::usesTheProxy()
{
    QFETCH(bool, isOwn);
    QFETCH(bool, isSystem);
    QFETCH(QString, password);
    QFETCH(bool, asks);
    QFETCH(bool, arrives);
    QFETCH(bool, isLost);
    const auto answer = [&isLost](QTcpSocket& client, const QByteArray& request) {
        isLost ? client.abort() : answerFine(client, request);
    };
    for (const bool isTls : {true, false}) {
        int challenges = 0;
        WireServer proxy([&](QTcpSocket& client, const QByteArray& request) {
            const QByteArray credentials = WireServer::header(request, "Proxy-Authorization");
            if (asks && credentials != "Basic " + QByteArray("me:right").toBase64()) {
                ++challenges;
                client.write(WireServer::reply("no", "407 Who is it",
                                               "Proxy-Authenticate: Basic realm=\"here\"\r\n"));
            } else {
                passOn(client, request);
            }
        });
        WireServer tls(m_tls, answer);
        WireServer plain(answer);
        WireServer& server = isTls ? tls : plain;
        const QByteArray address = proxy.url(QString()).toUtf8();
        qputenv("http_proxy", address);
        qputenv("https_proxy", address);
        Settings& settings = Settings::instance();
        settings.setValue(SettingsKeys::ProxyEnabled, isOwn);
        settings.setValue(SettingsKeys::ProxySystemEnabled, isSystem);
        settings.setValue(SettingsKeys::ProxyHostname, QStringLiteral("127.0.0.1"));
        settings.setValue(SettingsKeys::ProxyPort, int{proxy.port()});
        settings.setValue(SettingsKeys::ProxyAuthEnabled, !password.isEmpty());
        settings.setValue(SettingsKeys::ProxyUser, QStringLiteral("me"));
        settings.setValue(SettingsKeys::ProxyPassword, password);
        HttpClient client(server.url());
        client.http->request(QStringLiteral("{}"));
        QVERIFY(client.finishes());
        QVERIFY2(client.responses.size() == (arrives && !isLost ? 1 : 0),
                 qPrintable(client.error()));
        QCOMPARE(server.requests.size(), arrives ? 1 : 0);
        QCOMPARE(proxy.requests.isEmpty(), !isOwn && !isSystem);
        QTEST(challenges, "challenges");
    }
    qunsetenv("http_proxy");
    qunsetenv("https_proxy");
}

REGISTER_TEST(tHTTPConnectionTest);
#include "tHTTPConnectionTest.moc"
