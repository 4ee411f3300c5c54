// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class QAbstractItemModel;
class QAction;
class QHBoxLayout;
class QTableView;

/// A table with buttons above it for what can be done with the row chosen; the rows' context menu
/// offers the same. Thread: main.
class ActionTable : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live longer. A screen reader calls the table `title`.
    ActionTable(QAbstractItemModel* model, const QString& title, QWidget* parent = nullptr);

    enum class Needs
    {
        Nothing,
        Row, ///< Enabled only while a row is chosen.
    };

    /// Adds a button and a menu entry; the action is owned by the table.
    QAction* addAction(const QString& name, const QString& icon, const QString& text, Needs needs);

    int currentRow() const; ///< -1 where none is chosen.
    void chooseRow(int row);

    QTableView* table() const { return m_table; }

Q_SIGNALS:
    void rowChosen(int row);    ///< -1 where none is. The owner may disable actions then.
    void rowActivated(int row); ///< By a double click or Enter.

private:
    void follow();

    QTableView* m_table;
    QHBoxLayout* m_buttons;
    QList<QAction*> m_rowActions;
};
