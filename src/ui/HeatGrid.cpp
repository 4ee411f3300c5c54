// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HeatGrid.h"

#include "ui/Ramp.h"
#include "ui/ScaleLegend.h"
#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <numeric>

namespace {

constexpr int LeastCell = 16;
constexpr double CellGap = 2;
constexpr double CellCorner = 3;

} // namespace

HeatGrid::HeatGrid(const QString& unit, std::function<QString(int row, int column)> describe,
                   QWidget* parent)
    : QWidget(parent)
    , m_describe(std::move(describe))
    , m_legend(new ScaleLegend(unit, this))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setFont(Theme::font(Theme::TextSize::Caption));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void HeatGrid::setLabels(const QStringList& rows, const QStringList& columns)
{
    if (rows == m_rowLabels && columns == m_columnLabels) {
        return;
    }
    m_rowLabels = rows;
    m_columnLabels = columns;
    m_counts = QList<qint64>(rows.size() * columns.size(), 0);
    m_sum = 0;
    m_focused = 0;
    updateGeometry();
    update();
}

void HeatGrid::setCounts(const QList<qint64>& counts)
{
    Q_ASSERT(counts.size() == m_counts.size());
    if (counts == m_counts) {
        return;
    }
    m_counts = counts;
    m_sum = std::accumulate(counts.begin(), counts.end(), qint64(0));
    const auto largest = std::max_element(counts.begin(), counts.end());
    m_scale = {largest == counts.end() ? 0 : *largest, m_scale.form()};
    m_legend->setScale(m_scale);
    placeLegend();
    update();
}

int HeatGrid::rows() const
{
    return static_cast<int>(m_rowLabels.size());
}

int HeatGrid::columns() const
{
    return static_cast<int>(m_columnLabels.size());
}

qint64 HeatGrid::count(int row, int column) const
{
    return m_counts.at(row * columns() + column);
}

QSize HeatGrid::minimumSizeHint() const
{
    const QMargins around(fontMetrics().horizontalAdvance(QStringLiteral("Www")) + Theme::Rhythm,
                          fontMetrics().height(), 0, Theme::Rhythm + m_legend->sizeHint().height());
    return QSize(columns() * LeastCell, rows() * LeastCell).grownBy(around);
}

QSize HeatGrid::sizeHint() const
{
    return minimumSizeHint();
}

QRectF HeatGrid::gridArea() const
{
    int labelWidth = 0;
    for (const QString& label : m_rowLabels) {
        labelWidth = std::max(labelWidth, fontMetrics().horizontalAdvance(label));
    }
    return QRectF(rect()).adjusted(labelWidth + Theme::Rhythm, fontMetrics().height() + 2, 0,
                                   -m_legend->sizeHint().height() - Theme::Rhythm);
}

QRectF HeatGrid::cellArea(int cell) const
{
    const QRectF grid = gridArea();
    const double width = grid.width() / columns();
    const double height = grid.height() / rows();
    const int row = cell / columns();
    const int column = cell % columns();
    return QRectF(grid.left() + column * width, grid.top() + row * height, width, height)
        .adjusted(0, 0, -CellGap, -CellGap);
}

int HeatGrid::cellAt(const QPointF& position) const
{
    const QRectF grid = gridArea();
    if (m_counts.isEmpty() || !grid.contains(position)) {
        return -1;
    }
    const QPointF inside = position - grid.topLeft();
    const int column = static_cast<int>(inside.x() / grid.width() * columns());
    const int row = static_cast<int>(inside.y() / grid.height() * rows());
    return std::min(row, rows() - 1) * columns() + std::min(column, columns() - 1);
}

QString HeatGrid::describe(int cell) const
{
    return m_describe(cell / columns(), cell % columns());
}

bool HeatGrid::event(QEvent* event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(Theme::font(Theme::TextSize::Caption));
        placeLegend();
    }
    return QWidget::event(event);
}

void HeatGrid::keyPressEvent(QKeyEvent* event)
{
    if (m_counts.isEmpty()) {
        return QWidget::keyPressEvent(event);
    }
    int row = m_focused / columns();
    int column = m_focused % columns();
    switch (event->key()) {
    case Qt::Key_Left:
        --column;
        break;
    case Qt::Key_Right:
        ++column;
        break;
    case Qt::Key_Up:
        --row;
        break;
    case Qt::Key_Down:
        ++row;
        break;
    default:
        return QWidget::keyPressEvent(event);
    }
    m_focused = std::clamp(row, 0, rows() - 1) * columns() + std::clamp(column, 0, columns() - 1);
    showFocused();
}

void HeatGrid::showFocused()
{
    update();
    setAccessibleDescription(describe(m_focused));
    QToolTip::showText(mapToGlobal(cellArea(m_focused).bottomRight().toPoint()),
                       describe(m_focused), this);
}

void HeatGrid::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    const bool isByKey =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByKey && !m_counts.isEmpty()) {
        showFocused();
    }
}

void HeatGrid::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    update();
}

void HeatGrid::mouseMoveEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position());
    if (cell < 0) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(event->globalPosition().toPoint(), describe(cell), this);
    }
}

void HeatGrid::mousePressEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position());
    if (cell >= 0) {
        m_focused = cell;
        update();
    }
    QWidget::mousePressEvent(event);
}

void HeatGrid::leaveEvent(QEvent* event)
{
    QToolTip::hideText();
    QWidget::leaveEvent(event);
}

void HeatGrid::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeLegend();
}

void HeatGrid::placeLegend()
{
    const QSize size = m_legend->sizeHint();
    m_legend->setGeometry(static_cast<int>(gridArea().left()), height() - size.height(),
                          size.width(), size.height());
}

void HeatGrid::paintLabels(QPainter& painter) const
{
    painter.setPen(Theme::colours(palette()).mutedText);
    const QRectF grid = gridArea();
    const double cellHeight = grid.height() / rows();
    for (int row = 0; row < rows(); ++row) {
        const QRectF place(0, grid.top() + row * cellHeight, grid.left() - Theme::Rhythm,
                           cellHeight - CellGap);
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, m_rowLabels.at(row));
    }
    const double cellWidth = grid.width() / columns();
    for (int column = 0; column < columns(); ++column) {
        const QRectF place(grid.left() + column * cellWidth, 0, grid.width(), grid.top());
        painter.drawText(place, Qt::AlignLeft | Qt::AlignTop, m_columnLabels.at(column));
    }
}

void HeatGrid::paintCell(QPainter& painter, int cell) const
{
    const qint64 held = m_counts.at(cell);
    painter.setPen(Qt::NoPen);
    painter.setBrush(held == 0 ? Theme::colours(palette()).track
                               : Ramp::quantity(m_scale.share(held), palette()));
    painter.drawRoundedRect(cellArea(cell), CellCorner, CellCorner);
}

void HeatGrid::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintLabels(painter);
    for (int cell = 0; cell < m_counts.size(); ++cell) {
        paintCell(painter, cell);
    }
    if (hasFocus() && !m_counts.isEmpty()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Theme::colours(palette()).text, 2));
        painter.drawRoundedRect(cellArea(m_focused), CellCorner, CellCorner);
    }
}
