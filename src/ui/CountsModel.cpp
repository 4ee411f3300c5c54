// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CountsModel.h"

#include "base/Format.h"

#include <QLocale>

#include <algorithm>
#include <numeric>

CountsModel::CountsModel(QString labelHeader, QString countHeader, Shares shares, QObject* parent)
    : QAbstractTableModel(parent)
    , m_labelHeader(std::move(labelHeader))
    , m_countHeader(std::move(countHeader))
    , m_shares(shares)
{
}

void CountsModel::setRows(const QList<Row>& rows)
{
    if (rows == m_rows) {
        return;
    }
    const auto before = static_cast<int>(m_rows.size());
    const auto after = static_cast<int>(rows.size());
    m_sum = std::accumulate(rows.begin(), rows.end(), qint64(0),
                            [](qint64 sum, const Row& row) { return sum + row.count; });
    if (after < before) {
        beginRemoveRows({}, after, before - 1);
        m_rows.resize(after);
        endRemoveRows();
    }
    replaceCommonRows(rows);
    if (after > before) {
        beginInsertRows({}, before, after - 1);
        m_rows = rows;
        endInsertRows();
    }
}

void CountsModel::replaceCommonRows(const QList<Row>& rows)
{
    const auto common = static_cast<int>(std::min(rows.size(), m_rows.size()));
    if (common == 0) {
        return;
    }
    std::copy_n(rows.begin(), common, m_rows.begin());
    // A share changes with the sum, so with any row.
    Q_EMIT dataChanged(index(0, 0), index(common - 1, columnCount() - 1));
}

const QList<CountsModel::Row>& CountsModel::rows() const
{
    return m_rows;
}

qint64 CountsModel::sum() const
{
    return m_sum;
}

int CountsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CountsModel::columnCount(const QModelIndex& parent) const
{
    if (parent.isValid()) {
        return 0;
    }
    return m_shares == Shares::Shown ? ShareColumn + 1 : CountColumn + 1;
}

QVariant CountsModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row& row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(row, index.column());
    case Qt::ToolTipRole:
        return index.column() == LabelColumn && !row.toolTip.isEmpty() ? QVariant(row.toolTip)
                                                                       : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(
            (index.column() == LabelColumn ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case SortRole:
        return raw(row, index.column());
    default:
        return {};
    }
}

QVariant CountsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue((section == LabelColumn ? Qt::AlignLeft : Qt::AlignRight) |
                                   Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case LabelColumn:
        return m_labelHeader;
    case CountColumn:
        return m_countHeader;
    default:
        return tr("Share (%)");
    }
}

QString CountsModel::text(const Row& row, int column) const
{
    switch (column) {
    case LabelColumn:
        return row.label;
    case CountColumn:
        return Format::count(row.count);
    default:
        return QLocale::c().toString(share(row), 'f', 1);
    }
}

QVariant CountsModel::raw(const Row& row, int column) const
{
    switch (column) {
    case LabelColumn:
        return row.label;
    case CountColumn:
        return row.count;
    default:
        return share(row);
    }
}

double CountsModel::share(const Row& row) const
{
    constexpr double percent = 100.0;
    return m_sum == 0 ? 0.0 : percent * static_cast<double>(row.count) / static_cast<double>(m_sum);
}
