// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

#include <functional>

class CountsTable;
class QAbstractItemModel;
class QHBoxLayout;
class QLabel;
class QStackedLayout;
class QToolButton;

/// One card of a view: a title, at most one line of explanation, a picture of its data, and a menu
/// with what can be done with them. The table behind the menu is made when it is first wanted; its
/// models give their raw values, to sort and export by, under `CountsModel::SortRole`.
/// Thread: main.
class Card : public QFrame
{
    Q_OBJECT

public:
    /// Draws `picture`, which it takes over; `model` is the same data as a table and must live
    /// longer. A picture that is a `CountsTable` itself has no other table behind the menu. `name`
    /// becomes part of object names and of the names of saved files.
    Card(const QString& name, const QString& title, QWidget* picture, QAbstractItemModel* model,
         QWidget* parent = nullptr);

    void setExplanation(const QString& text);

    /// How the table is sorted when it is first shown: by this column, or, where it is -1, in the
    /// order of the rows as they are. By the second column, most first, unless told otherwise.
    void setTableOrder(int column, Qt::SortOrder order);

    /// The words between the title and the menu: a choice of what is drawn, for example.
    void setControl(QWidget* control);

    void setTitle(const QString& title);

    /// Moves the focus to the table's filter; false where the table is not shown.
    bool focusFilter();

    /// Asks for a file and writes the data to it.
    void exportData();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildMenu();
    void applyTheme();
    void toggleTable();
    void copy() const;
    void savePicture();
    QString fileName(const QString& suffix) const;
    void askForFile(const QString& title, const QString& filter, const QString& suffix,
                    const std::function<QString(const QString&)>& write);

    QString m_name;
    QAbstractItemModel* m_model;
    QLabel* m_title;
    QHBoxLayout* m_head;
    QLabel* m_explanation;
    QToolButton* m_menuButton;
    QAction* m_tableAction = nullptr;
    QStackedLayout* m_pages;
    CountsTable* m_table; ///< Null until it was first shown.
    int m_sortColumn = 1;
    Qt::SortOrder m_sortOrder = Qt::DescendingOrder;
};
