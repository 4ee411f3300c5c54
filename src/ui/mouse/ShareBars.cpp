// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ShareBars.h"

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int BarHeight = 8;
constexpr int UsualRows = 4;
constexpr int HighestRow = 72;

} // namespace

ShareBars::ShareBars(CountsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setMinimumHeight(UsualRows * leastRowHeight());
    connect(model, &QAbstractItemModel::dataChanged, this, &ShareBars::follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, &ShareBars::follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &ShareBars::follow);
}

void ShareBars::setEmptyText(const QString& text)
{
    m_emptyText = text;
    follow();
}

QSize ShareBars::sizeHint() const
{
    constexpr int characters = 24;
    return {fontMetrics().averageCharWidth() * characters, UsualRows * leastRowHeight()};
}

int ShareBars::leastRowHeight() const
{
    return fontMetrics().height() + BarHeight + Theme::Gap + Theme::Rhythm / 2;
}

int ShareBars::rowHeight() const
{
    return std::clamp(height() / UsualRows, leastRowHeight(),
                      std::max(HighestRow, leastRowHeight()));
}

QString ShareBars::figures(int row) const
{
    return tr("%1 (%2 %)")
        .arg(m_model->index(row, CountsModel::CountColumn).data().toString(),
             m_model->index(row, CountsModel::ShareColumn).data().toString());
}

void ShareBars::follow()
{
    QStringList lines;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        lines.append(m_model->rows().at(row).label + QStringLiteral(": ") + figures(row));
    }
    setAccessibleDescription(m_model->sum() == 0 ? m_emptyText : lines.join(QLatin1Char('\n')));
    update();
}

void ShareBars::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_model->sum() == 0) {
        painter.setPen(Theme::colours(palette()).mutedText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }
    qint64 largest = 1;
    for (const CountsModel::Row& row : m_model->rows()) {
        largest = std::max(largest, row.count);
    }
    for (int row = 0; row < m_model->rowCount(); ++row) {
        paintRow(painter, row, largest);
    }
}

void ShareBars::paintRow(QPainter& painter, int row, qint64 largest) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const CountsModel::Row& shown = m_model->rows().at(row);
    const QRect text(0, row * rowHeight(), width(), fontMetrics().height());
    painter.setPen(colours.text);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, shown.label);
    painter.drawText(text, Qt::AlignRight | Qt::AlignVCenter, figures(row));

    constexpr double rounding = 2;
    const QRectF track(0, text.bottom() + Theme::Rhythm / 2.0, width(), BarHeight);
    QRectF bar = track;
    bar.setWidth(track.width() * static_cast<double>(shown.count) / static_cast<double>(largest));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.track);
    painter.drawRoundedRect(track, rounding, rounding);
    if (shown.count > 0) {
        bar.setWidth(std::max(rounding, bar.width()));
        painter.setBrush(colours.accent);
        painter.drawRoundedRect(bar, rounding, rounding);
    }
}
