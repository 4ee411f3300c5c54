// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ClientCommunication.h"

#include "account/AnswerFields.h"
#include "account/RequestData.h"
#include "account/RequestEnvelope.h"
#include "account/RequestTypes.h"
#include "account/tHTTP.h"
#include "base/Log.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

#include <utility>

namespace {

constexpr int MostReLogins = 2;

ClientCommunication* s_instance = nullptr;

} // namespace

ClientCommunication::ClientCommunication(QObject* parent, MonotonicClock clock)
    : QObject(parent)
    , m_clock(std::move(clock))
{
    s_instance = this;
}

ClientCommunication::~ClientCommunication()
{
    s_instance = nullptr;
}

ClientCommunication* ClientCommunication::instance()
{
    return s_instance;
}

void ClientCommunication::setClientURL(const QString& url)
{
    m_clientUrl = url;
}

void ClientCommunication::setEmail(const QString& email)
{
    m_identity.email = email;
}

void ClientCommunication::setUserID(qint64 userId)
{
    m_identity.userId = userId;
    invalidateClientToken();
}

void ClientCommunication::setComputerID(qint64 computerId)
{
    m_identity.computerId = computerId;
    invalidateClientToken();
}

void ClientCommunication::setPasswordHash(const QString& passwordHash)
{
    m_identity.passwordHash = passwordHash;
    invalidateClientToken();
}

void ClientCommunication::setIdentity(const AccountIdentity& identity)
{
    m_identity = identity;
    invalidateClientToken();
}

void ClientCommunication::invalidateClientToken()
{
    m_token.clear();
}

bool ClientCommunication::clientRequest(const QString& requestType, const Map& inputData,
                                        const QMap<QString, QString>& postData, bool automatic,
                                        bool needAuthentication)
{
    return accept({{requestType, inputData, postData, automatic, needAuthentication}, {}});
}

bool ClientCommunication::accept(Pending pending)
{
    const QString type = pending.request.requestType;
    if (!refusal(type).isEmpty()) {
        return false;
    }
    abandonStale();
    pending.account = m_identity;
    m_queue.append(std::move(pending));
    if (m_stage != Stage::Idle || m_queue.size() > 1) {
        Log::info("Communication request queued: {}", type);
    }
    processNextInQueue();
    return true;
}

/// Whether the current request is about an account, or a computer of it, that is signed out by now.
/// It must not speak for the one that is signed in, nor its answer be taken for that one's.
bool ClientCommunication::isForEarlierAccount() const
{
    return !RequestTypes::needsNoAccount(m_current.request.requestType) &&
           !m_current.account.isSameComputer(m_identity);
}

/// Why a request of this type may not go out as things are, logged; empty where it may.
QString ClientCommunication::refusal(const QString& requestType) const
{
    if (RequestTypes::needsNoAccount(requestType)) {
        return {};
    }
    if (!m_identity.isSignedIn()) {
        Log::info("Trying to do request ({}) while user is not logged in yet, blocking.",
                  requestType);
        return tr("No account is signed in on this computer.");
    }
    if (Settings::instance().value(SettingsKeys::WorkOffline)) {
        Log::info("Trying to do request ({}) while working offline, blocking.", requestType);
        return tr("The setting \"Work Offline\" is enabled. This prevents the client from going "
                  "online.");
    }
    return {};
}

void ClientCommunication::abandonStale()
{
    const bool waits = m_stage == Stage::SigningIn || m_stage == Stage::Requesting;
    if (waits && m_clock() - m_exchangeBegun > LongestExchangeMs) {
        drop();
    }
}

void ClientCommunication::processNextInQueue()
{
    if (m_stage == Stage::Idle && !m_queue.isEmpty()) {
        m_current = m_queue.takeFirst();
        startCurrent();
    }
}

void ClientCommunication::startCurrent()
{
    // It may have waited while the user signed out or went offline.
    if (isForEarlierAccount()) {
        endLater(tr("The account that this was meant for is not signed in any more."));
    } else if (const QString reason = refusal(m_current.request.requestType); !reason.isEmpty()) {
        endLater(reason);
    } else if (needsSignIn()) {
        clientLogin();
    } else {
        sendCurrent();
    }
}

bool ClientCommunication::needsSignIn() const
{
    const Request& request = m_current.request;
    const bool authenticate = !RequestTypes::needsNoAccount(request.requestType) ||
                              (request.needAuthentication && m_identity.isSignedIn());
    return authenticate && (m_token.isEmpty() || m_clock() - m_tokenTime > LongestTokenAgeMs);
}

void ClientCommunication::clientLogin()
{
    m_signingIn = m_identity;
    openExchange(Stage::SigningIn);
    if (const auto envelope = RequestEnvelope::signInText(m_identity)) {
        m_http->request(*envelope);
    } else {
        endLater(tr("The request could not be written."));
    }
}

void ClientCommunication::clientReLogin()
{
    invalidateClientToken();
    const QString message =
        ResultCodes::ofRequest(m_current.request.requestType, ResultCodes::TokenLost).message;
    if (m_reLogins >= MostReLogins) {
        Log::warn("Lost token 2 times in a row, assume server issues and back off.");
        m_reLogins = 1;
        end(ResultCodes::TokenLost, {}, message);
    } else if (!m_identity.isSignedIn()) {
        end(ResultCodes::TokenLost, {}, message);
    } else {
        Log::info("Server lost client token, we need to login again.");
        ++m_reLogins;
        clientLogin();
    }
}

void ClientCommunication::sendCurrent()
{
    openExchange(Stage::Requesting);
    const Request& request = m_current.request;
    for (auto it = request.postData.cbegin(); it != request.postData.cend(); ++it) {
        m_http->addPostVar(it.key(), it.value());
    }
    const auto envelope = RequestEnvelope::text(request.requestType, m_token, request.inputData);
    if (!envelope) {
        endLater(tr("The request could not be written."));
    } else if (m_current.filePath.isEmpty()) {
        m_http->request(*envelope);
    } else {
        m_http->uploadFile(*envelope, m_current.filePath);
    }
}

void ClientCommunication::openExchange(Stage stage)
{
    closeExchange();
    m_stage = stage;
    m_exchangeBegun = m_clock();
    m_http = new tHTTP(m_clientUrl, this);
    connect(m_http, &tHTTP::response, this, &ClientCommunication::checkHTTPResponse);
    connect(m_http, &tHTTP::errorOccurred, this, &ClientCommunication::checkHTTPError);
    connect(m_http, &tHTTP::uploadProgress, this, &ClientCommunication::uploadProgress);
}

/// An answer that comes later is not heard.
void ClientCommunication::closeExchange()
{
    if (m_http != nullptr) {
        m_http->disconnect(this);
        std::exchange(m_http, nullptr)->deleteLater();
    }
}

void ClientCommunication::checkHTTPResponse(const Map& answer)
{
    const QString& type = m_current.request.requestType;
    const std::optional<qint64> status =
        AnswerFields::wholeNumber(answer.value(QStringLiteral("status")));
    const Map data = AnswerFields::object(answer.value(QStringLiteral("data")));
    Log::debug("Answer to {}: {}; data: {}",
               m_stage == Stage::SigningIn ? RequestTypes::ClientLogin : type,
               RequestEnvelope::forLog(answer), RequestEnvelope::forLog(data));
    if (isForEarlierAccount()) {
        startCurrent(); // Which ends it.
    } else if (!status || !std::in_range<int>(*status)) {
        checkHTTPError(
            tr("Error while talking to website: %1").arg(tr("its answer has no status")));
    } else if (m_stage == Stage::SigningIn) {
        signInAnswered(static_cast<int>(*status), data);
    } else {
        conclude(ResultCodes::ofRequest(type, static_cast<int>(*status)), data);
    }
}

void ClientCommunication::checkHTTPError(const QString& text)
{
    Log::error("Error while talking to the website: {}", text);
    logOriginalRequest();
    end(0, {}, text);
}

void ClientCommunication::signInAnswered(int status, const Map& data)
{
    if (m_signingIn != m_identity) {
        startCurrent(); // Another account, or none, by now.
        return;
    }
    const RequestResult result = ResultCodes::ofSignIn(status, data);
    if (result.outcome == Outcome::Success) {
        takeToken(AnswerFields::text(data.value(QStringLiteral("client_token"))));
    } else {
        conclude(result, data);
    }
}

void ClientCommunication::takeToken(const QString& token)
{
    if (token.isEmpty()) {
        Log::warn("Server didn't return client token. Trying login again.");
        clientReLogin();
        return;
    }
    m_token = token;
    m_tokenTime = m_clock();
    Log::info("Client Login success!");
    Log::info("Moving on to actual request: {}", m_current.request.requestType);
    sendCurrent();
}

/// Ends the current request, unless the token was lost. A sign-in that succeeds does not come here,
/// and so does not take the re-login counter back: a service that hands out tokens and never takes
/// them would be signed in to for ever.
void ClientCommunication::conclude(const RequestResult& result, const Map& data)
{
    if (result.outcome != Outcome::TokenLost) {
        m_reLogins = 0;
    }
    switch (result.outcome) {
    case Outcome::TokenLost:
        clientReLogin();
        break;
    case Outcome::Archived:
        archive(result, data);
        break;
    case Outcome::Unknown:
        Log::warn("The website answered the request {} with the unknown status {}",
                  m_current.request.requestType, result.status);
        drop();
        processNextInQueue();
        break;
    case Outcome::Success:
    case Outcome::Failure:
        if (result.status == ResultCodes::ServerError ||
            result.status == ResultCodes::MissingInput) {
            Log::error("Got error 500 back!");
            logOriginalRequest();
        }
        end(result.status, data, result.message);
        break;
    }
}

void ClientCommunication::logOriginalRequest() const
{
    Log::error("Original request: {}", m_current.request.requestType);
    Log::error("with input data: {}", RequestEnvelope::forLog(m_current.request.inputData));
}

void ClientCommunication::archive(const RequestResult& result, const Map& data)
{
    closeExchange();
    m_stage = Stage::Ending;
    Settings::instance().setValue(SettingsKeys::WorkOffline, true);
    Q_EMIT computerArchived();
    end(result.status, data, result.message);
}

void ClientCommunication::end(int status, const Map& data, const QString& message)
{
    closeExchange();
    m_stage = Stage::Idle;
    const QString type = std::exchange(m_current, {}).request.requestType;
    if (type == RequestTypes::ResetToken) {
        invalidateClientToken();
    }
    // Who is told may ask again at once; the queue keeps the order.
    Q_EMIT requestDone(type, status, data, message);
    processNextInQueue();
}

/// Ends the current request, which was not sent. Not at once: its requester must not hear of it
/// before `clientRequest` has returned.
void ClientCommunication::endLater(const QString& message)
{
    closeExchange();
    m_stage = Stage::Ending;
    QMetaObject::invokeMethod(
        this, [this, message] { end(0, {}, message); }, Qt::QueuedConnection);
}

/// Ends the current request without a word to the user.
void ClientCommunication::drop()
{
    closeExchange();
    m_stage = Stage::Idle;
    Q_EMIT requestDropped(std::exchange(m_current, {}).request.requestType);
}

bool ClientCommunication::request(const QString& requestType, const Map& inputData)
{
    return clientRequest(requestType, inputData, {}, false,
                         !RequestTypes::needsNoAccount(requestType));
}

bool ClientCommunication::initClientAuthorization(const QString& clientUid,
                                                  const QString& organizationId)
{
    return request(RequestTypes::InitAuthorization,
                   RequestData::authorization(clientUid, organizationId));
}

bool ClientCommunication::checkClientAuthorization(const QString& clientUid,
                                                   const QString& organizationId)
{
    return request(RequestTypes::CheckAuthorization,
                   RequestData::authorization(clientUid, organizationId));
}

bool ClientCommunication::doZurge(const ZurgeRequest& zurge)
{
    return clientRequest(RequestTypes::Zurge, RequestData::zurge(zurge), {}, zurge.automatic, true);
}

bool ClientCommunication::getPendingMessagesFromWebsite()
{
    return request(RequestTypes::PendingMessages);
}

bool ClientCommunication::resetToken()
{
    return request(RequestTypes::ResetToken);
}

bool ClientCommunication::refreshAccountInfo()
{
    return request(RequestTypes::RefreshAccountInfo);
}

bool ClientCommunication::testProxy()
{
    return request(RequestTypes::TestProxy);
}

bool ClientCommunication::getDatabaseBackupUploadURL()
{
    return request(RequestTypes::BackupUploadUrl);
}

bool ClientCommunication::getDatabaseBackupDownloadURL(const QString& fileName)
{
    return request(RequestTypes::BackupDownloadUrl, {{QStringLiteral("filename"), fileName}});
}

bool ClientCommunication::logUpdateRequest(const QString& targetVersion)
{
    return request(RequestTypes::UpdateRequest, RequestData::update(m_identity, targetVersion));
}

bool ClientCommunication::syncClientProfiles(const QVariantList& profiles)
{
    return request(RequestTypes::SyncProfiles, {{QStringLiteral("profiles"), profiles}});
}

bool ClientCommunication::uploadKeyboardHeatmap(const Map& heatmap)
{
    return request(RequestTypes::HeatmapKeyboard, {{QStringLiteral("keyboard_heatmap"), heatmap}});
}

bool ClientCommunication::uploadKeyboardHeatmapApps(const Map& heatmap)
{
    return request(RequestTypes::HeatmapKeyboardApps,
                   {{QStringLiteral("keyboard_heatmap_apps"), heatmap}});
}

bool ClientCommunication::uploadKeyCombinationsHeatmap(const Map& heatmap)
{
    return request(RequestTypes::HeatmapKeycombinations,
                   {{QStringLiteral("keycombinations_heatmap"), heatmap}});
}

bool ClientCommunication::uploadKeyCombinationsHeatmapApps(const Map& heatmap)
{
    return request(RequestTypes::HeatmapKeycombinationsApps,
                   {{QStringLiteral("keycombinations_heatmap_apps"), heatmap}});
}

bool ClientCommunication::uploadButtonsHeatmap(const Map& heatmap)
{
    return request(RequestTypes::HeatmapButtons, {{QStringLiteral("buttons_heatmap"), heatmap}});
}

bool ClientCommunication::uploadButtonsHeatmapApps(const Map& heatmap)
{
    return request(RequestTypes::HeatmapButtonsApps,
                   {{QStringLiteral("buttons_heatmap_apps"), heatmap}});
}

bool ClientCommunication::uploadApplications(const QVariantList& applications)
{
    return request(RequestTypes::Applications, {{QStringLiteral("applications"), applications}});
}

bool ClientCommunication::uploadApplicationSettings(const Map& clientSettings)
{
    return request(RequestTypes::ClientSettings,
                   {{QStringLiteral("client_settings"), clientSettings}});
}

bool ClientCommunication::uploadComputerInfo(const Map& computerInfo)
{
    return request(RequestTypes::ComputerInfo, {{QStringLiteral("computer_info"), computerInfo}});
}

bool ClientCommunication::uploadUsageStats(const Map& windowOpenTimes, const QVariantList& events)
{
    return request(RequestTypes::UsageStats,
                   RequestData::usageStats(m_identity, windowOpenTimes, events));
}

bool ClientCommunication::uploadFile(const QString& path, const QString& type)
{
    return accept({{.requestType = RequestTypes::UploadFile,
                    .inputData = RequestData::fileUpload(type),
                    .postData = {}},
                   path});
}
