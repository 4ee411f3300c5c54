// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QString>

/// Labels with a count each: the data of one card, read by its picture, its table, its export and
/// the screen reader alike. Thread: main.
class CountsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Row
    {
        QString label;
        QString toolTip; ///< What the label stands for in full; empty where it says it all.
        qint64 count = 0;
        friend bool operator==(const Row&, const Row&) = default;
    };

    enum Column
    {
        NoColumn = -1, ///< To sort by: the order of the rows as they are.
        LabelColumn,
        CountColumn,
        ShareColumn, ///< Of the sum of all rows; only where parts of a whole are counted.
    };

    enum class Shares
    {
        None,
        Shown,
    };

    /// The raw value of a cell, to sort and export by.
    static constexpr int SortRole = Qt::UserRole;

    CountsModel(QString labelHeader, QString countHeader, Shares shares, QObject* parent = nullptr);

    /// Replaces the rows, telling views of no more than what differs.
    void setRows(const QList<Row>& rows);
    const QList<Row>& rows() const;
    qint64 sum() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QString text(const Row& row, int column) const;
    QVariant raw(const Row& row, int column) const;
    double share(const Row& row) const;
    void replaceCommonRows(const QList<Row>& rows);

    QString m_labelHeader;
    QString m_countHeader;
    Shares m_shares;
    QList<Row> m_rows;
    qint64 m_sum = 0;
};
