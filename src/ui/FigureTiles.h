// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FiguresModel.h"

#include <QWidget>

class QLabel;

/// A few figures of equal rank side by side, each with what it is above and a remark below. Thread:
/// main.
class FigureTiles : public QWidget
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

    /// Shows `count` tiles from the first `setTiles` on.
    explicit FigureTiles(int count, QWidget* parent = nullptr);

    /// As many as there is room for were made with.
    void setTiles(const QList<Tile>& tiles);

    /// What was set, as a table.
    FiguresModel* model() const { return m_model; }

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Labels
    {
        QLabel* caption;
        QLabel* figure;
        QLabel* note;
    };

    static QString markedUp(const QString& figure);
    void follow();
    void applyTheme();

    QList<Tile> m_tiles;
    QList<Labels> m_labels;
    FiguresModel* m_model;
};
