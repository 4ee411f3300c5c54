// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/ActionTable.h"

#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableView>
#include <QToolButton>

namespace {

constexpr int LeastColumnWidth = 64;

} // namespace

ActionTable::ActionTable(QAbstractItemModel* model, const QString& title, QWidget* parent)
    : QWidget(parent)
    , m_table(new QTableView(this))
    , m_buttons(new QHBoxLayout)
{
    m_buttons->setContentsMargins(0, 0, 0, 0);
    m_buttons->setSpacing(Theme::Rhythm);
    m_buttons->addStretch();
    m_table->setModel(model);
    m_table->setAccessibleName(title);
    m_table->setFrameShape(QFrame::NoFrame);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 2 * Theme::Rhythm);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setMinimumSectionSize(LeastColumnWidth);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addLayout(m_buttons);
    layout->addWidget(m_table, 1);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ActionTable::follow);
    connect(model, &QAbstractItemModel::modelReset, this, &ActionTable::follow);
    connect(m_table, &QTableView::activated, this,
            [this](const QModelIndex& index) { Q_EMIT rowActivated(index.row()); });
}

QAction* ActionTable::addAction(const QString& name, const QString& icon, const QString& text,
                                Needs needs)
{
    auto* action = new QAction(Icons::symbol(icon), text, m_table);
    action->setObjectName(name);
    m_table->addAction(action);
    const int others = m_buttons->count() - 1; // Behind them the row stretches.
    QWidget* previous = others > 0 ? m_buttons->itemAt(others - 1)->widget() : nullptr;
    auto* button = new QToolButton(this);
    button->setObjectName(name + QStringLiteral("Button"));
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setMinimumHeight(4 * Theme::Rhythm);
    m_buttons->insertWidget(m_buttons->count() - 1, button);
    if (previous != nullptr) {
        // Qt puts nothing after the last widget of its chain, which a new button is.
        setTabOrder(previous, m_table);
        setTabOrder(previous, button);
    }
    if (needs == Needs::Row) {
        m_rowActions.append(action);
        action->setEnabled(false);
    }
    return action;
}

int ActionTable::currentRow() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.constFirst().row();
}

void ActionTable::chooseRow(int row)
{
    if (row >= 0) {
        m_table->selectRow(row);
    } else {
        m_table->clearSelection();
    }
}

void ActionTable::follow()
{
    const int row = currentRow();
    for (QAction* action : std::as_const(m_rowActions)) {
        action->setEnabled(row >= 0);
    }
    Q_EMIT rowChosen(row);
}
