// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/StartupRepair.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/DatabaseFiles.h"
#include "storage/HistoryStamp.h"

#include <QFileInfo>

namespace StartupRepair {

bool applyPendingRestore(const QString& dataDirectory)
{
    const QString restored = dataDirectory + QLatin1Char('/') + DatabaseFiles::RestoreName;
    if (!QFileInfo(restored).isFile()) {
        return false;
    }
    const DatabaseFiles files(dataDirectory + QLatin1Char('/') + DatabaseFiles::Name);
    // Before it takes its place, and before its header is read: a start that was cut short here has
    // left a journal. A file that cannot be written to is found out when it is opened.
    HistoryStamp::renewFile(restored);
    // Checked when it was staged; whoever put another file there, or an older client, gets no
    // further than this.
    const std::optional<int> version = DatabaseFiles(restored).storedVersion();
    if (!version || *version > Database::SchemaVersion) {
        Log::warn("Unable to rename restored database: {} to: {}", restored, files.fileName());
        return false;
    }
    if (!files.replaceBy(restored)) {
        Log::warn("Unable to rename restored database: {} to: {}", restored, files.fileName());
        return false;
    }
    Log::info("Successfully renamed restored database: {} to: {}", restored, files.fileName());
    return true;
}

void removeNegativeDistances(Database& database)
{
    DSqlQuery query(&database);
    query.exec(QStringLiteral("DELETE FROM mousedistance WHERE distance_inches < 0"));
    query.exec(QStringLiteral(
        "UPDATE input_per_application SET distance_inches = 0 WHERE distance_inches < 0"));
}

} // namespace StartupRepair
