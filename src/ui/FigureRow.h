// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class FigureTile;
class QGridLayout;

/// Tiles side by side, all in one row where there is room, else in rows of three. Thread: main.
class FigureRow : public QWidget
{
    Q_OBJECT

public:
    /// Each tile has room for `lines` lines below its figure.
    explicit FigureRow(int lines, QWidget* parent = nullptr);

    /// Adds a tile at the end, which the row owns.
    FigureTile* add(const QString& title);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    int m_lines;
    QGridLayout* m_grid;
    QList<FigureTile*> m_tiles;
    int m_columns = 0; ///< As last arranged.
};
