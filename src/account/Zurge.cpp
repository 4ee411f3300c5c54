// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Zurge.h"

#include "account/LocalStats.h"
#include "account/ResultCodes.h"
#include "account/ZurgeAnswer.h"
#include "account/ZurgeApplications.h"
#include "base/Log.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QSqlError>

#include <utility>

namespace {

constexpr int NoAnswer = 0; ///< As `ClientCommunication::requestDone` has it.
constexpr int WrongToken = 303;

/// Whether the service has said that it did not take the zurge. A service that fell over in the
/// middle may have taken it.
bool isRefusal(int status)
{
    return !ResultCodes::isSuccess(status) && status != NoAnswer &&
           status != ResultCodes::ServerError;
}

/// The main connection, where it can be written now; null otherwise.
Database* writableDatabase()
{
    Database* database = Database::instance();
    const bool writable = database != nullptr && database->state() == Database::State::Open &&
                          database->connection().isOpen() && !database->isLent();
    return writable ? database : nullptr;
}

/// Does `work` in one transaction, so that it waits for the disk once.
template <typename Work>
void inTransaction(Work work)
{
    Database* database = writableDatabase();
    QSqlDatabase connection = database != nullptr ? database->connection() : QSqlDatabase();
    const bool began = database != nullptr && connection.transaction();
    work();
    if (began && !connection.commit()) {
        Log::error("Unable to store the account's figures: {}", connection.lastError().text());
        connection.rollback();
    }
}

/// None while the database, which knows their ids, is not at hand.
ZurgeApplications applicationsOf(const QHash<QString, UnzurgedCounts>& counts)
{
    Database* database = writableDatabase();
    return database != nullptr && Settings::instance().value(SettingsKeys::OnlineSendApplications)
               ? ZurgeApplications::from(*database, counts)
               : ZurgeApplications();
}

ClientCommunication::ZurgeRequest requestOf(const ZurgeInFlight& amounts)
{
    const UnzurgedCounts& totals = amounts.totals;
    ClientCommunication::ZurgeRequest request;
    request.token = amounts.token;
    request.keys = totals.keys;
    request.clicks = totals.clicks;
    request.uptimeSeconds = totals.uptime / MsecsPerSecond;
    request.downloadMiB = totals.download / BytesPerMiB;
    request.uploadMiB = totals.upload / BytesPerMiB;
    request.scrolls = totals.scrolls;
    request.distanceInches = totals.distanceInches;
    return request;
}

} // namespace

Zurge::Zurge(LocalStats& stats, Clock now)
    : m_stats(stats)
    , m_now(std::move(now))
{
    m_buttonTimer.setSingleShot(true);
    m_buttonTimer.setInterval(ButtonResetMs);
    connect(&m_buttonTimer, &QTimer::timeout, this, &Zurge::resetZurgeButton);
}

void Zurge::setService(ZurgeService service)
{
    m_service = std::move(service);
}

bool Zurge::begin(ZurgeStart start, const ZurgeWish& wish)
{
    if (!mayBegin(start)) {
        return false;
    }
    setInProgress(true);
    m_buttonTimer.start();
    if (isThrottled()) {
        setInProgress(false);
        return false;
    }
    m_stats.setLastZurge(m_now());
    const Asked asked{start, wish};
    return m_stats.account().ownInFlight() != nullptr ? askFirst(asked) : send(asked);
}

void Zurge::forget()
{
    m_waiting.reset();
    m_failures = 0;
    m_suspendedSince = {};
    setInProgress(false);
}

bool Zurge::mayBegin(ZurgeStart start)
{
    if (m_inProgress || !m_stats.isLoggedIn()) {
        return false;
    }
    if (start == ZurgeStart::Automatic && isSuspended()) {
        return false;
    }
    if (Settings::instance().value(SettingsKeys::WorkOffline)) {
        if (start == ZurgeStart::MainWindow) {
            Q_EMIT messageBox(tr("Zurging Disabled!"),
                              tr("The setting \"Work Offline\" is enabled. This prevents the "
                                 "client from going online, which includes zurging. Disable that "
                                 "setting and you can zurge again."));
        }
        return false;
    }
    return true;
}

bool Zurge::isSuspended()
{
    if (!m_suspendedSince.isValid()) {
        return false;
    }
    const qint64 seconds = m_suspendedSince.secsTo(m_now());
    // Below zero: the clock was set back, and the suspension would last for who knows how long.
    if (seconds >= 0 && seconds < SuspensionSeconds) {
        return true;
    }
    m_suspendedSince = {};
    m_failures = 0;
    return false;
}

QDateTime Zurge::suspendedUntil() const
{
    return m_suspendedSince.isValid() ? m_suspendedSince.addSecs(SuspensionSeconds) : QDateTime();
}

bool Zurge::isThrottled()
{
    const QDateTime last = m_stats.account().lastZurge;
    const qint64 elapsedMs = last.isValid() ? last.msecsTo(m_now()) : ShortestPauseMs;
    if (elapsedMs < 0 || elapsedMs >= ShortestPauseMs) {
        return false;
    }
    Q_EMIT messageBox(tr("Zurge throttled!"),
                      tr("Zurge throttled! Your last zurge was %1 seconds ago, please try again in "
                         "10 seconds.")
                          .arg(elapsedMs / qint64{MsecsPerSecond}));
    return true;
}

bool Zurge::askFirst(const Asked& asked)
{
    Log::info("Asking the service what became of the last zurge before sending another");
    // Asking may end an earlier question that never was answered, and what waited for it.
    if (!m_service.askAccountInfo()) {
        fail(asked.start, tr("The service could not be asked what became of the last zurge. "
                             "Nothing was sent."));
        return false;
    }
    m_waiting = asked;
    setInProgress(true);
    return true;
}

bool Zurge::send(const Asked& asked)
{
    const UnzurgedCounts totals =
        ZurgeAmounts::wholeUnits(ZurgeAmounts::choose(asked.wish, m_stats.unzurged()));
    if (totals == UnzurgedCounts{}) {
        Log::info("Trying to zurge without any stats, ignoring request.");
        setInProgress(false);
        return false;
    }
    if (m_awaited) {
        Log::info("A zurge of the account that was signed in before is still under way");
        setInProgress(false);
        return false;
    }
    ZurgeApplications applications = applicationsOf(m_stats.unzurgedPerApplication());
    const AccountIdentity& identity = m_stats.identity();
    const ZurgeInFlight amounts{.token = m_stats.account().zurgeToken,
                                .time = m_now(),
                                .totals = totals,
                                .applications = std::move(applications.amounts),
                                .userId = identity.userId,
                                .computerId = identity.computerId};
    if (!m_stats.recordInFlight(amounts)) {
        fail(asked.start, tr("The counts were not sent, because they could not be noted as sent "
                             "first. Is the disk full?"));
        return false;
    }
    m_sentBy = asked.start;
    m_isRepeated = false;
    if (!transmit(amounts, applications.list)) {
        m_stats.forgetInFlight();
        fail(asked.start, tr("The counts could not be sent."));
        return false;
    }
    return true;
}

/// They are on record since they were sent first.
void Zurge::sendAgain(ZurgeStart start, const ZurgeInFlight& amounts)
{
    m_sentBy = start;
    m_isRepeated = true;
    const bool canName = amounts.applications.isEmpty() || writableDatabase() != nullptr;
    if (!canName || !transmit(amounts, applicationsOf(amounts.applications).list)) {
        fail(start, tr("The counts could not be sent."));
    }
}

bool Zurge::transmit(const ZurgeInFlight& amounts, const QVariantList& applications)
{
    ClientCommunication::ZurgeRequest request = requestOf(amounts);
    request.automatic = m_sentBy == ZurgeStart::Automatic;
    request.applications = applications;
    request.timeSeries = m_service.timeSeries();
    m_awaited = m_service.send(request);
    return m_awaited;
}

void Zurge::takeAnswer(int status, const Map& data, const QString& message)
{
    m_awaited = false;
    setInProgress(false);
    if (!m_stats.account().inFlight) {
        Log::warn("Passing over the answer to a zurge that is settled already");
        return;
    }
    if (m_stats.account().ownInFlight() == nullptr) {
        takeAnswerToOther(status, data);
        return;
    }
    const ZurgeInFlight sent = *m_stats.account().inFlight;
    if (!ResultCodes::isSuccess(status)) {
        record(sent,
               isUntaken(status) ? ZurgeRecord::Outcome::Failed : ZurgeRecord::Outcome::Unanswered,
               message);
        refused(status, message);
        return;
    }
    if (const std::optional<ZurgeAnswer> answer = ZurgeAnswer::from(data)) {
        record(sent, ZurgeRecord::Outcome::Sent);
        succeed(*answer);
        return;
    }
    Log::error("The service's answer to the zurge was not understood; it changes nothing");
    record(sent, ZurgeRecord::Outcome::Unanswered);
    fail(m_sentBy, tr("The answer of the service was not understood. Your counts are kept; the "
                      "next zurge finds out whether this one was taken."));
}

/// Of an account that was signed in before: its counts are the same, its token and figures are not.
void Zurge::takeAnswerToOther(int status, const Map& data)
{
    if (ResultCodes::isSuccess(status) && ZurgeAnswer::from(data)) {
        Log::info("The service has taken the last zurge of the account that was signed in before");
        m_stats.settleInFlight({});
    } else if (isUntaken(status)) {
        m_stats.forgetInFlight();
    }
}

/// Whether the service has said that it did not take the zurge, nor the same one before.
bool Zurge::isUntaken(int status) const
{
    return isRefusal(status) && !m_isRepeated;
}

void Zurge::record(const ZurgeInFlight& amounts, ZurgeRecord::Outcome outcome,
                   const QString& message)
{
    const bool isAutomatic = m_sentBy == ZurgeStart::Automatic;
    Q_EMIT recorded(
        {.time = amounts.time,
         .origin = isAutomatic ? ZurgeRecord::Origin::Automatic : ZurgeRecord::Origin::ByHand,
         .outcome = outcome,
         .keys = amounts.totals.keys,
         .clicks = amounts.totals.clicks,
         .message = message});
}

void Zurge::refused(int status, const QString& message)
{
    if (isUntaken(status)) {
        m_stats.forgetInFlight();
    } else {
        Log::warn("It is uncertain whether the service took the zurge; asking before the next one");
    }
    fail(m_sentBy, message);
    if (status == WrongToken && !m_waiting) {
        m_service.askAccountInfo();
    }
}

void Zurge::succeed(const ZurgeAnswer& answer)
{
    m_failures = 0;
    m_stats.settleInFlight(answer.token);
    inTransaction([&] {
        OnlineFigures::store(answer.totals);
        OnlineFigures::store(answer.ranks);
        if (writableDatabase() != nullptr) {
            m_stats.writeDatabaseCopy();
        }
    });
    if (!answer.hasComputerInfo) {
        Log::info("Website mentioned it does not have a computer profile for me. Uploading now.");
        Q_EMIT computerInfoWanted();
    }
    if (Settings::instance().value(SettingsKeys::NotifyOnZurge)) {
        Q_EMIT trayMessage(tr("Zurge succeeded!"), tr("Zurge success!"));
    }
    Q_EMIT finished();
    Q_EMIT pendingMessagesWanted();
}

void Zurge::takeAccountInfo(int status, const Map& data, const QString& message)
{
    const std::optional<Asked> asked = std::exchange(m_waiting, std::nullopt);
    if (!m_stats.isLoggedIn()) {
        return;
    }
    const bool isTold = ResultCodes::isSuccess(status);
    const AccountInfo info = isTold ? AccountInfo::from(data) : AccountInfo();
    if (isTold) {
        takeAccountInfo(info);
    }
    if (asked) {
        goOn(*asked, info.token,
             isTold ? tr("The service does not say whether it took the last zurge. Nothing was "
                         "sent.")
                    : message);
    }
}

/// Sends what had to wait: the last zurge again where the service still has its token, another one
/// where it is settled. `failure` tells why neither may be.
void Zurge::goOn(const Asked& asked, const QString& token, const QString& failure)
{
    const ZurgeInFlight* uncertain = m_stats.account().ownInFlight();
    if (uncertain != nullptr && m_awaited) {
        Log::info("The last zurge is still under way; not sending another");
        setInProgress(false);
        return;
    }
    if (uncertain != nullptr && (token.isEmpty() || token != uncertain->token)) {
        fail(asked.start, failure);
        return;
    }
    setInProgress(true);
    m_buttonTimer.start();
    if (uncertain != nullptr) {
        sendAgain(asked.start, ZurgeInFlight(*uncertain));
    } else {
        send(asked);
    }
}

void Zurge::takeAccountInfo(const AccountInfo& info)
{
    const ZurgeInFlight* inFlight = m_stats.account().ownInFlight();
    if (inFlight != nullptr && m_awaited) {
        return;
    }
    if (info.token.isEmpty()) {
        Log::warn("The service's account information comes without a zurge token");
    } else if (inFlight == nullptr) {
        m_stats.setZurgeToken(info.token);
    } else if (inFlight->token.isEmpty()) {
        Log::info("The last zurge went without a token, with which the service takes none");
        record(*inFlight, ZurgeRecord::Outcome::Failed,
               tr("The service did not take it; its counts go with the next one."));
        m_stats.forgetInFlight();
        m_stats.setZurgeToken(info.token);
    } else if (info.token == inFlight->token) {
        Log::info("The service has not taken the last zurge; the next one sends it again");
        m_stats.setZurgeToken(info.token);
    } else {
        Log::info("The service has taken the last zurge");
        record(*inFlight, ZurgeRecord::Outcome::Sent);
        m_stats.settleInFlight(info.token);
    }
    inTransaction([&] {
        if (info.totals) {
            OnlineFigures::store(*info.totals);
        }
        if (info.ranks) {
            OnlineFigures::store(*info.ranks);
        }
    });
}

void Zurge::fail(ZurgeStart start, const QString& message)
{
    setInProgress(false);
    if (start != ZurgeStart::Automatic) {
        Q_EMIT messageBox(tr("Error while zurging!"), message);
        return;
    }
    ++m_failures;
    Log::info("Automatic zurge failed ({} in a row): {}", m_failures, message);
    if (m_failures == MostFailures) {
        m_suspendedSince = m_now();
        Q_EMIT messageBox(tr("Automatic zurge error!"),
                          tr("Due to a zurge error, I'm disabling automatic zurges for now. Here's "
                             "the error: ") +
                              message);
    }
}

void Zurge::resetZurgeButton()
{
    setInProgress(false);
}

void Zurge::setInProgress(bool inProgress)
{
    m_inProgress = inProgress;
    Q_EMIT buttonChanged();
}
