// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/TrafficModel.h"

#include "base/Format.h"
#include "ui/Theme.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QHash>
#include <QLocale>

#include <utility>

namespace {

QString minuteText(const QDateTime& time)
{
    constexpr int secondsLength = 3;
    return time.isValid() ? Format::isoDateTime(time).chopped(secondsLength) : QString();
}

} // namespace

TrafficModel::TrafficModel(const QList<Column>& columns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_columns(columns)
{
}

void TrafficModel::setRows(const QList<Row>& rows)
{
    QHash<QString, qsizetype> wanted;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        wanted.insert(rows.at(i).key, i);
    }
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (!wanted.contains(m_rows.at(row).key)) {
            beginRemoveRows({}, row, row);
            m_rows.removeAt(row);
            endRemoveRows();
        }
    }
    bool isChanged = false;
    for (Row& row : m_rows) {
        const Row& now = rows.at(wanted.take(row.key));
        isChanged = isChanged || row != now;
        row = now;
    }
    if (isChanged) {
        touch();
    }
    if (wanted.isEmpty()) {
        return;
    }
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(wanted.size()) - 1);
    for (const Row& row : rows) {
        if (wanted.contains(row.key)) {
            m_rows.append(row);
        }
    }
    endInsertRows();
}

void TrafficModel::setExcluded(const QSet<QString>& keys)
{
    m_excluded = keys;
    touch();
}

void TrafficModel::setIcons(std::function<QIcon(const QString& key)> icons)
{
    m_icons = std::move(icons);
    touch();
}

void TrafficModel::touch()
{
    if (!m_rows.isEmpty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

int TrafficModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int TrafficModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant TrafficModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row& row = m_rows.at(index.row());
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return text(row, column);
    case Qt::ToolTipRole:
        return toolTip(row, column);
    case Qt::TextAlignmentRole:
        return headerData(column, Qt::Horizontal, role);
    case Qt::DecorationRole:
        return column == 0 && m_icons ? QVariant(m_icons(row.key)) : QVariant();
    case Qt::ForegroundRole:
        return isExcluded(row.key) ? QVariant(Theme::colours(QGuiApplication::palette()).mutedText)
                                   : QVariant();
    case SortRole:
        return raw(row, column);
    case KeyRole:
        return row.key;
    case ExcludedRole:
        return isExcluded(row.key);
    default:
        return {};
    }
}

QString TrafficModel::text(const Row& row, int column) const
{
    const QVariant& cell = row.cells.at(column);
    switch (m_columns.at(column).kind) {
    case Kind::Text:
        return column == 0 && isExcluded(row.key) ? tr("%1 (not counted)").arg(cell.toString())
                                                  : cell.toString();
    case Kind::LongText:
    case Kind::Number:
        return cell.toString();
    case Kind::Bytes:
        return Format::bytes(cell.toULongLong());
    case Kind::Share: {
        constexpr double percent = 100;
        return QLocale::c().toString(percent * cell.toDouble(), 'f', 1);
    }
    case Kind::Time:
        return minuteText(cell.toDateTime());
    }
    Q_UNREACHABLE();
}

QString TrafficModel::toolTip(const Row& row, int column) const
{
    if (m_columns.at(column).kind == Kind::Bytes) {
        return tr("%1 bytes").arg(Format::count(row.cells.at(column).toLongLong()));
    }
    return column == 0 && !row.toolTip.isEmpty() ? row.toolTip : text(row, column);
}

QVariant TrafficModel::raw(const Row& row, int column) const
{
    return m_columns.at(column).kind == Kind::Time
               ? QVariant(minuteText(row.cells.at(column).toDateTime()))
               : row.cells.at(column);
}

QVariant TrafficModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size()) {
        return {};
    }
    const Column& column = m_columns.at(section);
    const bool isLeft =
        column.kind == Kind::Text || column.kind == Kind::LongText || column.kind == Kind::Time;
    switch (role) {
    case Qt::DisplayRole:
        return column.kind == Kind::Share ? tr("%1 (%)").arg(column.header) : column.header;
    case SortRole: // Of raw values.
        return column.kind == Kind::Bytes ? tr("%1 (bytes)").arg(column.header) : column.header;
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(isLeft ? Qt::AlignLeft : Qt::AlignRight) |
                                   Qt::AlignVCenter);
    default:
        return {};
    }
}
