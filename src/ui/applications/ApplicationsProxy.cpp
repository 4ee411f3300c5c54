// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationsProxy.h"

#include "ui/applications/ApplicationsModel.h"

#include <QRegularExpression>

ApplicationsProxy::ApplicationsProxy(const ApplicationsModel& model, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_model(model)
{
}

bool ApplicationsProxy::filterAcceptsRow(int sourceRow, const QModelIndex&) const
{
    const QRegularExpression filter = filterRegularExpression();
    return m_model.name(sourceRow).contains(filter) ||
           m_model.application(sourceRow).path.contains(filter);
}

bool ApplicationsProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const int byValue = m_model.compare(left.row(), right.row(), left.column());
    if (byValue != 0) {
        return byValue < 0;
    }
    const int byName = m_model.compare(left.row(), right.row(), ApplicationsModel::NameColumn);
    const int order = byName != 0
                          ? byName
                          : m_model.compare(left.row(), right.row(), ApplicationsModel::PathColumn);
    // A descending order asks the other way round.
    return sortOrder() == Qt::AscendingOrder ? order < 0 : order > 0;
}
