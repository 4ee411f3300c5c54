// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"
#include "ui/CountsModel.h"
#include "ui/history/HistoryTypes.h"

#include <QAbstractTableModel>
#include <QCollator>
#include <QHash>
#include <QSet>

#include <vector>

class ApplicationLooks;

/// What was counted per application, a row each, with its path as a last column. Rows are matched
/// by path: new figures change, add and remove rows, so that views keep selection and place. Where
/// a view asks for an icon, the icon and the name are found later; see `ApplicationLooks`.
/// Thread: main.
class ApplicationsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        KeysColumn,
        ClicksColumn,
        ScrollsColumn,
        TravelColumn,
        FrontColumn,
        RunningColumn,
        LastUsedColumn,
        PathColumn,
        ColumnCount,
    };

    enum Role
    {
        /// Raw values: counts, travel in metres or feet, times in seconds; headers say so.
        SortRole = CountsModel::SortRole,
        NoteRole,     ///< What stands in grey after the name, or an empty text.
        ExcludedRole, ///< Whether it is no longer counted.
    };

    /// `looks` must live longer.
    explicit ApplicationsModel(ApplicationLooks& looks, QObject* parent = nullptr);

    void setLengths(Format::Lengths lengths);
    void setApplications(const QList<ApplicationTotals>& applications);
    void setExcluded(const QStringList& paths);

    const ApplicationTotals& application(int row) const;
    QString name(int row) const;
    bool isExcluded(const QString& path) const;

    /// The row of an application, or -1.
    int rowOf(const QString& path) const;

    /// Less than 0, 0 or more, by the raw values of a column.
    int compare(int row, int other, int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Row
    {
        ApplicationTotals totals;
        QString name;             ///< As shown.
        QCollatorSortKey nameKey; ///< To sort it by.
    };

    Row makeRow(const ApplicationTotals& totals) const;
    const Row& rowAt(int row) const;
    void removeMissing(const QSet<QString>& present);
    void changeCommon(const QHash<QString, int>& answerRows,
                      const QList<ApplicationTotals>& applications);
    void addNew(const QList<ApplicationTotals>& applications);
    void indexRows();
    void countNames();
    void showLooks(const QStringList& paths);

    QString toolTip(const Row& row, int column) const;
    QString shareOfFront(const Row& row) const;
    QString note(const Row& row) const;

    ApplicationLooks& m_looks;
    QCollator m_collator;
    Format::Lengths m_lengths = Format::Lengths::Metric;
    std::vector<Row> m_rows;
    QHash<QString, int> m_rowOf;
    QHash<QString, int> m_named; ///< How many rows show a name.
    QSet<QString> m_excluded;
};
