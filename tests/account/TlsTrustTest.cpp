// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TlsTrust.h"
#include "support/LogCapture.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QSslConfiguration>
#include <QTest>

namespace {

QByteArray pem(const QString& name)
{
    return readFile(QStringLiteral(":/ssl/DigiCert_Global_Root_%1.crt").arg(name));
}

QStringList names(const QList<QSslCertificate>& certificates)
{
    QStringList result;
    for (const QSslCertificate& certificate : certificates) {
        result << certificate.subjectDisplayName();
    }
    return result;
}

const QString RootCa = QStringLiteral("DigiCert Global Root CA");
const QString RootG2 = QStringLiteral("DigiCert Global Root G2");

} // namespace

class TlsTrustTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void carriesTheRoots();
    void gathersTheSystems();
    void saysWhereThereAreNone();
};

void TlsTrustTest::carriesTheRoots()
{
    const QSslConfiguration& first = TlsTrust::configuration();
    QCOMPARE(&TlsTrust::configuration(), &first);
    QCOMPARE(first.protocol(), QSsl::SecureProtocols);
    QVERIFY(first.caCertificates().size() > 2);
    QCOMPARE(names(first.caCertificates().last(2)), (QStringList{RootG2, RootCa}));
    // What all connections share was perhaps made before the log is looked at.
    const LogCapture log;
    QCOMPARE(TlsTrust::embeddedCertificates().size(), 2);
    QCOMPARE(log.count(QStringLiteral("This build carries no certificate :/ssl/RapidSSL")), 3);
}

void TlsTrustTest::gathersTheSystems()
{
    const LogCapture log(Log::Level::Debug);
    const QTemporaryDir root;
    const QDir directory(root.path());
    QVERIFY(directory.mkpath(QStringLiteral("etc/pki/tls")));
    QVERIFY(directory.mkpath(QStringLiteral("etc/ssl/certs/below")));
    // A name early in the list that cannot be opened, then a directory as Debian fills it.
    QVERIFY(QFile::link(root.filePath(QStringLiteral("gone")),
                        root.filePath(QStringLiteral("etc/pki/tls/cacert.pem"))));
    const QString certs = root.filePath(QStringLiteral("etc/ssl/certs/"));
    QVERIFY(writeFile(certs + QStringLiteral("b.pem"), pem(QStringLiteral("CA"))));
    QVERIFY(QFile::link(certs + QStringLiteral("b.pem"), certs + QStringLiteral("1234.0")));
    QVERIFY(writeFile(certs + QStringLiteral("all.crt"),
                      "# text\n-----END CERTIFICATE-----\n-----BEGIN CERTIFICATE-----\nAAAA\n"
                      "-----END CERTIFICATE-----\n" +
                          pem(QStringLiteral("CA")) + pem(QStringLiteral("G2")) +
                          "-----BEGIN CERTIFICATE-----\nMII"));
    // Nothing but a beginning, as far in as an end is long.
    QVERIFY(writeFile(certs + QStringLiteral("cut.pem"),
                      QByteArray(24, '\n') + "-----BEGIN CERTIFICATE-----\nMII"));
    QCOMPARE(names(TlsTrust::systemCertificates(root.path())), (QStringList{RootCa, RootG2}));
    QCOMPARE(log.count(QStringLiteral("Added CA certificate: ")), 2);
}

void TlsTrustTest::saysWhereThereAreNone()
{
    const LogCapture log;
    const QTemporaryDir root;
    QVERIFY(TlsTrust::systemCertificates(root.path()).isEmpty());
    QVERIFY(log.contains(QStringLiteral("Failed to load any system CA certificates.")));
}

REGISTER_TEST(TlsTrustTest);
#include "TlsTrustTest.moc"
