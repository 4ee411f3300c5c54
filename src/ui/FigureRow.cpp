// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FigureRow.h"

#include "ui/FigureTile.h"
#include "ui/Theme.h"

#include <QGridLayout>

#include <algorithm>

namespace {

constexpr int FewColumns = 3;

} // namespace

FigureRow::FigureRow(int lines, QWidget* parent)
    : QWidget(parent)
    , m_lines(lines)
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(Theme::Gap);
    m_grid->setVerticalSpacing(Theme::Gap);
}

FigureTile* FigureRow::add(const QString& title)
{
    auto* tile = new FigureTile(title, m_lines, this);
    m_tiles.append(tile);
    m_columns = 0;
    arrange();
    return tile;
}

QSize FigureRow::minimumSizeHint() const
{
    // Fewer columns must stay possible when there are many now.
    const QSize hint = QWidget::minimumSizeHint();
    const int tile = m_tiles.isEmpty() ? 0 : m_tiles.constFirst()->minimumWidth();
    return {FewColumns * tile + (FewColumns - 1) * Theme::Gap, hint.height()};
}

void FigureRow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void FigureRow::arrange()
{
    const auto all = static_cast<int>(m_tiles.size());
    int widest = 0;
    for (const FigureTile* tile : std::as_const(m_tiles)) {
        widest = std::max(widest, tile->minimumWidth());
    }
    const bool fits = all * widest + (all - 1) * Theme::Gap <= width();
    const int columns = fits ? all : std::min(all, FewColumns);
    if (columns == m_columns) {
        return;
    }
    m_columns = columns;
    for (int i = 0; i < all; ++i) {
        m_grid->addWidget(m_tiles.at(i), i / columns, i % columns);
    }
    for (int column = 0; column < all; ++column) {
        m_grid->setColumnStretch(column, column < columns ? 1 : 0);
    }
    updateGeometry();
}
