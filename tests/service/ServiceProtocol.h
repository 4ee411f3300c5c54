// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ReceivedRequest.h"
#include "service/ServiceArchives.h"
#include "service/ServiceStore.h"
#include "service/ServiceUploads.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// What the service answers. Plain value.
struct ServiceAnswer
{
    int status = 200;
    QJsonObject data = {};
    QString message = {};

    QByteArray json() const;
};

/// Who agrees at once whenever a client asks for an authorisation. Plain value.
struct ServiceAgreement
{
    QString userName;
    QString computer;
};

/// Answers requests as docs/account-protocol.md tells. Knows no connections.
class ServiceProtocol
{
public:
    ServiceProtocol(ServiceStore& store, ServiceUploads& uploads, ServiceArchives& archives);

    /// Where "/<ticket>" takes and gives archives.
    void setArchiveAddress(const QString& address) { m_archiveAddress = address; }

    void setAgreement(const std::optional<ServiceAgreement>& agreement) { m_agreement = agreement; }

    /// What is wrong with the request's data is added to its violations.
    ServiceAnswer answer(ReceivedRequest& request);

private:
    using Handler = ServiceAnswer (ServiceProtocol::*)(const ReceivedRequest&);
    using ComputerHandler = ServiceAnswer (ServiceProtocol::*)(const ReceivedRequest&,
                                                               const ServiceComputer&);

    static const QHash<QString, Handler>& openHandlers();
    static const QHash<QString, ComputerHandler>& computerHandlers();

    ServiceAnswer answerComputer(ReceivedRequest& request);

    ServiceAnswer signIn(const ReceivedRequest& request);
    ServiceAnswer initAuthorization(const ReceivedRequest& request);
    ServiceAnswer checkAuthorization(const ReceivedRequest& request);
    ServiceAnswer testProxy(const ReceivedRequest& request);
    ServiceAnswer keepReport(const ReceivedRequest& request);

    ServiceAnswer zurge(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer accountInfo(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer messages(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer resetToken(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer backupUpload(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer backupDownload(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepProfiles(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepHeatmap(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepApplications(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepSettings(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepComputerInfo(const ReceivedRequest& request, const ServiceComputer& computer);
    ServiceAnswer keepFile(const ReceivedRequest& request, const ServiceComputer& computer);

    QJsonObject fullInfo(const ServiceComputer& computer);

    ServiceStore& m_store;
    ServiceUploads& m_uploads;
    ServiceArchives& m_archives;
    QString m_archiveAddress;
    std::optional<ServiceAgreement> m_agreement;
};
