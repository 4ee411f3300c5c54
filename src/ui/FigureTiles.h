// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FigureRow.h"
#include "ui/FiguresModel.h"

/// A row of figures that are set all at once, each with a remark below, and the same as a table.
/// Thread: main.
class FigureTiles : public FigureRow
{
    Q_OBJECT

public:
    struct Tile
    {
        QString caption;
        QString figure; ///< "12.4 km": what is no number is drawn smaller.
        QString note;   ///< Below the figure; may be empty.
        QString inFull; ///< What hovering tells; empty where the figure says it all.
    };

    /// Has room for `most` tiles.
    explicit FigureTiles(int most, QWidget* parent = nullptr);

    void setTiles(const QList<Tile>& tiles);

    /// What was set, as a table.
    FiguresModel* model() const { return m_model; }

private:
    QList<FigureTile*> m_tiles;
    FiguresModel* m_model;
};
