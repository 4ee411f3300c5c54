// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FiguresModel.h"

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/PlainText.h"

#include <QDate>

namespace {

constexpr int RoomyText = 24; ///< Characters; a longer text may be cut where it is shown.

} // namespace

FiguresModel::FiguresModel(const QList<Column>& columns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_columns(columns)
{
}

FiguresModel::Column FiguresModel::textColumn(const QString& header)
{
    return {.header = header, .text = nullptr, .alignment = Qt::AlignLeft | Qt::AlignVCenter};
}

FiguresModel::Column FiguresModel::countColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return Format::count(raw.toLongLong()); }};
}

FiguresModel::Column FiguresModel::timeColumn(const QString& header)
{
    const auto text = [](const QVariant& raw) {
        switch (raw.typeId()) {
        case QMetaType::QDate:
            return Format::day(raw.toDate());
        case QMetaType::Int:
            return Format::hour(raw.toInt());
        default:
            return raw.toString();
        }
    };
    return {.header = header, .text = text, .alignment = Qt::AlignLeft | Qt::AlignVCenter};
}

FiguresModel::Column FiguresModel::durationColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return Format::duration(raw.toLongLong()); }};
}

FiguresModel::Column FiguresModel::bytesColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return Format::bytes(raw.toULongLong()); }};
}

FiguresModel::Column FiguresModel::momentColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return Format::moment(raw.toDateTime()); },
            .alignment = Qt::AlignLeft | Qt::AlignVCenter};
}

FiguresModel::Column FiguresModel::dayColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return Format::day(raw.toDate()); }};
}

void FiguresModel::setColumns(const QList<Column>& columns)
{
    beginResetModel();
    m_columns = columns;
    m_rows.clear();
    endResetModel();
}

void FiguresModel::setRows(const QList<Row>& rows)
{
    if (rows == m_rows) {
        return;
    }
    if (rows.size() == m_rows.size()) {
        // The view keeps its selection and its place.
        m_rows = rows;
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        return;
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

const QList<FiguresModel::Row>& FiguresModel::rows() const
{
    return m_rows;
}

int FiguresModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int FiguresModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant FiguresModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Column& column = m_columns.at(index.column());
    const QVariant& raw = m_rows.at(index.row()).at(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return column.text ? column.text(raw) : raw.toString();
    case Qt::ToolTipRole:
        return raw.typeId() == QMetaType::QString && raw.toString().size() > RoomyText
                   ? PlainText::toolTip(raw.toString())
                   : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(column.alignment);
    case CountsModel::SortRole:
        return raw;
    default:
        return {};
    }
}

QVariant FiguresModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size()) {
        return {};
    }
    if (role == Qt::DisplayRole) {
        return m_columns.at(section).header;
    }
    return role == Qt::TextAlignmentRole ? QVariant::fromValue(m_columns.at(section).alignment)
                                         : QVariant();
}
