// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/MouseDistanceStat.h"

#include "account/LocalStats.h"
#include "system/AbstractSystem.h"

namespace {

/// More than a hand moves in five seconds: the take of a device that jumps.
constexpr float MostInches = 68.0F;

} // namespace

MouseDistanceStat::MouseDistanceStat(AbstractSystem* system, QObject* parent)
    : InputStat(system, parent)
    , m_total(QStringLiteral(R"(UPDATE OR IGNORE mousedistance )"
                             R"(SET "distance_inches"="distance_inches"+? )"
                             R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                             R"(AND "profile_id"=?)"),
              QStringLiteral(R"(INSERT OR IGNORE INTO mousedistance ("day", "hour", )"
                             R"("distance_inches", "profile_id") )"
                             R"(VALUES (date('now', 'localtime'), ?, 0, ?);)"))
    , m_updateApplication(
          QStringLiteral(R"(UPDATE OR IGNORE input_per_application )"
                         R"(SET "distance_inches"="distance_inches"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "path"=? )"
                         R"(AND "profile_id"=?)"))
{
}

int MouseDistanceStat::getUpdateMilliSecondModUI() const
{
    return 1'000;
}

int MouseDistanceStat::getFrequentUpdateMilliSecondUI() const
{
    return 1'000;
}

void MouseDistanceStat::discardGathered()
{
    system().retrieveIncrementalMouseDistanceInches();
}

void MouseDistanceStat::doFrequentUpdate(QDateTime now, bool)
{
    const float inches = system().retrieveIncrementalMouseDistanceInches();
    if (!(inches > 0 && inches <= MostInches)) {
        return;
    }
    const Place place = placeAt(now);
    // The first take of each hour only creates the row, as for keys and clicks.
    m_total.add({static_cast<double>(inches), place.hour, place.profileId},
                {place.hour, place.profileId});
    LocalStats::instance()->increaseDistanceInches(static_cast<quint64>(inches));
    if (isFiledPerApplication(place)) {
        writeApplication(inches, place);
    }
}

void MouseDistanceStat::writeApplication(double inches, const Place& place)
{
    // Adds to the row that keys or clicks have made; where there is none, only the account totals
    // know of it.
    m_updateApplication.run({inches, place.hour, place.path, place.profileId});
    LocalStats::instance()->increaseAppDistanceInches(place.path, static_cast<quint64>(inches));
}
