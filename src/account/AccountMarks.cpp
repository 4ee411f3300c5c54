// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/AccountMarks.h"

#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

namespace AccountMarks {

namespace {

template <typename... Keys>
QStringList namesOf(const Keys&... keys)
{
    return {keys.name()...};
}

QStringList marks()
{
    using namespace SettingsKeys;
    return namesOf(OnlineLastHeatmapKeyboard, OnlineLastHeatmapKeyboardApps,
                   OnlineLastHeatmapKeycombinations, OnlineLastHeatmapKeycombinationsApps,
                   OnlineLastHeatmapButtons, OnlineLastHeatmapButtonsApps, SettingsLastUploaded,
                   CheckForCompInfoLast, OnlineTotalKeys, OnlineTotalClicks, OnlineTotalDownload,
                   OnlineTotalUpload, OnlineTotalUptime, OnlineTotalScrolls,
                   OnlineTotalDistanceMiles, OnlineRankKeys, OnlineRankClicks, OnlineRankDownload,
                   OnlineRankUpload, OnlineRankUptime, OnlineRankScrolls, OnlineRankDistance);
}

} // namespace

void forget(Database& database)
{
    Settings& settings = Settings::instance();
    for (const QString& name : marks()) {
        if (settings.has(name)) {
            settings.del(name);
        }
    }
    settings.setValue(SettingsKeys::ProfilesHaveChanged, true);
    // While the database is lent, the missing time of the last check alone has it sent again.
    if (database.state() == Database::State::Open && !database.isLent()) {
        DSqlQuery(&database, QStringLiteral("DELETE FROM computer_info"), true);
    }
}

} // namespace AccountMarks
