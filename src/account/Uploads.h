// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/ApplicationsUpload.h"
#include "account/ComputerInfoUpload.h"
#include "account/HeatmapUpload.h"
#include "account/ProfilesUpload.h"
#include "account/SettingsUpload.h"
#include "account/UsageStatsUpload.h"

#include <QHash>
#include <QObject>

/// Everything that the service is told besides zurges. Hands each finished request to the upload
/// that made it. Thread: main.
class Uploads : public QObject
{
    Q_OBJECT

public:
    /// All arguments must outlive this object.
    Uploads(const UploadPartners& partners, ProfileManager& profiles, ComputerFactsSource facts,
            QObject* parent = nullptr);

    void forget(); ///< The account is another one; see `Upload::forget`.

public Q_SLOTS:
    void uploadHeatmaps();
    void uploadApplications();
    void uploadProfiles();
    void uploadUsageStats();
    void uploadComputerInfo(ComputerInfoUpload::When when);
    void uploadApplicationSettings(SettingsUpload::When when);

    /// Keeps the size of the database, which goes with the settings, unless the user lets no usage
    /// reports be sent.
    void updateDatabaseSizeTelemetry();

private:
    void communicationRequestDone(const QString& requestType, int status,
                                  const QMap<QString, QVariant>& data, const QString& message);
    void communicationRequestDropped(const QString& requestType);

    UploadPartners m_partners;
    HeatmapUpload m_heatmaps;
    ApplicationsUpload m_applications;
    ComputerInfoUpload m_computerInfo;
    SettingsUpload m_settings;
    ProfilesUpload m_profiles;
    UsageStatsUpload m_usageStats;
    QHash<QString, Upload*> m_byRequestType; ///< Each of the above; not owned.
};
