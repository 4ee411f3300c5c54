// SPDX-License-Identifier: GPL-3.0-or-later
#include "HttpClient.h"
#include "account/LocalStats.h"
#include "account/tHTTP.h"
#include "base/Version.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

namespace {

QByteArray base64(const QByteArray& bytes)
{
    return bytes.toBase64().replace('+', "%2B").replace('/', "%2F").replace('=', "%3D");
}

} // namespace

class tHTTPTest : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void sendsTheForm_data();
    void sendsTheForm();
    void uploadsTheFile_data();
    void uploadsTheFile();
    void readsTheAnswer_data();
    void readsTheAnswer();
    void followsNoRedirect_data();
    void followsNoRedirect();
    void acceptsAnyCertificate();
    void logsNoSecrets_data();
    void logsNoSecrets();

private:
    QSslConfiguration m_tls;
    std::unique_ptr<TestDatabase> m_database;
};

void tHTTPTest::initTestCase()
{
    m_tls = untrustedTls();
    QVERIFY(!m_tls.localCertificate().isNull());
}

void tHTTPTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    Settings::instance().setValue(SettingsKeys::ProxySystemEnabled, false);
}

void tHTTPTest::cleanup()
{
    m_database.reset();
}

void tHTTPTest::sendsTheForm_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isSignedIn");
    QTest::addColumn<QByteArray>("end"); ///< Of the body, after "p" and its value.
    QTest::newRow("nobody signed in") << QByteArray("{}") << false << QByteArray();
    QTest::newRow("signed in, beyond ASCII")
        << QByteArray(R"({"name":"häß ÿ>?"})") << true
        << QByteArray("&ci=" +
                      base64(R"({"computer_id":"34","password_hash":"a+b/c","user_id":"12"})"));
}

void tHTTPTest::sendsTheForm()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isSignedIn);
    QFETCH(QByteArray, end);
    LocalStats stats;
    if (isSignedIn) {
        AccountIdentity identity;
        identity.userId = 12;
        identity.computerId = 34;
        identity.passwordHash = QStringLiteral("a+b/c");
        stats.setIdentity(identity);
    }
    WireServer server(m_tls, answerFine);
    HttpClient client(server.url(QStringLiteral("/api/v1?x=y")));
    client.http->addPostVar(QStringLiteral("z"), QStringLiteral("last"));
    client.http->addPostVar(QStringLiteral("a b&"), QStringLiteral("=ü%+"));
    client.http->request(QString::fromUtf8(text));
    QVERIFY(client.finishes());
    QCOMPARE(client.response().value(QStringLiteral("status")).toInt(), 200);
    QCOMPARE(server.requests.size(), 1);
    const QByteArray request = server.requests.constFirst();
    QVERIFY2(request.startsWith("POST /api/v1?x=y HTTP/1.1\r\n"), request.constData());
    QCOMPARE(WireServer::header(request, "User-Agent"),
             "Tallyvane Client " + versionString().toUtf8());
    QCOMPARE(WireServer::header(request, "Content-Type"), "application/x-www-form-urlencoded");
    QCOMPARE(WireServer::body(request), "client_version=" + versionString().toUtf8() +
                                            "&p=" + base64(text) + end +
                                            "&a%20b%26=%3D%C3%BC%25%2B&z=last");
}

void tHTTPTest::uploadsTheFile_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("shownName");
    QTest::addColumn<QByteArray>("type");
    const QString archive = QStringLiteral(R"({"type_upload":"database_file"})");
    QTest::newRow("keyboard") << QStringLiteral(R"({"type_upload":"keyboard_image"})")
                              << QStringLiteral("map.of.keys.png") << QByteArray("map.of.keys.png")
                              << QByteArray("image/png");
    QTest::newRow("mouse") << QStringLiteral(R"({"type_upload":"mouse_image"})")
                           << QStringLiteral("m.jpeg") << QByteArray("m.jpeg")
                           << QByteArray("image/jpeg");
    QTest::newRow("archive") << archive << QStringLiteral("Sicherung für mich.zip")
                             << QByteArray("Sicherung für mich.zip")
                             << QByteArray("application/octet-stream");
    QTest::newRow("name that would forge a header")
        << QStringLiteral(R"({"type_upload":"mouse_image"})")
        << QStringLiteral("a\".p\r\nX-Evil: 1") << QByteArray("a%22.p%0D%0AX-Evil: 1")
        << QByteArray("image/p%0D%0AX-Evil: 1");
}

void tHTTPTest::uploadsTheFile()
{
    QFETCH(QString, text);
    QFETCH(QString, name);
    QFETCH(QByteArray, shownName);
    QFETCH(QByteArray, type);
    const QTemporaryDir directory;
    const QByteArray content = QByteArray(300000, 'x') + QByteArray("\r\n--\0end", 8);
    QVERIFY(writeFile(directory.filePath(name), content));
    WireServer server(m_tls, answerFine);
    HttpClient client(server.url());
    const QSignalSpy progress(client.http.get(), &tHTTP::uploadProgress);
    client.http->uploadFile(text, directory.filePath(name));
    QVERIFY(client.finishes());
    QVERIFY2(client.errors.isEmpty(), qPrintable(client.error()));
    QCOMPARE(server.requests.size(), 1);
    const QByteArray request = server.requests.constFirst();
    const QByteArray body = WireServer::body(request);
    const QByteArray dashes = body.split('\r').constFirst();
    QCOMPARE(WireServer::header(request, "User-Agent"),
             "Tallyvane Client " + versionString().toUtf8());
    QCOMPARE("--" + WireServer::header(request, "Content-Type"),
             "--multipart/form-data; boundary=" + dashes.sliced(2));
    QCOMPARE(body, dashes + "\r\nContent-Disposition: form-data; name=\"p\"\r\n\r\n" +
                       text.toUtf8().toBase64() + "\r\n" + dashes +
                       "\r\nContent-Disposition: form-data; name=\"client_version\"\r\n\r\n" +
                       versionString().toUtf8() + "\r\n" + dashes +
                       "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
                       shownName + "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n" +
                       dashes + "--\r\n");
    QVERIFY(progress.contains(QVariantList{qint64{body.size()}, qint64{body.size()}}));
}

void tHTTPTest::readsTheAnswer_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QVariantMap>("response");
    QTest::addColumn<QString>("error"); ///< What it begins with; empty: there is a response.
    const QVariantMap none;
    const QVariantMap fine{{QStringLiteral("status"), 200}};
    const QString failed = QStringLiteral("Error while talking to website: ");
    QTest::newRow("object") << Fine << fine << QString();
    QTest::newRow("in a chunk") << chunked(R"({"status":200})") << fine << QString();
    QTest::newRow("compressed") << deflated(R"({"status":200})") << fine << QString();
    QTest::newRow("without a length")
        << QByteArray("HTTP/1.0 200 OK\r\n\r\n{\"status\":200}") << fine << QString();
    QTest::newRow("base64 object")
        << WireServer::reply(QByteArray(R"({"status":200})").toBase64()) << fine << QString();
    QTest::newRow("base64 empty object") << WireServer::reply("e30=") << none << QString();
    QTest::newRow("nothing once decoded") << WireServer::reply("\n") << none << QString();
    QTest::newRow("array") << WireServer::reply(R"([{"a":1}])") << none << QString();
    QTest::newRow("bad UTF-8") << WireServer::reply("{\"a\":\"\xff\"}")
                               << QVariantMap{{QStringLiteral("a"), QStringLiteral("\uFFFD")}}
                               << QString();
    QTest::newRow("empty") << WireServer::reply("") << none
                           << QStringLiteral("Bad reply from server: empty");
    QTest::newRow("no JSON, not decoded") << WireServer::reply("status:200") << none
                                          << failed + QStringLiteral("illegal value at byte 1");
    QTest::newRow("cut JSON") << WireServer::reply(R"({"status":)") << none
                              << failed + QStringLiteral("unterminated object at byte 10");
    QTest::newRow("server error") << WireServer::reply("{}", "500 Oops") << none
                                  << failed + QStringLiteral("Error transf");
    QTest::newRow("too many requests")
        << WireServer::reply("{}", "429 Later") << none << failed + QStringLiteral("Error transf");
    QTest::newRow("damaged in its packing")
        << WireServer::reply("hello", "200 OK", "Content-Encoding: deflate\r\n") << none
        << failed + QStringLiteral("the answer is damaged");
    QTest::newRow("cut body")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"status\":200}") << none
        << failed + QStringLiteral("Connection closed");
    QTest::newRow("no HTTP") << QByteArray("220 mail.example ESMTP\r\n\r\n") << none << failed;
}

void tHTTPTest::readsTheAnswer()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, error);
    const LogCapture log;
    WireServer server(m_tls, [&answer](QTcpSocket& client, const QByteArray&) {
        client.write(answer);
        client.disconnectFromHost();
    });
    HttpClient client(server.url());
    client.http->request(QStringLiteral("{}"));
    QVERIFY(client.finishes());
    QTEST(client.response(), "response");
    QVERIFY2(client.error().startsWith(error), qPrintable(client.error()));
    QCOMPARE(client.errors.size(), error.isEmpty() ? 0 : 1);
    QVERIFY(error.isEmpty() || log.contains(QStringLiteral(" website: ")) ||
            log.contains(client.error()));
    QCOMPARE(server.requests.size(), 1);
}

void tHTTPTest::followsNoRedirect_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<bool>("names"); ///< The message names the place.
    for (const char* status : {"301 Moved", "302 Found", "303 See"}) {
        QTest::newRow(status) << QByteArray(status) << true;
    }
    // Here Qt gives up when it may not send the body again, before it tells of the place.
    for (const char* status : {"307 Temporary", "308 Moved"}) {
        QTest::newRow(status) << QByteArray(status) << false;
    }
}

void tHTTPTest::followsNoRedirect()
{
    QFETCH(QByteArray, status);
    QFETCH(bool, names);
    const WireServer other(m_tls, answerFine);
    WireServer server(m_tls, [&](QTcpSocket& client, const QByteArray&) {
        client.write(WireServer::reply(R"({"status":200})", status,
                                       "Location: " + other.url().toUtf8() + "\r\n"));
    });
    HttpClient client(server.url());
    client.http->request(QStringLiteral("{}"));
    QVERIFY(client.finishes());
    QCOMPARE(client.errors.size(), 1);
    QVERIFY2(client.error().contains(other.url()) == names, qPrintable(client.error()));
    QCOMPARE(server.requests.size(), 1);
    QCOMPARE(other.connections, 0);
}

void tHTTPTest::acceptsAnyCertificate()
{
    const LogCapture log;
    WireServer server(m_tls, answerFine);
    HttpClient client(server.url());
    client.http->request(QStringLiteral("{}"));
    QVERIFY(client.finishes());
    QCOMPARE(client.responses.size(), 1);
    QVERIFY(log.contains(QStringLiteral("SSL Errors: The host name did not match")));
    QVERIFY(log.contains(QStringLiteral("SSL Errors: The issuer certificate")));
    QVERIFY(log.contains(QStringLiteral("Performing HTTP request to: ") + server.url()));
}

void tHTTPTest::logsNoSecrets_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("object") << QByteArray(
        R"({"data":{"client_token":"s3cret","client_uid":"s3cret"}})");
    QTest::newRow("spaced number") << QByteArray("{\"token\" :\n 314159265, \"a\": \"x\"}");
    QTest::newRow("base64") << QByteArray(R"({"passwordhash":"s3\"cret"})").toBase64();
    QTest::newRow("cut") << QByteArray(R"({"status":200,"token":"s3cret)");
    QTest::newRow("address") << QByteArray(R"({"data":{"url":"https:\/\/x.example\/?s3cret"}})");
}

void tHTTPTest::logsNoSecrets()
{
    QFETCH(QByteArray, answer);
    const LogCapture log(Log::Level::Debug);
    LocalStats stats;
    AccountIdentity identity;
    identity.userId = 1;
    identity.computerId = 2;
    identity.passwordHash = QStringLiteral("s3cret");
    stats.setIdentity(identity);
    WireServer server(m_tls, [&answer](QTcpSocket& client, const QByteArray&) {
        client.write(WireServer::reply(answer));
    });
    HttpClient client(server.url());
    client.http->addPostVar(QStringLiteral("kept"), QStringLiteral("yes"));
    const QByteArray text =
        R"({"action":"x","client_token":"s3cret","data":{"passwordhash":"s3c"}})";
    client.http->request(QString::fromUtf8(text));
    QVERIFY(client.finishes());
    QByteArray shown = log.text().toUtf8();
    QVERIFY(shown.contains("Text response: "));
    QVERIFY(shown.contains("&kept=yes"));
    for (const QByteArray& word : shown.replace("%3D", "=").split('=')) {
        shown += QByteArray::fromBase64(word.split('&').constFirst());
    }
    QVERIFY(shown.contains("\"action\""));
    for (const char* part : {"s3c", "s3\\", "cret", "314159265"}) {
        QVERIFY2(!shown.contains(part), shown.constData());
    }
    // Sent it was all the same.
    QVERIFY(WireServer::body(server.requests.constFirst()).contains(base64(text)));
}

REGISTER_TEST(tHTTPTest);
#include "tHTTPTest.moc"
