// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ServiceAddresses.h"
#include "storage/SettingsKeys.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

class ServiceAddressesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesTheAddress_data();
    void choosesTheAddress();
};

void ServiceAddressesTest::choosesTheAddress_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("website"); // "": the build's own.
    const QString mine = QStringLiteral("http://127.0.0.1:8080");
    const QString set = QStringLiteral("https://set.example/site");
    QTest::newRow("nothing said") << ""
                                  << ""
                                  << "";
    QTest::newRow("environment first") << mine << set << mine;
    QTest::newRow("setting") << "" << set << set;
    QTest::newRow("slashes at the end") << "" << set + QStringLiteral("//") << set;
    QTest::newRow("no address in the environment") << "127.0.0.1:8080" << set << set;
    QTest::newRow("no host") << "https:///site"
                             << ""
                             << "";
    QTest::newRow("another scheme") << "ftp://127.0.0.1"
                                    << "file:///etc"
                                    << "";
}

void ServiceAddressesTest::choosesTheAddress()
{
    QFETCH(QString, environment);
    QFETCH(QString, setting);
    QFETCH(QString, website);
    const TestDatabase database;
    Settings& settings = Settings::instance();
    QProcessEnvironment variables;
    const ServiceAddresses builtIn = ServiceAddresses::from(settings, variables);
    QVERIFY(builtIn.website.host().endsWith(QStringLiteral("tallyvane.example")));
    variables.insert(QStringLiteral("TALLYVANE_WEBSITE_URL"), environment);
    settings.setValue(SettingsKeys::ServiceWebsiteUrl, setting);
    const ServiceAddresses addresses = ServiceAddresses::from(settings, variables);
    QCOMPARE(addresses.website.toString(),
             website.isEmpty() ? builtIn.website.toString() : website);
    QCOMPARE(addresses.api, builtIn.api);
    QCOMPARE(addresses.release, builtIn.release);
}

REGISTER_TEST(ServiceAddressesTest);
#include "ServiceAddressesTest.moc"
