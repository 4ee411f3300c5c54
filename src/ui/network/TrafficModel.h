// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CountsModel.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QSet>
#include <QVariantList>

#include <functional>

/// Things with the bytes that crossed them, a row each. Rows are matched by key: new figures
/// change, add and remove rows, so that views keep selection and place. Thread: main.
class TrafficModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum class Kind
    {
        Text,
        LongText, ///< Shares the room that is left with the first column.
        Number,
        Bytes,
        Share, ///< 0 to 1.
        Time,  ///< A QDateTime.
    };

    struct Column
    {
        QString header;
        Kind kind = Kind::Text;
    };

    struct Row
    {
        QString key;
        QVariantList cells; ///< One raw value to a column.
        QString toolTip;    ///< Of the first cell; may be empty.
        friend bool operator==(const Row&, const Row&) = default;
    };

    enum Role
    {
        SortRole = CountsModel::SortRole, ///< Raw values.
        KeyRole,
        ExcludedRole, ///< Whether it is no longer counted.
    };

    explicit TrafficModel(const QList<Column>& columns, QObject* parent = nullptr);

    void setRows(const QList<Row>& rows);
    void setExcluded(const QSet<QString>& keys);

    bool isExcluded(const QString& key) const { return m_excluded.contains(key); }

    Kind kind(int column) const { return m_columns.at(column).kind; }

    /// Finds the icon of a row by its key.
    void setIcons(std::function<QIcon(const QString& key)> icons);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Has all cells read anew.
    void touch();

private:
    QString text(const Row& row, int column) const;
    QString toolTip(const Row& row, int column) const;
    QVariant raw(const Row& row, int column) const;

    QList<Column> m_columns;
    QList<Row> m_rows;
    QSet<QString> m_excluded;
    std::function<QIcon(const QString& key)> m_icons;
};
