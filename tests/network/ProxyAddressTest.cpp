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
    static bool isProxy(const QString& address, unsigned int port)
    {
        return !Utils::GeoIP_is_private_ipnum_v4(QHostAddress(address).toIPv4Address(), port);
    }

    const QString m_address = QStringLiteral("10.1.2.3");
};

void ProxyAddressTest::knowsTheProxy_data()
{
    QTest::addColumn<QString>("host"); ///< Empty: as the system says.
    QTest::addColumn<QString>("address");
    QTest::newRow("address") << m_address << m_address;
    QTest::newRow("name") << QStringLiteral("localhost") << QStringLiteral("127.0.0.1");
    QTest::newRow("system") << QString() << QStringLiteral("192.168.7.8");
}

void ProxyAddressTest::knowsTheProxy()
{
    QFETCH(QString, host);
    QFETCH(QString, address);
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
        proxyAddress.follow(QNetworkProxy(QNetworkProxy::HttpProxy, m_address, 3128));
        QVERIFY(isProxy(m_address, 3128));
        proxyAddress.follow(QNetworkProxy(QNetworkProxy::HttpProxy, QLatin1String(without), 3128));
        QVERIFY(!isProxy(m_address, 3128));
    }
}

REGISTER_TEST(ProxyAddressTest);
#include "ProxyAddressTest.moc"
