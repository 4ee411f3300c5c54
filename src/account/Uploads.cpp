// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Uploads.h"

#include "account/ClientCommunication.h"
#include "account/LocalStats.h"
#include "storage/Database.h"
#include "storage/Settings.h"

Uploads::Uploads(const UploadPartners& partners, ProfileManager& profiles,
                 ComputerFactsSource facts, QObject* parent)
    : QObject(parent)
    , m_partners(partners)
    , m_heatmaps(partners)
    , m_applications(partners)
    , m_computerInfo(partners, std::move(facts))
    , m_settings(partners)
    , m_profiles(partners, profiles)
    , m_usageStats(partners)
{
    for (Upload* upload :
         std::initializer_list<Upload*>{&m_heatmaps, &m_applications, &m_computerInfo, &m_settings,
                                        &m_profiles, &m_usageStats}) {
        for (const QString& type : upload->requestTypes()) {
            m_byRequestType.insert(type, upload);
        }
    }
    connect(&partners.communication, &ClientCommunication::requestDone, this,
            &Uploads::communicationRequestDone);
    connect(&partners.communication, &ClientCommunication::requestDropped, this,
            &Uploads::communicationRequestDropped);
}

void Uploads::forget()
{
    for (Upload* upload : std::as_const(m_byRequestType)) {
        upload->forget();
    }
}

void Uploads::uploadHeatmaps()
{
    m_heatmaps.uploadHeatmaps();
}

void Uploads::uploadApplications()
{
    m_applications.uploadApplications();
}

void Uploads::uploadProfiles()
{
    m_profiles.uploadProfiles();
}

void Uploads::uploadUsageStats()
{
    m_usageStats.uploadUsageStats();
}

void Uploads::uploadComputerInfo(ComputerInfoUpload::When when)
{
    m_computerInfo.uploadComputerInfo(when);
}

void Uploads::uploadApplicationSettings(SettingsUpload::When when)
{
    m_settings.uploadApplicationSettings(when);
}

void Uploads::updateDatabaseSizeTelemetry()
{
    constexpr unsigned mebibyteBits = 20;
    Settings& settings = Settings::instance();
    const qint64 size = m_partners.database.getDatabaseFileSize() >> mebibyteBits;
    if (!settings.value(SettingsKeys::SendBugReportsAndUsageReports)) {
        settings.del(SettingsKeys::DbSizeTotalMb.name());
    } else if (m_partners.localStats.isLoggedIn() &&
               settings.value(SettingsKeys::DbSizeTotalMb) != size) {
        settings.setValue(SettingsKeys::DbSizeTotalMb, size);
    }
}

void Uploads::communicationRequestDone(const QString& requestType, int status,
                                       const QMap<QString, QVariant>& data, const QString& message)
{
    if (Upload* upload = m_byRequestType.value(requestType)) {
        upload->requestDone({requestType, status, data, message});
    }
}

void Uploads::communicationRequestDropped(const QString& requestType)
{
    if (Upload* upload = m_byRequestType.value(requestType)) {
        upload->requestDropped(requestType);
    }
}
