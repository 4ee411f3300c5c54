// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/AccountState.h"

#include "storage/Settings.h"

OnlineFigures OnlineFigures::stored()
{
    const Settings& settings = Settings::instance();
    return {.keys = settings.value(SettingsKeys::OnlineTotalKeys),
            .clicks = settings.value(SettingsKeys::OnlineTotalClicks),
            .scrolls = settings.value(SettingsKeys::OnlineTotalScrolls),
            .distanceMiles = settings.value(SettingsKeys::OnlineTotalDistanceMiles),
            .downloadMiB = settings.value(SettingsKeys::OnlineTotalDownload),
            .uploadMiB = settings.value(SettingsKeys::OnlineTotalUpload),
            .uptimeSeconds = settings.value(SettingsKeys::OnlineTotalUptime),
            .keysRank = settings.value(SettingsKeys::OnlineRankKeys),
            .clicksRank = settings.value(SettingsKeys::OnlineRankClicks),
            .scrollsRank = settings.value(SettingsKeys::OnlineRankScrolls),
            .distanceRank = settings.value(SettingsKeys::OnlineRankDistance),
            .downloadRank = settings.value(SettingsKeys::OnlineRankDownload),
            .uploadRank = settings.value(SettingsKeys::OnlineRankUpload),
            .uptimeRank = settings.value(SettingsKeys::OnlineRankUptime)};
}
