// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CountsTable.h"

#include "ui/CountsModel.h"
#include "ui/Icons.h"
#include "ui/TableText.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

CountsTable::CountsTable(QAbstractItemModel* model, const QString& title, int sortColumn,
                         Qt::SortOrder order, QWidget* parent)
    : CountsTable(new QSortFilterProxyModel, model, title, sortColumn, order, parent)
{
}

CountsTable::CountsTable(QSortFilterProxyModel* proxy, QAbstractItemModel* model,
                         const QString& title, int sortColumn, Qt::SortOrder order, QWidget* parent)
    : QWidget(parent)
    , m_proxy(proxy)
    , m_filter(new QLineEdit(this))
    , m_view(new QTableView(this))
{
    m_proxy->setParent(this);
    m_proxy->setSourceModel(model);
    m_proxy->setSortRole(CountsModel::SortRole);
    m_proxy->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setSortLocaleAware(true);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setFilterKeyColumn(CountsModel::LabelColumn);

    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter the table"));
    m_filter->setClearButtonEnabled(true);
    connect(m_filter, &QLineEdit::textChanged, m_proxy,
            &QSortFilterProxyModel::setFilterFixedString);

    m_filter->setPalette(Theme::fieldPalette(palette()));
    m_view->setAccessibleName(title);
    buildView(sortColumn, order);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_filter);
    layout->addWidget(m_view);
}

void CountsTable::buildView(int sortColumn, Qt::SortOrder order)
{
    m_view->setObjectName(QStringLiteral("table"));
    m_view->setModel(m_proxy);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(sortColumn, order);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setShowGrid(false);
    m_view->setWordWrap(false);
    m_view->setTabKeyNavigation(false);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + Theme::Rhythm);
    m_view->horizontalHeader()->setHighlightSections(false);
    m_view->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_view->horizontalHeader()->setSectionResizeMode(CountsModel::LabelColumn,
                                                     QHeaderView::Stretch);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this, &CountsTable::showMenu);
    m_view->installEventFilter(this);
}

void CountsTable::setTabOrderAfter(QWidget* before)
{
    setTabOrder(before, m_filter);
    setTabOrder(m_filter, m_view);
}

void CountsTable::focusFilter()
{
    m_filter->setFocus(Qt::ShortcutFocusReason);
    m_filter->selectAll();
}

void CountsTable::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_filter->setPalette(Theme::fieldPalette(palette()));
    }
    QWidget::changeEvent(event);
}

bool CountsTable::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::Copy)) {
        copySelection();
        return true;
    }
    if (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier) {
        showMenu(m_view->visualRect(m_view->currentIndex()).center());
        return true;
    }
    const bool types = !key->text().isEmpty() && key->text().at(0).isLetterOrNumber() &&
                       !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (types) {
        m_filter->setFocus(Qt::OtherFocusReason);
        m_filter->setText(m_filter->text() + key->text());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void CountsTable::copySelection() const
{
    QModelIndexList selected = m_view->selectionModel()->selectedRows();
    std::sort(selected.begin(), selected.end()); // Selected in any order, copied as shown.
    QString text;
    for (const QModelIndex& row : std::as_const(selected)) {
        text += TableText::tabbedRow(*m_proxy, row.row());
    }
    if (!text.isEmpty()) {
        QApplication::clipboard()->setText(text);
    }
}

void CountsTable::fillMenu(QMenu&) {}

void CountsTable::showMenu(const QPoint& position)
{
    if (!m_view->selectionModel()->hasSelection()) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(Icons::symbol(QStringLiteral("copy")), tr("Copy rows")),
            &QAction::triggered, this, &CountsTable::copySelection);
    fillMenu(*menu);
    menu->popup(m_view->viewport()->mapToGlobal(position));
}
