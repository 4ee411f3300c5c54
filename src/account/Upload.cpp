// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Upload.h"

#include "account/LocalStats.h"
#include "account/ResultCodes.h"
#include "storage/Database.h"
#include "storage/Settings.h"

bool UploadAnswer::isSuccess() const
{
    return ResultCodes::isSuccess(status);
}

Upload::Upload(const UploadPartners& partners)
    : m_partners(partners)
{
}

void Upload::requestDone(const UploadAnswer& answer)
{
    const bool isForgotten = m_forgotten.remove(answer.requestType);
    // An answer that nothing can be noted of counts as none: what it was for is sent again.
    if (m_waiting.remove(answer.requestType) && !isForgotten && isDatabaseAtHand()) {
        answered(answer);
    }
}

void Upload::requestDropped(const QString& requestType)
{
    m_waiting.remove(requestType);
    m_forgotten.remove(requestType);
}

void Upload::forget()
{
    m_forgotten = m_waiting;
}

bool Upload::isAllowed() const
{
    return m_partners.localStats.isLoggedIn() &&
           !Settings::instance().value(SettingsKeys::WorkOffline) && isDatabaseAtHand();
}

bool Upload::isDatabaseAtHand() const
{
    return database().state() == Database::State::Open && !database().isLent();
}

bool Upload::isWaiting(const QString& requestType) const
{
    return m_waiting.contains(requestType);
}

bool Upload::send(const QString& requestType, const std::function<bool()>& request)
{
    m_waiting.insert(requestType);
    if (!request()) {
        m_waiting.remove(requestType);
        return false;
    }
    return true;
}
