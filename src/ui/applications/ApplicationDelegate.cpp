// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationDelegate.h"

#include "ui/Theme.h"
#include "ui/applications/ApplicationsModel.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int LeastNoteWidth = 8 * Theme::Rhythm; ///< Below it, a note would only be an ellipsis.

} // namespace

void ApplicationDelegate::initStyleOption(QStyleOptionViewItem* option,
                                          const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(ApplicationsModel::ExcludedRole).toBool()) {
        option->palette.setColor(QPalette::Text, Theme::colours(option->palette).mutedText);
    }
}

void ApplicationDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (index.column() != ApplicationsModel::NameColumn) {
        return;
    }
    const QString note = index.data(ApplicationsModel::NoteRole).toString();
    if (note.isEmpty()) {
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QStyle& style = *(cell.widget != nullptr ? cell.widget->style() : QApplication::style());
    QRect area = style.subElementRect(QStyle::SE_ItemViewItemText, &cell, cell.widget);
    area.adjust(cell.fontMetrics.horizontalAdvance(cell.text) + Theme::Gap, 0, -Theme::Rhythm / 2,
                0);
    if (area.width() < LeastNoteWidth) {
        return;
    }
    const bool isSelected = cell.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(isSelected ? cell.palette.color(QPalette::HighlightedText)
                               : Theme::colours(cell.palette).mutedText);
    painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                      cell.fontMetrics.elidedText(note, Qt::ElideMiddle, area.width()));
    painter->restore();
}
