// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/LocalNetwork.h"
#include "network/ProxyAddress.h"
#include "support/TestRegistry.h"

#include <QHostAddress>
#include <QTest>

class ProxyAddressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { qputenv("https_proxy", "http://192.168.7.8:3128"); }

    void knowsTheProxy_data();
    void knowsTheProxy();
    void forgetsTheProxy();

private:
    static bool isProxy(const char* address, unsigned int port)
    {
        return !Utils::GeoIP_is_private_ipnum_v4(
            QHostAddress(QLatin1String(address)).toIPv4Address(), port);
    }
};

void ProxyAddressTest::knowsTheProxy_data()
{
    QTest::addColumn<QString>("host"); ///< Empty: as the system says.
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("address") << QStringLiteral("10.1.2.3") << QByteArray("10.1.2.3");
    QTest::newRow("name") << QStringLiteral("localhost") << QByteArray("127.0.0.1");
    QTest::newRow("system") << QString() << QByteArray("192.168.7.8");
}

void ProxyAddressTest::knowsTheProxy()
{
    QFETCH(QString, host);
    QFETCH(QByteArray, address);
    Utils::setLocalProxy(0, 0);
    ProxyAddress proxyAddress;
    const QNetworkProxy system(QNetworkProxy::DefaultProxy);
    const QNetworkProxy own(QNetworkProxy::HttpProxy, host, 3128);
    proxyAddress.follow(system); // What is asked for last counts, whatever is answered first.
    proxyAddress.follow(host.isEmpty() ? own : system);
    proxyAddress.follow(host.isEmpty() ? system : own);
    QTRY_VERIFY(isProxy(address, 3128));
    QVERIFY(!isProxy(address, 3129));
    QTest::qWait(50);
    QVERIFY(isProxy(address, 3128));
}

void ProxyAddressTest::forgetsTheProxy()
{
    ProxyAddress proxyAddress;
    for (const char* without : {"", "fd00::1"}) {
        proxyAddress.follow(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("10.1.2.3"), 3128));
        QVERIFY(isProxy("10.1.2.3", 3128));
        proxyAddress.follow(QNetworkProxy(QNetworkProxy::HttpProxy, QLatin1String(without), 3128));
        QVERIFY(!isProxy("10.1.2.3", 3128));
    }
}

REGISTER_TEST(ProxyAddressTest);
#include "ProxyAddressTest.moc"
