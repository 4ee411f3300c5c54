// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/FaultyDelivery.h"
#include "service/HttpListener.h"
#include "service/ServiceArchives.h"
#include "service/ServiceCertificates.h"
#include "service/ServiceDatabase.h"
#include "service/ServiceFaults.h"
#include "service/ServiceProtocol.h"
#include "service/ServiceStore.h"
#include "service/ServiceUploads.h"

#include <QList>
#include <QStringList>

/// What one request to the API address came to. Plain value.
struct ServedRequest
{
    ReceivedRequest request; ///< Without the content of a file.
    Fault fault;
    int status = 0; ///< Of the answer; 0: the request was not acted upon.
};

/// An account service on the loopback address, which a test starts in its own process: it needs no
/// thread, only a turning event loop. It keeps everything in "service.db" and serves the files of
/// "release/", both in its directory. Bodies are held in memory several times over, so that
/// archives of some 100 MiB are the most that it is good for.
class AccountService
{
public:
    enum class Transport
    {
        Tls,
        Plain,
    };

    explicit AccountService(const QString& directory, Transport transport = Transport::Tls);

    /// Listens on the port, or on a free one for 0. False where it could not.
    bool start(quint16 port = 0);
    void stop();   ///< Connections are refused.
    bool resume(); ///< After `stop`, on the same port.

    QString apiUrl() const { return websiteUrl() + QStringLiteral("/api"); }

    QString websiteUrl() const;

    QString releaseUrl() const { return websiteUrl() + QStringLiteral("/release"); }

    QString databasePath() const { return m_database.path(); } ///< SQLite.

    const QSslCertificate& authority() const { return m_certificates.authority; }

    ServiceDatabase& database() { return m_database; }

    ServiceStore& store() { return m_store; }

    ServiceProtocol& protocol() { return m_protocol; }

    ServiceFaults& faults() { return m_faults; }

    void setReleaseFile(const QString& name, const QByteArray& content);

    const QList<ServedRequest>& requests() const { return m_requests; }

    QStringList requestTypes() const; ///< In the order of their coming.
    QStringList violations() const;   ///< Of all requests, each after its request type.
    void forgetRequests();

private:
    void handle(const HttpRequest& request, QTcpSocket& socket);
    void handleApi(const HttpRequest& request, QTcpSocket& socket);
    void handlePage(const HttpRequest& request, QTcpSocket& socket);
    void handleArchive(const HttpRequest& request, QTcpSocket& socket);
    void handleRelease(const HttpRequest& request, QTcpSocket& socket);
    HttpAnswer archiveAnswer(const HttpRequest& request);

    Transport m_transport;
    QString m_releaseDirectory;
    ServiceCertificates m_certificates;
    ServiceDatabase m_database;
    ServiceStore m_store;
    ServiceUploads m_uploads;
    ServiceArchives m_archives;
    ServiceProtocol m_protocol;
    ServiceFaults m_faults;
    HttpListener m_listener;
    quint16 m_port = 0;
    QList<ServedRequest> m_requests;
};
