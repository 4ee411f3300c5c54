// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"

#include <QWidget>

#include <functional>

class ScaleLegend;

/// Counts in rows and columns as a grid of coloured cells between labels, with the colours' scale
/// below. A cell without a count is empty. Hovering tells what a cell holds; so do the arrow keys,
/// which move a ring from cell to cell. Thread: main.
class HeatGrid : public QWidget
{
    Q_OBJECT

public:
    /// `unit` names what is counted ("Keys"); `describe` tells of a cell what its tool tip says.
    HeatGrid(const QString& unit, std::function<QString(int row, int column)> describe,
             QWidget* parent = nullptr);

    /// A label to each row and to each column; empty where a column has none, whose room the label
    /// before may use.
    void setLabels(const QStringList& rows, const QStringList& columns);

    /// Row by row; as many as the labels' rows times columns.
    void setCounts(const QList<qint64>& counts);

    qint64 count(int row, int column) const;

    qint64 sum() const { return m_sum; }

    /// The cell under a point of the widget: its place in the counts; -1 where there is none.
    int cellAt(const QPointF& position) const;

    QRectF cellArea(int cell) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int rows() const;
    int columns() const;
    QRectF gridArea() const;
    QString describe(int cell) const;
    void showFocused();
    void placeLegend();
    void paintLabels(QPainter& painter) const;
    void paintCell(QPainter& painter, int cell) const;

    std::function<QString(int row, int column)> m_describe;
    QStringList m_rowLabels;
    QStringList m_columnLabels;
    QList<qint64> m_counts;
    qint64 m_sum = 0;
    QuantityScale m_scale;
    int m_focused = 0;
    ScaleLegend* m_legend;
};
