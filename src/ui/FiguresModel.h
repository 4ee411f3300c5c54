// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

/// Rows of any figures under headers: the data of a card with more than one figure to a label.
/// Raw values are under `CountsModel::SortRole`. Thread: main.
class FiguresModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Column
    {
        QString header;
        std::function<QString(const QVariant& raw)> text; ///< As shown; null for a text as it is.
        Qt::Alignment alignment = Qt::AlignRight | Qt::AlignVCenter;
    };

    using Row = QList<QVariant>; ///< One raw value to a column.

    explicit FiguresModel(const QList<Column>& columns, QObject* parent = nullptr);

    /// A column of text, left-aligned; one of numbers; one of durations in seconds; one of bytes;
    /// one of days.
    static Column textColumn(const QString& header);
    static Column countColumn(const QString& header);
    static Column durationColumn(const QString& header);
    static Column bytesColumn(const QString& header);
    static Column dayColumn(const QString& header);

    /// Of times to the minute, left-aligned.
    static Column momentColumn(const QString& header);

    /// Of a course: days, or the hours of one day as numbers, or names as they are.
    static Column timeColumn(const QString& header);

    /// Replaces the columns, and drops the rows.
    void setColumns(const QList<Column>& columns);

    void setRows(const QList<Row>& rows);
    const QList<Row>& rows() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QList<Column> m_columns;
    QList<Row> m_rows;
};
