// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DefaultSettings.h"

#include "storage/SettingsKeys.h"

namespace DefaultSettings {

namespace {

template <typename... Keys>
Table fallbacksOf(const Keys&... keys)
{
    return {{keys.name(), QVariant::fromValue(keys.fallback)}...};
}

} // namespace

Table table()
{
    using namespace SettingsKeys;
    // `AutoZurgeTimeEnabled` has none: existing installations rely on its absence.
    return fallbacksOf(
        StatKeyboardEnable, StatKeyboardHeatmapEnable, StatMouseHeatmapPrune3Months,
        StatMouseEnable, StatMouseHeatmapEnable, StatInputApplicationsEnable,
        StatNetInterfaceEnable, StatNetApplicationEnable, StatNetProtocolEnable,
        StatNetProtocolRecordUnknown, StatNetCountryEnable, StatNetUptimeEnable, StatUptimeEnable,
        StatBootEnable, StatApplicationEnable, StatsInputEnable, StatsNetEnable, StatsUptimeEnable,
        OnlineSendApplications, OnlineSendHeatmaps, SelectedKeyboardHeatmap, SelectedMouseHeatmap,
        SelectedNetworkHeatmap, SelectedInputhistoryChart, LaunchOnStart, CheckForUpdates,
        CheckForUpdatesIncludeBeta, AutoInstallUpdates, WorkOffline, ProxySystemEnabled,
        TrayiconBlinkOnActivity, MainwindowOpenOnStart, LinuxCheckNetworkPermissions,
        WindowsRunAsAdministrator, TrayDoubleclickZurge, LogoColor, PauzeNotifications,
        NotifyOnZurge, AutoZurgeKeysEnabled, AutoZurgeKeysUnit, AutoZurgeClicksEnabled,
        AutoZurgeClicksUnit, AutoZurgeDownloadEnabled, AutoZurgeDownloadUnit,
        AutoZurgeUploadEnabled, AutoZurgeUploadUnit, AutoZurgeTimeHour, AutoZurgeUptimeEnabled,
        AutoZurgeUptimeUnit, ClientApiHttpEnable, ClientApiHttpPort, ClientApiWebsocketPort,
        ClientApiHttpAllowedIps, OnlineBackupEnabled, ClientLanguage, Theme,
        SendBugReportsAndUsageReports, ProfilesResetOnSleep, ProfilesChangeIconColor);
}

Table ofThisMoment(const QDateTime& now)
{
    using namespace SettingsKeys;
    constexpr qint64 messagesLookBackDays = 7;
    return {{OnlineBackupLast.name(), now},
            {CheckedForMessagesLast.name(), now.addDays(-messagesLookBackDays)},
            {LastApplicationVersionCheck.name(), now},
            {ProfilesHaveChanged.name(), ProfilesHaveChanged.fallback},
            {MouseDistanceSystem.name(), mouseDistanceSystem(QLocale::system().territory())}};
}

QString mouseDistanceSystem(QLocale::Territory territory)
{
    switch (territory) {
    case QLocale::UnitedStates:
    case QLocale::UnitedKingdom:
    case QLocale::Liberia:
    case QLocale::Myanmar:
        return QStringLiteral("imperial");
    default:
        return QStringLiteral("metric");
    }
}

} // namespace DefaultSettings
