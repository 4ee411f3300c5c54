// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ProxySettings.h"
#include "support/TestRegistry.h"

#include <QNetworkProxy>
#include <QNetworkProxyFactory>
#include <QTest>

class ProxySettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesTheProxy_data();
    void choosesTheProxy();
    void logsInOnlyWhereAsked();
    void changesBackAndForth();
};

void ProxySettingsTest::choosesTheProxy_data()
{
    QTest::addColumn<ProxySettings>("settings");
    QTest::addColumn<QNetworkProxy::ProxyType>("type");
    const QString host = QStringLiteral("proxy.example");
    const auto own = [](const QString& name, int port) {
        return ProxySettings{.useOwn = true, .hostName = name, .port = port};
    };
    ProxySettings ownAlone = own(host, 8080);
    ownAlone.useSystem = false;
    QTest::newRow("nothing set") << ProxySettings() << QNetworkProxy::DefaultProxy;
    QTest::newRow("none") << ProxySettings{.useSystem = false, .hostName = host, .port = 8080}
                          << QNetworkProxy::NoProxy;
    QTest::newRow("own") << ownAlone << QNetworkProxy::HttpProxy;
    QTest::newRow("own before the system's") << own(host, 8080) << QNetworkProxy::HttpProxy;
    QTest::newRow("largest port") << own(host, 65535) << QNetworkProxy::HttpProxy;
    QTest::newRow("port too large") << own(host, 65536) << QNetworkProxy::NoProxy;
    QTest::newRow("no port") << own(host, 0) << QNetworkProxy::NoProxy;
    QTest::newRow("no host") << own(QString(), 8080) << QNetworkProxy::NoProxy;
}

void ProxySettingsTest::choosesTheProxy()
{
    QFETCH(ProxySettings, settings);
    QTEST(settings.proxy().type(), "type");
    if (settings.proxy().type() == QNetworkProxy::HttpProxy) {
        QCOMPARE(settings.proxy().hostName(), settings.hostName);
        QCOMPARE(int{settings.proxy().port()}, settings.port);
    }
}

void ProxySettingsTest::logsInOnlyWhereAsked()
{
    ProxySettings settings{.useOwn = true,
                           .hostName = QStringLiteral("proxy.example"),
                           .port = 8080,
                           .user = QStringLiteral("me"),
                           .password = QStringLiteral("secret")};
    QCOMPARE(settings.proxy().user(), QString());
    settings.logIn = true;
    QCOMPARE(settings.proxy().user(), QStringLiteral("me"));
    QCOMPARE(settings.proxy().password(), QStringLiteral("secret"));
}

void ProxySettingsTest::changesBackAndForth()
{
    const QNetworkProxy own(QNetworkProxy::HttpProxy, QStringLiteral("proxy.example"), 8080);
    const auto inForce = [] {
        const QNetworkProxyQuery query(QUrl(QStringLiteral("https://tallyvane.example/")));
        return QNetworkProxyFactory::proxyForQuery(query).constFirst();
    };
    qputenv("https_proxy", "http://system.example:3128");
    applyNetworkProxy(QNetworkProxy(QNetworkProxy::DefaultProxy));
    QCOMPARE(inForce().hostName(), QStringLiteral("system.example"));
    applyNetworkProxy(own);
    QCOMPARE(inForce().hostName(), own.hostName());
    applyNetworkProxy(QNetworkProxy(QNetworkProxy::DefaultProxy));
    QCOMPARE(inForce().hostName(), QStringLiteral("system.example"));
    applyNetworkProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    QCOMPARE(inForce().type(), QNetworkProxy::NoProxy);
    qunsetenv("https_proxy");
}

REGISTER_TEST(ProxySettingsTest);
#include "ProxySettingsTest.moc"
