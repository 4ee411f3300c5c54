// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/WebPages.h"
#include "support/TestRegistry.h"

#include <QTest>

/// On a machine called "desk.example.org", whose API is at port 3490.
class WebPagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsOwnHosts_data();
    void knowsOwnHosts();
    void knowsOwnOrigins_data();
    void knowsOwnOrigins();
};

void WebPagesTest::knowsOwnHosts_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("isOwn");
    for (const char* host :
         {"", "localhost", "LocalHost:3490", "127.0.0.1", "192.168.1.5:80", "[::1]", "[::1]:3490",
          "[2001:db8::7]:1", "desk.example.org", "DESK:3490", "localhost:"}) {
        QTest::newRow(host) << QString::fromLatin1(host) << true;
    }
    for (const char* host :
         {"evil.example", "evil.example:3490", "localhost.evil.example", "127.0.0.1.evil.example",
          "desk.evil.example", "localhost, evil.example", "localhost@evil.example", "::1", "[::1",
          "[127.0.0.1]", "localhost:99999", "localhost:80:80", "localhost ", "localhost\n", " ",
          "[evil.example]", "localhost:x", ".", "\xef\xbc\x91\xef\xbc\x92"}) {
        QTest::newRow(host) << QString::fromUtf8(host) << false;
    }
}

void WebPagesTest::knowsOwnHosts()
{
    QFETCH(QString, host);
    QTEST(WebPages::isOwnHost(host, QStringLiteral("desk.example.org")), "isOwn");
    QVERIFY(!WebPages::isOwnHost(QStringLiteral("."), QString()));
}

void WebPagesTest::knowsOwnOrigins_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<bool>("isOwn");
    for (const char* origin :
         {"", "null", "file://", "http://localhost:3490", "http://127.0.0.1:3490",
          "http://127.9.9.9:3490", "http://[::1]:3490", "http://desk:3490"}) {
        QTest::newRow(origin) << QString::fromLatin1(origin) << true;
    }
    for (const char* origin :
         {"http://localhost", "http://localhost:8080", "https://localhost:3490",
          "http://evil.example", "http://evil.example:3490", "https://evil.example",
          "http://192.0.2.1:3490", "http://[2001:db8::7]:3490", "chrome-extension://abcdef",
          "file://evil.example", "NULL", "null, http://localhost:3490", "http://localhost:3490/",
          "http://", "evil"}) {
        QTest::newRow(origin) << QString::fromLatin1(origin) << false;
    }
}

void WebPagesTest::knowsOwnOrigins()
{
    QFETCH(QString, origin);
    QTEST(WebPages::isOwnOrigin(origin, 3490, QStringLiteral("desk.example.org")), "isOwn");
}

REGISTER_TEST(WebPagesTest);
#include "WebPagesTest.moc"
