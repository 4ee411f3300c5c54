// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/BrowserAuthorization.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Log.h"

#include <QSysInfo>
#include <QUuid>

namespace {

/// After so long an exchange that has no answer is abandoned for the next request.
constexpr int GivenUpAfterMs = ClientCommunication::LongestExchangeMs + 1'000;

} // namespace

void BrowserAuthorization::Outstanding::noteSent()
{
    ++all;
    ++own;
}

bool BrowserAuthorization::Outstanding::takeOutcome()
{
    if (all == 0) {
        return false;
    }
    const bool isOwn = all-- <= own;
    own -= isOwn ? 1 : 0;
    return isOwn;
}

BrowserAuthorization::BrowserAuthorization(ClientCommunication& communication, const QUrl& website,
                                           QObject* parent)
    : QObject(parent)
    , m_communication(communication)
    , m_website(website)
{
    connect(&m_timer, &QTimer::timeout, this, &BrowserAuthorization::tick);
    connect(&m_communication, &ClientCommunication::requestDone, this,
            &BrowserAuthorization::takeAnswer);
    connect(&m_communication, &ClientCommunication::requestDropped, this,
            &BrowserAuthorization::takeDropped);
}

void BrowserAuthorization::begin()
{
    cancel();
    m_uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_stage = Stage::Asking;
    m_timer.start(GivenUpAfterMs);
    if (m_communication.initClientAuthorization(m_uid, {})) {
        m_inits.noteSent();
    }
}

void BrowserAuthorization::cancel()
{
    m_timer.stop();
    m_stage = Stage::Idle;
    m_inits.own = 0;
    m_checks.own = 0;
    m_missed = 0;
}

void BrowserAuthorization::tick()
{
    if (m_stage == Stage::Asking) {
        fail(tr("Our server producing errors, please check back in a few minutes. Sorry!"));
    } else {
        checkNow();
    }
}

void BrowserAuthorization::checkNow()
{
    if (m_stage != Stage::Waiting) {
        return;
    }
    if (m_checks.own > 0) {
        Log::debug("Already checking client authorization, not doing it again.");
        // One that will never be answered is given up by the service's next request: this one.
        if (++m_missed <= GivenUpAfterMs / CheckIntervalMs) {
            return;
        }
    }
    m_missed = 0;
    if (m_communication.checkClientAuthorization(m_uid, {})) {
        m_checks.noteSent();
    }
}

void BrowserAuthorization::takeAnswer(const QString& requestType, int status,
                                      const QMap<QString, QVariant>& data, const QString& message)
{
    if (requestType == RequestTypes::InitAuthorization && m_inits.takeOutcome()) {
        if (ResultCodes::isSuccess(status)) {
            waitForUser();
        } else if (status == ResultCodes::Maintenance) {
            fail(tr("Our server is currently in maintenance, please check back in a few minutes. "
                    "Sorry!"));
        } else {
            Log::warn("The website does not begin the authorization: {}", message);
            fail(tr("Our server producing errors, please check back in a few minutes. Sorry!"));
        }
    } else if (requestType == RequestTypes::CheckAuthorization && m_checks.takeOutcome()) {
        takeCheck(status, data);
    }
}

void BrowserAuthorization::takeDropped(const QString& requestType)
{
    if (requestType == RequestTypes::InitAuthorization && m_inits.takeOutcome()) {
        fail(tr("Our server producing errors, please check back in a few minutes. Sorry!"));
    } else if (requestType == RequestTypes::CheckAuthorization) {
        m_checks.takeOutcome();
    }
}

void BrowserAuthorization::waitForUser()
{
    m_stage = Stage::Waiting;
    m_timer.start(CheckIntervalMs);
    Q_EMIT browserNeeded(page());
}

void BrowserAuthorization::takeCheck(int status, const QMap<QString, QVariant>& data)
{
    if (status == ResultCodes::UnknownAccount) {
        fail(tr("The website does not wait for this computer any more. Please begin again."));
        return;
    }
    if (!ResultCodes::isSuccess(status) || !holdsAuthorization(data)) {
        Log::debug("Checking for authorization from the website...Client not authorized yet!");
        return;
    }
    const std::optional<Authorization> answer = parseAuthorization(data);
    if (!answer) {
        Log::error("The website authorized this computer for an account that makes no sense");
        fail(tr("Our server producing errors, please check back in a few minutes. Sorry!"));
        return;
    }
    Log::info("Client authorized!");
    cancel();
    Q_EMIT authorized(*answer);
}

void BrowserAuthorization::fail(const QString& text)
{
    cancel();
    Q_EMIT failed(text);
}

QUrl BrowserAuthorization::page() const
{
    const QByteArray name = QUrl::toPercentEncoding(QSysInfo::machineHostName());
    return QUrl(
        QStringLiteral("%1/dashboard/my/client/%2?id=%3&name=%4")
            .arg(m_website.toString(QUrl::FullyEncoded), m_uid, m_uid, QString::fromLatin1(name)),
        QUrl::StrictMode);
}
