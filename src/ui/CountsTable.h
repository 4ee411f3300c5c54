// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QAbstractItemModel;
class QLineEdit;
class QMenu;
class QSortFilterProxyModel;
class QTableView;

/// A table with a filter above it: sorted by its header, filtered by typing, copied with Ctrl+C.
/// Thread: main.
class CountsTable : public QWidget
{
    Q_OBJECT

public:
    /// Sorts by `sortColumn` at first; -1 keeps the model's order. `model` is not owned and must
    /// live longer. A screen reader calls the table `title`.
    CountsTable(QAbstractItemModel* model, const QString& title, int sortColumn,
                Qt::SortOrder order, QWidget* parent = nullptr);

    /// Lets Tab move from `before` to the filter and on to the table.
    void setTabOrderAfter(QWidget* before);

    void focusFilter();

protected:
    /// As above, but sorted and filtered by `proxy`, which it takes over.
    CountsTable(QSortFilterProxyModel* proxy, QAbstractItemModel* model, const QString& title,
                int sortColumn, Qt::SortOrder order, QWidget* parent);

    /// Adds what else can be done with the selected rows, of which there is at least one.
    virtual void fillMenu(QMenu& menu);

    QTableView* view() const { return m_view; }

    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildView(int sortColumn, Qt::SortOrder order);
    void copySelection() const;
    void showMenu(const QPoint& position);

    QSortFilterProxyModel* m_proxy;
    QLineEdit* m_filter;
    QTableView* m_view;
};
