// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/InputStat.h"
#include "stats/PreparedStatement.h"

#include <array>

/// Files scroll steps by hour, profile and direction, and per application.
///
/// A touchpad or a free-running wheel reports hundreds of steps a second. So at most one step per
/// direction is counted for each whole second since the last batch. Thread: main.
class MouseScrollsStat : public InputStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    MouseScrollsStat(AbstractSystem* system, QObject* parent);

    void doFrequentUpdate(QDateTime now, bool ui) override;

    /// How many of `count` steps that arrived until `now` are counted.
    int throttleScrolls(int count, QDateTime now) const;

private:
    using DirectionCounts = std::array<int, 4>;

    void discardGathered() override;
    DirectionCounts takeCounts();
    int writeDirections(const DirectionCounts& counts, const QDateTime& now, const Place& place);

    PreparedStatement m_updateDirection;
    PreparedStatement m_insertDirections;
    PreparedStatement m_updateApplication;
    QDateTime m_lastScroll = QDateTime::fromMSecsSinceEpoch(0); ///< The first batch is not cut.
};
