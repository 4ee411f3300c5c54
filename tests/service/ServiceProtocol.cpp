// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceProtocol.h"

#include "service/RequestShapes.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

const QLatin1String TypeUpload("type_upload");

ServiceAnswer refusal(int status, const QString& message)
{
    return {.status = status, .message = message};
}

/// False where the data is of no use.
bool checkData(ReceivedRequest& request)
{
    ShapeFindings findings =
        checkShape(request.type(), request.envelope.value(QLatin1String("data")));
    if ((request.type() == QLatin1String("upload_file")) != request.file.has_value()) {
        findings.faults << QStringLiteral("a file came where none belongs, or none where one does");
    }
    request.violations << findings.faults << findings.unknown;
    return findings.faults.isEmpty();
}

/// The field `ci` says who asks; it has to be who the client token says.
void checkAccount(ReceivedRequest& request, const ServiceComputer& computer)
{
    const QJsonObject expected{{QStringLiteral("user_id"), QString::number(computer.accountId)},
                               {QStringLiteral("computer_id"), QString::number(computer.id)},
                               {QStringLiteral("password_hash"), computer.passwordHash}};
    if (!request.file && request.account != expected) {
        request.violations << QStringLiteral("ci is absent, or names another computer");
    }
}

ServiceCounts zurgeCounts(const QJsonObject& data)
{
    // In the order of the counters.
    static const std::array<QLatin1String, ServiceCounterNames.size()> fields{
        QLatin1String("keycount"),       QLatin1String("clickcount"), QLatin1String("download"),
        QLatin1String("upload"),         QLatin1String("uptime"),     QLatin1String("scrolls"),
        QLatin1String("distance_inches")};
    ServiceCounts counts{};
    std::transform(fields.begin(), fields.end(), counts.begin(), [&data](QLatin1String field) {
        return data.value(field).toString().toLongLong();
    });
    return counts;
}

} // namespace

QByteArray ServiceAnswer::json() const
{
    QJsonObject answer{{QStringLiteral("status"), status}, {QStringLiteral("data"), data}};
    if (!message.isEmpty()) {
        answer.insert(QStringLiteral("message"), message);
    }
    return QJsonDocument(answer).toJson(QJsonDocument::Compact);
}

ServiceProtocol::ServiceProtocol(ServiceStore& store, ServiceUploads& uploads,
                                 ServiceArchives& archives)
    : m_store(store)
    , m_uploads(uploads)
    , m_archives(archives)
{
}

const QHash<QString, ServiceProtocol::Handler>& ServiceProtocol::openHandlers()
{
    using Self = ServiceProtocol;
    static const QHash<QString, Handler> handlers{
        {QStringLiteral("client_login"), &Self::signIn},
        {QStringLiteral("client_init_authorization"), &Self::initAuthorization},
        {QStringLiteral("client_check_authorization"), &Self::checkAuthorization},
        {QStringLiteral("testproxy"), &Self::testProxy},
        {QStringLiteral("update_request"), &Self::keepReport},
        {QStringLiteral("upload_usage_stats"), &Self::keepReport},
    };
    return handlers;
}

const QHash<QString, ServiceProtocol::ComputerHandler>& ServiceProtocol::computerHandlers()
{
    using Self = ServiceProtocol;
    static const QHash<QString, ComputerHandler> handlers = [] {
        QHash<QString, ComputerHandler> all{
            {QStringLiteral("zurge"), &Self::zurge},
            {QStringLiteral("refresh_account_info"), &Self::accountInfo},
            {QStringLiteral("get_pending_messages"), &Self::messages},
            {QStringLiteral("reset_token"), &Self::resetToken},
            {QStringLiteral("get_db_backup_upload_url"), &Self::backupUpload},
            {QStringLiteral("get_db_backup_download_url"), &Self::backupDownload},
            {QStringLiteral("sync_client_profiles"), &Self::keepProfiles},
            {QStringLiteral("upload_applications"), &Self::keepApplications},
            {QStringLiteral("save_client_settings"), &Self::keepSettings},
            {QStringLiteral("upload_computerinfo"), &Self::keepComputerInfo},
            {QStringLiteral("upload_file"), &Self::keepFile},
        };
        for (const HeatmapKind& kind : heatmapKinds()) {
            all.insert(kind.requestType, &Self::keepHeatmap);
        }
        return all;
    }();
    return handlers;
}

ServiceAnswer ServiceProtocol::answer(ReceivedRequest& request)
{
    const Handler handler = openHandlers().value(request.type());
    if (handler == nullptr && computerHandlers().contains(request.type())) {
        return answerComputer(request);
    }
    return checkData(request) ? (this->*handler)(request)
                              : refusal(501, QStringLiteral("Missing input"));
}

ServiceAnswer ServiceProtocol::answerComputer(ReceivedRequest& request)
{
    const auto computer = m_store.clientTokenOwner(request.clientToken());
    if (!computer) {
        return refusal(600, QStringLiteral("No such client token"));
    }
    checkAccount(request, *computer);
    if (computer->archived) {
        return refusal(900, QStringLiteral("This computer is archived"));
    }
    if (!checkData(request)) {
        return refusal(501, QStringLiteral("Missing input"));
    }
    return (this->*computerHandlers().value(request.type()))(request, *computer);
}

ServiceAnswer ServiceProtocol::signIn(const ReceivedRequest& request)
{
    const QJsonObject data = request.data();
    const auto computer = m_store.computer(data.value(QLatin1String("userid")).toInteger(),
                                           data.value(QLatin1String("computerid")).toInteger());
    if (!computer) {
        return refusal(300, QStringLiteral("No such computer"));
    }
    if (!computer->activated) {
        ServiceAnswer pending = refusal(300, QStringLiteral("Pending activation"));
        pending.data.insert(QStringLiteral("pending_user"), true);
        return pending;
    }
    if (data.value(QLatin1String("passwordhash")).toString() != computer->passwordHash) {
        return refusal(301, QStringLiteral("Wrong password"));
    }
    return {.data = {{QStringLiteral("client_token"), m_store.newClientToken(*computer)}}};
}

ServiceAnswer ServiceProtocol::initAuthorization(const ReceivedRequest& request)
{
    const QJsonObject data = request.data();
    if (!data.value(QLatin1String("organization_id")).toString().isEmpty()) {
        return refusal(308, QStringLiteral("There are no organisations here"));
    }
    const QString clientUid = data.value(QLatin1String("client_uid")).toString();
    m_store.expectClient(clientUid);
    if (m_agreement) {
        const qint64 account = m_store.account(m_agreement->userName);
        m_store.agree(clientUid, m_store.computerNamed(account, m_agreement->computer));
    }
    return {};
}

ServiceAnswer ServiceProtocol::checkAuthorization(const ReceivedRequest& request)
{
    const QString clientUid = request.data().value(QLatin1String("client_uid")).toString();
    if (!m_store.isExpected(clientUid)) {
        return refusal(300, QStringLiteral("Nobody expects this client"));
    }
    const auto computer = m_store.authorizedComputer(clientUid);
    if (!computer) {
        return {};
    }
    QJsonObject data = fullInfo(*computer);
    data.insert(QStringLiteral("userid"), computer->accountId);
    data.insert(QStringLiteral("computerid"), computer->id);
    data.insert(QStringLiteral("passwordhash"), computer->passwordHash);
    data.insert(QStringLiteral("client_settings"), m_uploads.clientSettings(computer->accountId));
    const QJsonObject stats = m_store.computerStats(*computer);
    if (!stats.isEmpty()) {
        data.insert(QStringLiteral("computer_stats"), stats);
    }
    return {.data = data};
}

ServiceAnswer ServiceProtocol::testProxy(const ReceivedRequest&)
{
    return {};
}

ServiceAnswer ServiceProtocol::keepReport(const ReceivedRequest& request)
{
    m_uploads.keepReport(request.type(), request.data());
    return {};
}

ServiceAnswer ServiceProtocol::zurge(const ReceivedRequest& request,
                                     const ServiceComputer& computer)
{
    const QJsonObject data = request.data();
    const ServiceZurge zurge{.token = data.value(QLatin1String("token")).toString(),
                             .mechanism = data.value(QLatin1String("zurge_mechanism")).toString(),
                             .counts = zurgeCounts(data),
                             .applications = data.value(QLatin1String("applications")).toArray(),
                             .timeSeries = data.value(QLatin1String("time_series")).toObject()};
    const auto token = m_store.takeZurge(computer.id, zurge);
    if (!token) {
        return refusal(303, QStringLiteral("Wrong token"));
    }
    return {
        .data = {{QStringLiteral("token"), *token},
                 {QStringLiteral("new_totals"), m_store.totals(computer.accountId)},
                 {QStringLiteral("new_ranks"), m_store.ranks(computer.accountId)},
                 {QStringLiteral("has_computer_info"), m_uploads.hasComputerInfo(computer.id)}}};
}

QJsonObject ServiceProtocol::fullInfo(const ServiceComputer& computer)
{
    QJsonObject info = m_store.accountInfo(computer);
    info.insert(QStringLiteral("database_backups"), m_archives.list(computer.accountId));
    return info;
}

ServiceAnswer ServiceProtocol::accountInfo(const ReceivedRequest&, const ServiceComputer& computer)
{
    return {.data = fullInfo(computer)};
}

ServiceAnswer ServiceProtocol::messages(const ReceivedRequest&, const ServiceComputer& computer)
{
    return {.data = {{QStringLiteral("messages"), m_store.messages(computer.accountId)}}};
}

ServiceAnswer ServiceProtocol::resetToken(const ReceivedRequest& request, const ServiceComputer&)
{
    m_store.forgetClientToken(request.clientToken());
    return {};
}

ServiceAnswer ServiceProtocol::backupUpload(const ReceivedRequest&, const ServiceComputer& computer)
{
    const QString ticket = m_archives.ticketToPut(computer.accountId);
    return {.data = {{QStringLiteral("url"), m_archiveAddress + QLatin1Char('/') + ticket}}};
}

ServiceAnswer ServiceProtocol::backupDownload(const ReceivedRequest& request,
                                              const ServiceComputer& computer)
{
    const auto ticket = m_archives.ticketToGet(
        computer.accountId, request.data().value(QLatin1String("filename")).toString());
    if (!ticket) {
        return refusal(501, QStringLiteral("No such backup"));
    }
    return {.data = {{QStringLiteral("url"), m_archiveAddress + QLatin1Char('/') + *ticket}}};
}

ServiceAnswer ServiceProtocol::keepProfiles(const ReceivedRequest& request,
                                            const ServiceComputer& computer)
{
    m_uploads.keepProfiles(computer.id, request.data().value(QLatin1String("profiles")).toArray());
    return {};
}

ServiceAnswer ServiceProtocol::keepHeatmap(const ReceivedRequest& request,
                                           const ServiceComputer& computer)
{
    const QList<HeatmapKind>& kinds = heatmapKinds();
    const auto kind =
        std::find_if(kinds.begin(), kinds.end(), [&request](const HeatmapKind& candidate) {
            return candidate.requestType == request.type();
        });
    m_uploads.keepHeatmap(computer.id, *kind, request.data().value(kind->field).toObject());
    return {};
}

ServiceAnswer ServiceProtocol::keepApplications(const ReceivedRequest& request,
                                                const ServiceComputer&)
{
    QJsonArray answer;
    for (const QJsonValue application :
         request.data().value(QLatin1String("applications")).toArray()) {
        answer.append(
            QJsonObject{{QStringLiteral("app_id"), m_uploads.applicationId(application.toObject())},
                        {QStringLiteral("canonical_path"), application[QLatin1String("path")]}});
    }
    return {.data = {{QStringLiteral("applications"), answer}}};
}

ServiceAnswer ServiceProtocol::keepSettings(const ReceivedRequest& request,
                                            const ServiceComputer& computer)
{
    m_uploads.keepClientSettings(computer.id,
                                 request.data().value(QLatin1String("client_settings")).toObject());
    return {};
}

ServiceAnswer ServiceProtocol::keepComputerInfo(const ReceivedRequest& request,
                                                const ServiceComputer& computer)
{
    m_uploads.keepComputerInfo(computer.id,
                               request.data().value(QLatin1String("computer_info")).toObject());
    return {};
}

ServiceAnswer ServiceProtocol::keepFile(const ReceivedRequest& request,
                                        const ServiceComputer& computer)
{
    m_uploads.keepFile(computer.id, request.data().value(TypeUpload).toString(), request.file->name,
                       request.file->content);
    return {};
}
