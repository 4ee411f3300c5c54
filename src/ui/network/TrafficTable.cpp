// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/TrafficTable.h"

#include "ui/network/TrafficModel.h"

#include <QHeaderView>
#include <QMenu>
#include <QSortFilterProxyModel>
#include <QTableView>

#include <algorithm>
#include <utility>

namespace {

class AllColumnsProxy final : public QSortFilterProxyModel
{
protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        for (int column = 0; column < sourceModel()->columnCount(); ++column) {
            const QString text = sourceModel()->index(row, column, parent).data().toString();
            if (text.contains(filterRegularExpression())) {
                return true;
            }
        }
        return false;
    }
};

} // namespace

TrafficTable::TrafficTable(TrafficModel& model, const QString& title, int sortColumn, Words words,
                           QWidget* parent)
    : CountsTable(new AllColumnsProxy, &model, title, sortColumn, Qt::DescendingOrder, parent)
    , m_model(model)
    , m_words(std::move(words))
{
    view()->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (int column = 1; column < model.columnCount(); ++column) {
        if (model.kind(column) == TrafficModel::Kind::LongText) {
            view()->horizontalHeader()->setSectionResizeMode(column, QHeaderView::Stretch);
        }
    }
}

QStringList TrafficTable::selectedKeys() const
{
    QModelIndexList rows = view()->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList keys;
    for (const QModelIndex& row : std::as_const(rows)) {
        keys.append(row.data(TrafficModel::KeyRole).toString());
    }
    return keys;
}

void TrafficTable::fillMenu(QMenu& menu)
{
    if (m_words.exclude.isEmpty()) {
        return;
    }
    QStringList excluded;
    QStringList counted;
    for (const QString& key : selectedKeys()) {
        (m_model.isExcluded(key) ? excluded : counted).append(key);
    }
    menu.addSeparator();
    const auto add = [&menu](const QString& text, const QString& name) {
        QAction* action = menu.addAction(text);
        action->setObjectName(name);
        return action;
    };
    if (!counted.isEmpty()) {
        connect(add(m_words.exclude, QStringLiteral("exclude")), &QAction::triggered, this,
                [this, counted] { Q_EMIT exclusionWanted(counted); });
    }
    if (!excluded.isEmpty()) {
        connect(add(m_words.include, QStringLiteral("include")), &QAction::triggered, this,
                [this, excluded] { Q_EMIT inclusionWanted(excluded); });
    }
}
