// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TlsTrust.h"

#include "base/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

/// Gathers certificates, each one once: a directory of authorities holds most of them several
/// times, as links and in a bundle of all.
class Gathering
{
public:
    void addPath(const QString& path)
    {
        if (!QFileInfo(path).isDir()) {
            addFile(path);
            return;
        }
        const QFileInfoList entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
        for (const QFileInfo& entry : entries) {
            addFile(entry.filePath());
        }
    }

    QList<QSslCertificate> certificates() const { return m_certificates; }

private:
    void addFile(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return;
        }
        const QByteArray text = file.readAll();
        const QByteArray header = QByteArrayLiteral("-----BEGIN CERTIFICATE-----");
        const QByteArray footer = QByteArrayLiteral("-----END CERTIFICATE-----");
        qsizetype start = text.indexOf(header);
        while (start >= 0) {
            const qsizetype last = text.indexOf(footer, start);
            if (last < 0) {
                return; // Cut off.
            }
            const qsizetype end = last + footer.size();
            addCertificate(text.sliced(start, end - start));
            start = text.indexOf(header, end);
        }
    }

    void addCertificate(const QByteArray& pem)
    {
        if (m_known.contains(pem)) {
            return;
        }
        m_known.insert(pem);
        for (const QSslCertificate& certificate : QSslCertificate::fromData(pem, QSsl::Pem)) {
            Log::debug("Added CA certificate: {}", certificate.subjectDisplayName());
            m_certificates.append(certificate);
        }
    }

    QSet<QByteArray> m_known; ///< In PEM form; telling them apart by it saves parsing.
    QList<QSslCertificate> m_certificates;
};

QSslConfiguration makeConfiguration()
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setProtocol(QSsl::SecureProtocols);
    QList<QSslCertificate> authorities = configuration.caCertificates();
    if (authorities.isEmpty()) {
        authorities = TlsTrust::systemCertificates(QStringLiteral("/"));
    }
    configuration.setCaCertificates(authorities + TlsTrust::embeddedCertificates());
    return configuration;
}

} // namespace

const QSslConfiguration& TlsTrust::configuration()
{
    static const QSslConfiguration made = makeConfiguration();
    return made;
}

QList<QSslCertificate> TlsTrust::systemCertificates(const QString& root)
{
    static const QStringList bundles{
        QStringLiteral("etc/pki/tls/certs/ca-bundle.crt"),
        QStringLiteral("etc/ssl/ca-bundle.pem"),
        QStringLiteral("etc/pki/tls/cacert.pem"),
        QStringLiteral("etc/ssl/certs"),
        QStringLiteral("usr/share/ca-certs/.prebuilt-store/"),
        QStringLiteral("etc/pki/ca-trust/extracted/pem/tls-ca-bundle.pem"),
        QStringLiteral("etc/ssl/cert.pem"),
    };
    Gathering gathering;
    for (const QString& bundle : bundles) {
        gathering.addPath(QDir(root).filePath(bundle));
    }
    if (gathering.certificates().isEmpty()) {
        Log::warn("Failed to load any system CA certificates.");
    }
    return gathering.certificates();
}

QList<QSslCertificate> TlsTrust::embeddedCertificates()
{
    static const QStringList resources{
        QStringLiteral(":/ssl/DigiCert_Global_Root_G2.crt"),
        QStringLiteral(":/ssl/DigiCert_Global_Root_CA.crt"),
        QStringLiteral(":/ssl/RapidSSL_TLS_RSA_CA_G1.crt"),
        QStringLiteral(":/ssl/RapidSSLTLSDVRSAMixedSHA2562020CA-1.crt"),
        QStringLiteral(":/ssl/RapidSSLGlobalTLSRSA4096SHA2562022CA1.crt"),
    };
    QList<QSslCertificate> certificates;
    for (const QString& resource : resources) {
        QFile file(resource);
        if (!file.open(QIODevice::ReadOnly)) {
            Log::info("This build carries no certificate {}", resource);
            continue;
        }
        certificates += QSslCertificate::fromDevice(&file, QSsl::Pem);
    }
    return certificates;
}
