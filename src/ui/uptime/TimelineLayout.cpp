// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/TimelineLayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double HighestRow = 72;
constexpr double LeastLength = 2;

} // namespace

TimelineLayout::TimelineLayout(Lanes direction, int lanes, qint64 seconds, const QRectF& room)
    : m_direction(direction)
    , m_lanes(lanes)
    , m_seconds(static_cast<double>(seconds))
    , m_plot(room)
{
    if (lanes == 0) {
        return;
    }
    if (direction == Lanes::Columns) {
        m_pitch = room.width() / lanes;
        return;
    }
    m_pitch = std::min(HighestRow, room.height() / lanes);
    m_plot.setHeight(m_pitch * lanes);
    m_plot.moveCenter(room.center());
}

QRectF TimelineLayout::lane(int index) const
{
    return m_direction == Lanes::Rows
               ? QRectF(m_plot.x(), m_plot.y() + index * m_pitch, m_plot.width(), m_pitch)
               : QRectF(m_plot.x() + index * m_pitch, m_plot.y(), m_pitch, m_plot.height());
}

int TimelineLayout::laneAt(const QPointF& place) const
{
    if (m_lanes == 0 || !m_plot.contains(place)) {
        return -1;
    }
    const double across =
        m_direction == Lanes::Rows ? place.y() - m_plot.y() : place.x() - m_plot.x();
    return std::clamp(static_cast<int>(across / m_pitch), 0, m_lanes - 1);
}

double TimelineLayout::positionOf(qint64 seconds) const
{
    const double share = static_cast<double>(seconds) / m_seconds;
    return m_direction == Lanes::Rows ? m_plot.x() + share * m_plot.width()
                                      : m_plot.y() + share * m_plot.height();
}

qint64 TimelineLayout::secondsAt(const QPointF& place) const
{
    const double share = m_direction == Lanes::Rows ? (place.x() - m_plot.x()) / m_plot.width()
                                                    : (place.y() - m_plot.y()) / m_plot.height();
    return std::llround(share * m_seconds);
}

QRectF TimelineLayout::bar(int lane, qint64 from, qint64 to) const
{
    const QRectF whole = this->lane(lane);
    const double start = positionOf(from);
    const double length = std::max(LeastLength, positionOf(to) - start);
    if (m_direction == Lanes::Columns) {
        return {whole.x(), start, whole.width(), length};
    }
    constexpr double around = 0.15; // Of the row, above and below.
    const double inset = std::max(0.5, m_pitch * around);
    return {start, whole.y() + inset, length, whole.height() - 2 * inset};
}
