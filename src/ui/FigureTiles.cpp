// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigureTiles.h"

#include "ui/FigureTile.h"

FigureTiles::FigureTiles(int most, QWidget* parent)
    : FigureRow(1, parent)
    , m_model(new FiguresModel({FiguresModel::textColumn(tr("Figure")),
                                FiguresModel::textColumn(tr("Value")),
                                FiguresModel::textColumn(tr("Remark"))},
                               this))
{
    for (int i = 0; i < most; ++i) {
        m_tiles.append(add({}));
    }
}

void FigureTiles::setTiles(const QList<Tile>& tiles)
{
    QList<FiguresModel::Row> rows;
    for (qsizetype i = 0; i < m_tiles.size(); ++i) {
        const bool isUsed = i < tiles.size();
        m_tiles.at(i)->setVisible(isUsed);
        if (!isUsed) {
            continue;
        }
        const Tile& tile = tiles.at(i);
        const QString inFull = tile.inFull.isEmpty() ? tile.figure : tile.inFull;
        m_tiles.at(i)->setTitle(tile.caption);
        m_tiles.at(i)->setFigure(tile.figure, inFull);
        m_tiles.at(i)->setLines({{.lead = {}, .text = tile.note, .inFull = tile.note}});
        rows.append({tile.caption, inFull, tile.note});
    }
    m_model->setRows(rows);
}
