// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/MouseClicksStat.h"

#include "account/LocalStats.h"
#include "system/AbstractSystem.h"

#include <utility>

namespace {

/// In single precision, in which positions are computed: 0.55 of a screen is a little more than the
/// double 0.55.
constexpr double CentreBegin = 0.45F;
constexpr double CentreEnd = 0.55F;

bool isCentral(double coordinate)
{
    return coordinate >= CentreBegin && coordinate <= CentreEnd;
}

/// Where a full-screen program, typically a game, keeps the pointer while it hides it: in the
/// middle or at an edge. Such a click has no position of its own.
bool isHeldPointer(const QPointF& point)
{
    return isCentral(point.x()) || isCentral(point.y()) || point.x() == 0 || point.y() == 0;
}

} // namespace

MouseClicksStat::MouseClicksStat(AbstractSystem* system, QObject* parent)
    : InputStat(system, parent)
    , m_total(QStringLiteral(R"(UPDATE OR IGNORE mouseclicks SET "count"="count"+? )"
                             R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                             R"(AND "profile_id"=?)"),
              QStringLiteral(R"(INSERT OR IGNORE INTO mouseclicks ("day", "hour", "count", )"
                             R"("profile_id") VALUES(date('now', 'localtime'), ?, 0, ?);)"))
    , m_insertPoint(
          QStringLiteral(R"(INSERT INTO mousepoints ("day", "hour", "x", "y", "profile_id") )"
                         R"(VALUES (date('now', 'localtime'), ?, ?, ?, ?);)"))
    , m_perButton(
          QStringLiteral(R"(UPDATE OR IGNORE mouseclicks_frequency SET "count"="count"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "button"=? )"
                         R"(AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO mouseclicks_frequency ("day", "hour", )"
                         R"("button", "count", "profile_id") )"
                         R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?);)"))
    , m_perButtonAndApplication(
          QStringLiteral(R"(UPDATE OR IGNORE mouseclicks_frequency_application )"
                         R"(SET "count"="count"+? WHERE "day"=date('now', 'localtime') )"
                         R"(AND "hour"=? AND "button"=? AND "path"=? AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO mouseclicks_frequency_application ("day", )"
                         R"("hour", "button", "count", "path", "profile_id") )"
                         R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?, ?);)"))
    , m_perApplication(
          QStringLiteral(R"(UPDATE OR IGNORE input_per_application SET "clicks"="clicks"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "path"=? )"
                         R"(AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO input_per_application ("day", "hour", "path", )"
                         R"("keys", "clicks", "profile_id") )"
                         R"(VALUES(date('now', 'localtime'), ?, ?, 0, ?, ?);)"))
{
}

void MouseClicksStat::discardGathered()
{
    system().retrieveIncrementalMouseClicks();
    system().retrieveIncrementalMousePoints();
}

void MouseClicksStat::doFrequentUpdate(QDateTime now, bool)
{
    const QList<unsigned short> clicks = system().retrieveIncrementalMouseClicks();
    const QList<QPointF> points = system().retrieveIncrementalMousePoints();
    if (clicks.isEmpty()) {
        return;
    }
    const auto count = static_cast<int>(clicks.size());
    ButtonCounts buttons;
    for (const unsigned short button : clicks) {
        ++buttons[button];
    }
    const Place place = placeAt(now);
    LocalStats::instance()->increaseClicks(count);
    writeTotal(count, place);
    writeButtons(buttons, place);
    if (isHeatmap() && !points.isEmpty()) {
        writePoints(points, place);
    }
    writeApplication(count, buttons, place);
}

void MouseClicksStat::writeTotal(int count, const Place& place)
{
    // The row is created empty, as for keys: the first batch of each hour is in the rows per button
    // and per application only.
    m_total.add({count, place.hour, place.profileId}, {place.hour, place.profileId});
}

void MouseClicksStat::writeButtons(const ButtonCounts& buttons, const Place& place)
{
    for (const auto& [button, count] : buttons.asKeyValueRange()) {
        m_perButton.add({count, place.hour, button, place.profileId},
                        {place.hour, button, count, place.profileId});
    }
}

void MouseClicksStat::writePoints(const QList<QPointF>& points, const Place& place)
{
    const bool isFullscreen = system().isFullscreenApplicationActive();
    for (const QPointF& point : points) {
        if (!isFullscreen || !isHeldPointer(point)) {
            m_insertPoint.run({place.hour, point.x(), point.y(), place.profileId});
        }
    }
}

void MouseClicksStat::writeApplication(int count, const ButtonCounts& buttons, const Place& place)
{
    if (!isFiledPerApplication(place)) {
        return;
    }
    m_perApplication.add({count, place.hour, place.path, place.profileId},
                         {place.hour, place.path, count, place.profileId});
    LocalStats::instance()->increaseAppClicks(place.path, count);
    if (!isHeatmap()) {
        return;
    }
    for (const auto& [button, clicks] : buttons.asKeyValueRange()) {
        m_perButtonAndApplication.add({clicks, place.hour, button, place.path, place.profileId},
                                      {place.hour, button, clicks, place.path, place.profileId});
    }
}
