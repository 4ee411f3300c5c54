// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QtGlobal>

/// Where days and their hours lie on a time line. A lane is a day as a row, its hours from left to
/// right, or some days as a column, their hours from top to bottom. Plain value.
class TimelineLayout
{
public:
    enum class Lanes
    {
        Rows,
        Columns,
    };

    TimelineLayout() = default;

    /// `lanes` of them, each with room for `seconds`, in `room`. Rows grow no higher than a bar
    /// with a line of text asks for, and stay in the middle.
    TimelineLayout(Lanes direction, int lanes, qint64 seconds, const QRectF& room);

    const QRectF& plot() const { return m_plot; }

    /// Of one lane, across.
    double pitch() const { return m_pitch; }

    QRectF lane(int index) const;

    /// The lane at a place; -1 outside.
    int laneAt(const QPointF& place) const;

    /// Where a stretch of a lane lies, at least two pixels long and with a little room around rows.
    QRectF bar(int lane, qint64 from, qint64 to) const;

    /// Along the lanes, in pixels.
    double positionOf(qint64 seconds) const;
    qint64 secondsAt(const QPointF& place) const;

private:
    Lanes m_direction = Lanes::Rows;
    int m_lanes = 0;
    double m_seconds = 1;
    double m_pitch = 0;
    QRectF m_plot;
};
