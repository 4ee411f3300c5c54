// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ProfilesUpload.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Log.h"
#include "profiles/ProfileManager.h"

namespace {

/// A time that a database of before does not know is empty text, not nothing.
QVariantList withTimesAsText(const QVariantList& profiles)
{
    QVariantList list;
    for (const QVariant& profile : profiles) {
        QVariantMap fields = profile.toMap();
        for (const QString& time : {QStringLiteral("created_at"), QStringLiteral("updated_at")}) {
            fields.insert(time, fields.value(time).toString());
        }
        list.append(fields);
    }
    return list;
}

} // namespace

ProfilesUpload::ProfilesUpload(const UploadPartners& partners, ProfileManager& profiles)
    : Upload(partners)
    , m_profiles(profiles)
{
}

QStringList ProfilesUpload::requestTypes() const
{
    return {RequestTypes::SyncProfiles};
}

void ProfilesUpload::uploadProfiles()
{
    if (!isAllowed() || isWaiting(RequestTypes::SyncProfiles) ||
        !m_profiles.shouldUploadProfiles()) {
        return;
    }
    m_sent = m_profiles.getProfiles();
    send(RequestTypes::SyncProfiles,
         [&] { return communication().syncClientProfiles(withTimesAsText(m_sent)); });
}

void ProfilesUpload::answered(const UploadAnswer& answer)
{
    if (!answer.isSuccess()) {
        Log::error("Error uploading profiles: {}", answer.message);
        return;
    }
    Log::info("Successfully uploaded profiles.");
    // A profile that came or went meanwhile is sent with the next upload.
    if (m_profiles.getProfiles() == m_sent) {
        m_profiles.successFullyUploadedProfiles();
    }
}
