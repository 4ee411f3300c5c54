// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/uptime/SessionPlan.h"
#include "ui/uptime/TimelineLayout.h"

#include <QDateTime>
#include <QFont>
#include <QImage>
#include <QPalette>

class QPainter;

/// Draws a time line of sessions once. What it is made with must live as long. Thread: main.
class TimelinePainter
{
public:
    struct Look
    {
        QPalette palette;
        QFont caption;
        QDateTime now;
        QImage raster;    ///< Of the plan's raster; null where there are rows.
        int hovered = -1; ///< The lane that is set off lightly; -1 for none.
        int current = -1; ///< The lane with a frame; -1 for none.
    };

    TimelinePainter(QPainter& painter, const SessionPlan& plan, const TimelineLayout& layout,
                    const Look& look);

    void paint();

private:
    void paintRows();
    void paintRowLabels();
    void paintRowHours();
    void paintEachPart(void (TimelinePainter::*step)(int, const SessionPart&));
    void paintPart(int row, const SessionPart& part);
    void paintPartText(int row, const SessionPart& part);
    void paintGoingOn(const QPointF& tip, const QPointF& across, const QPointF& along);
    void paintRaster();
    void paintRasterHours();
    void paintRasterDays();
    void paintLegend();
    void paintLane(int lane);

    QPainter& m_painter;
    const SessionPlan& m_plan;
    const TimelineLayout& m_layout;
    const Look& m_look;
};
