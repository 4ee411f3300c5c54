// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/ProgressDelegate.h"

#include "ui/CountsModel.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int BarWidth = 96;
constexpr int BarHeight = Theme::Rhythm;
constexpr qreal BarCorner = BarHeight / 2.0;

} // namespace

void ProgressDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    QStyleOptionViewItem ground = option;
    initStyleOption(&ground, index);
    ground.text.clear();
    const QWidget* widget = option.widget;
    (widget ? widget->style() : QApplication::style())
        ->drawControl(QStyle::CE_ItemViewItem, &ground, painter, widget);

    const double share = index.data(CountsModel::SortRole).toDouble();
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const Theme::Colours colours = Theme::colours(option.palette);
    const QColor ink =
        isSelected ? option.palette.color(QPalette::HighlightedText) : colours.accent;
    QRectF bar(option.rect.left() + Theme::Rhythm / 2.0, option.rect.center().y() - BarHeight / 2.0,
               BarWidth, BarHeight);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    QColor track = ink;
    track.setAlphaF(0.2F);
    painter->setBrush(track);
    painter->drawRoundedRect(bar, BarCorner, BarCorner);
    bar.setWidth(BarWidth * share);
    painter->setBrush(ink);
    painter->drawRoundedRect(bar, BarCorner, BarCorner);
    painter->setPen(isSelected ? option.palette.color(QPalette::HighlightedText) : colours.text);
    painter->drawText(option.rect.adjusted(BarWidth + 2 * Theme::Rhythm, 0, 0, 0),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      QStringLiteral("%1 %").arg(static_cast<int>(100 * share)));
    painter->restore();
}

QSize ProgressDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    const int text = option.fontMetrics.horizontalAdvance(QStringLiteral("100 %"));
    return {BarWidth + text + 3 * Theme::Rhythm, option.fontMetrics.height()};
}
