// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RankingView.h"

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/Theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int LeastRows = 5;
constexpr int RowsReadOut = 8;
constexpr int BarHeight = 8;

} // namespace

RankingView::RankingView(CountsModel* model, QString emptyText, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_emptyText(std::move(emptyText))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumHeight(rowHeight() * LeastRows);
    const auto follow = [this] {
        updateAccessibleText();
        update();
    };
    connect(model, &QAbstractItemModel::dataChanged, this, follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, follow);
    updateAccessibleText();
}

QSize RankingView::sizeHint() const
{
    constexpr int characters = 40;
    return {fontMetrics().averageCharWidth() * characters, rowHeight() * LeastRows};
}

int RankingView::rowHeight() const
{
    return fontMetrics().height() + Theme::Rhythm;
}

int RankingView::shownRows() const
{
    return std::min(m_model->rowCount(), height() / rowHeight());
}

QString RankingView::describe(int row) const
{
    const CountsModel::Row& shown = m_model->rows().at(row);
    const QString share = m_model->index(row, CountsModel::ShareColumn).data().toString();
    const QString text =
        tr("%1: %2 (%3 % of those listed)").arg(shown.label, Format::count(shown.count), share);
    return shown.toolTip.isEmpty() ? text : text + QLatin1Char('\n') + shown.toolTip;
}

void RankingView::updateAccessibleText()
{
    QStringList lines;
    for (int row = 0; row < std::min(m_model->rowCount(), RowsReadOut); ++row) {
        lines.append(describe(row));
    }
    setAccessibleDescription(lines.isEmpty() ? m_emptyText : lines.join(QLatin1Char('\n')));
}

bool RankingView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const int row = help->pos().y() / rowHeight();
    if (row < shownRows()) {
        QToolTip::showText(help->globalPos(), describe(row), this,
                           {0, row * rowHeight(), width(), rowHeight()});
    } else {
        QToolTip::hideText();
    }
    return true;
}

int RankingView::labelWidth() const
{
    int widest = 0;
    for (int row = 0; row < shownRows(); ++row) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(m_model->rows().at(row).label));
    }
    // At least a third, so that bars seldom move; at most half, so that they tell something.
    return std::clamp(widest + 1, width() / 3, width() / 2);
}

void RankingView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_model->rowCount() == 0) {
        painter.setPen(Theme::colours(palette()).mutedText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }
    for (int row = 0; row < shownRows(); ++row) {
        paintRow(painter, row, {0, row * rowHeight(), width(), rowHeight()});
    }
}

void RankingView::paintRow(QPainter& painter, int row, const QRect& area) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const CountsModel::Row& shown = m_model->rows().at(row);
    const qint64 largest = std::max<qint64>(1, m_model->rows().constFirst().count);
    const int countWidth = fontMetrics().horizontalAdvance(Format::count(largest));
    const int labelWidth = this->labelWidth();

    painter.setPen(colours.text);
    const QRect label(area.x(), area.y(), labelWidth, area.height());
    painter.drawText(label, Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(shown.label, Qt::ElideRight, labelWidth));
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignRight, Format::count(shown.count));

    const int top = area.center().y() - BarHeight / 2 + 1;
    const QRectF track(labelWidth + Theme::Gap, top,
                       area.width() - labelWidth - countWidth - 2 * Theme::Gap, BarHeight);
    QRectF bar = track;
    bar.setWidth(std::max(2.0, track.width() * static_cast<double>(shown.count) /
                                   static_cast<double>(largest)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.track);
    painter.drawRoundedRect(track, 2, 2);
    painter.setBrush(colours.accent);
    painter.drawRoundedRect(bar, 2, 2);
}
