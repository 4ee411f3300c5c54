// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/MouseScrollsStat.h"

#include "account/LocalStats.h"
#include "system/AbstractSystem.h"

#include <algorithm>
#include <array>

namespace {

using Utils::ScrollDirection;

/// In the order in which they are taken.
constexpr std::array Directions{ScrollDirection::Down, ScrollDirection::Up, ScrollDirection::Left,
                                ScrollDirection::Right};

} // namespace

MouseScrollsStat::MouseScrollsStat(AbstractSystem* system, QObject* parent)
    : InputStat(system, parent)
    , m_updateDirection(QStringLiteral(R"(UPDATE OR IGNORE mousescrolls SET "count"="count"+? )"
                                       R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                                       R"(AND "direction"=? AND "profile_id"=?)"))
    , m_insertDirections(
          QStringLiteral(R"(INSERT OR IGNORE INTO mousescrolls ("day", "hour", "count", )"
                         R"("direction", "profile_id") VALUES )"
                         R"((date('now', 'localtime'), ?, 0, 1, ?),)"
                         R"((date('now', 'localtime'), ?, 0, 2, ?),)"
                         R"((date('now', 'localtime'), ?, 0, 3, ?), )"
                         R"((date('now', 'localtime'), ?, 0, 4, ?);)"))
    , m_updateApplication(
          QStringLiteral(R"(UPDATE OR IGNORE input_per_application SET "scrolls"="scrolls"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "path"=? )"
                         R"(AND "profile_id"=?)"))
{
}

void MouseScrollsStat::discardGathered()
{
    takeCounts();
}

void MouseScrollsStat::doFrequentUpdate(QDateTime now, bool)
{
    const Place place = placeAt(now);
    m_insertDirections.run({place.hour, place.profileId, place.hour, place.profileId, place.hour,
                            place.profileId, place.hour, place.profileId});
    const DirectionCounts counts = takeCounts();
    if (std::ranges::all_of(counts, [](int count) { return count == 0; })) {
        return;
    }
    const int total = writeDirections(counts, now, place);
    LocalStats::instance()->increaseScrolls(total);
    if (isFiledPerApplication(place)) {
        // Adds to the row that keys or clicks have made, as travel does.
        m_updateApplication.run({total, place.hour, place.path, place.profileId});
        LocalStats::instance()->increaseAppScrolls(place.path, total);
    }
    m_lastScroll = now;
}

MouseScrollsStat::DirectionCounts MouseScrollsStat::takeCounts()
{
    DirectionCounts counts{};
    std::ranges::transform(Directions, counts.begin(), [this](ScrollDirection direction) {
        return system().retrieveIncrementalMouseScrolls(direction);
    });
    return counts;
}

/// Returns how many steps were counted.
int MouseScrollsStat::writeDirections(const DirectionCounts& counts, const QDateTime& now,
                                      const Place& place)
{
    int total = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        if (counts.at(i) != 0) {
            const int counted = throttleScrolls(counts.at(i), now);
            m_updateDirection.run(
                {counted, place.hour, static_cast<int>(Directions.at(i)), place.profileId});
            total += counted;
        }
    }
    return total;
}

// The time is handed on by value, as in the updates.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int MouseScrollsStat::throttleScrolls(int count, QDateTime now) const
{
    constexpr qint64 millisecondsPerStep = 1'000;
    const qint64 steps = m_lastScroll.msecsTo(now) / millisecondsPerStep;
    return static_cast<int>(std::max<qint64>(std::min<qint64>(count, steps), 0));
}
