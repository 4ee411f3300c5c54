// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"

#include <QList>
#include <QPoint>
#include <QRectF>
#include <QSize>

#include <vector>

/// How densely each place of the screens was clicked on. Places are in sizes of the primary screen.
/// Empty where there are no cells. Plain value; thread: any.
class ClickDensity
{
public:
    struct Screen
    {
        QRectF place;
        QPoint firstCell;
        QSize size;                 ///< In cells.
        std::vector<float> clicks;  ///< Of each cell, by rows, as counted.
        std::vector<float> density; ///< The same clicks spread over the cells around.

        qint64 sum() const;
    };

    /// A ninth of a screen.
    struct Region
    {
        QRectF screen;
        int column = 0; ///< 0 to 2
        int row = 0;    ///< 0 to 2
        qint64 clicks = 0;
    };

    /// "Near" a place is what lies in a circle of so many cells' width.
    static constexpr double NearCells = 3;

    ClickDensity() = default;

    /// `present` are the screens there are now. Cells so far out that no desk has a screen there
    /// are left out.
    ClickDensity(const QList<ClickCell>& cells, const QList<QRectF>& present);

    const QList<Screen>& screens() const { return m_screens; }

    /// What all screens cover.
    QRectF bounds() const;

    qint64 clicks() const { return m_clicks; }

    /// The largest density of a cell, in clicks.
    double largest() const { return m_largest; }

    qint64 clicksNear(const QPointF& place) const;

    /// All regions, screen by screen, in reading order.
    QList<Region> regions() const;

private:
    void addScreen(const QRectF& place);
    void addCell(const ClickCell& cell);

    QList<Screen> m_screens;
    qint64 m_clicks = 0;
    double m_largest = 0;
};
