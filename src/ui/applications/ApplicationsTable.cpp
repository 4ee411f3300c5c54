// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationsTable.h"

#include "ui/Icons.h"
#include "ui/Theme.h"
#include "ui/applications/ApplicationDelegate.h"
#include "ui/applications/ApplicationsModel.h"
#include "ui/applications/ApplicationsProxy.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QHeaderView>
#include <QMenu>
#include <QTableView>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace {

constexpr int LeastNameWidth = 17 * Theme::Rhythm;
constexpr int MostNameWidth = 40 * Theme::Rhythm;
constexpr int IconSize = 16;

} // namespace

ApplicationsTable::ApplicationsTable(ApplicationsModel& model, const QString& title,
                                     QWidget* parent)
    : CountsTable(new ApplicationsProxy(model), &model, title, ApplicationsModel::FrontColumn,
                  Qt::DescendingOrder, parent)
    , m_model(model)
{
    view()->setItemDelegate(new ApplicationDelegate(this));
    view()->setIconSize({IconSize, IconSize});
    view()->setColumnHidden(ApplicationsModel::PathColumn, true);
    view()->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view()->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    // Fitted by hand: the header would ask a thousand rows for their sizes at every change.
    view()->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view()->viewport()->installEventFilter(this);
    connect(view()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ApplicationsTable::selectionChanged);
    connect(&model, &QAbstractItemModel::rowsInserted, this, &ApplicationsTable::fitColumns);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &ApplicationsTable::fitColumns);
    connect(&model, &QAbstractItemModel::dataChanged, this, &ApplicationsTable::fitColumns);
    connect(&model, &QAbstractItemModel::headerDataChanged, this, &ApplicationsTable::fitColumns);
    fitColumns();
}

QStringList ApplicationsTable::selectedPaths() const
{
    QModelIndexList rows = view()->selectionModel()->selectedRows(ApplicationsModel::PathColumn);
    std::sort(rows.begin(), rows.end());
    QStringList paths;
    for (const QModelIndex& row : std::as_const(rows)) {
        paths.append(row.data().toString());
    }
    return paths;
}

void ApplicationsTable::fitColumns()
{
    constexpr int figures = ApplicationsModel::PathColumn - ApplicationsModel::KeysColumn;
    std::array<int, figures> widths{};
    const auto fit = [this, &widths](int padding, int grid) {
        int column = ApplicationsModel::KeysColumn;
        for (int& width : widths) {
            width = (neededWidth(column++, padding) + grid - 1) / grid * grid;
        }
        return view()->viewport()->width() - std::accumulate(widths.begin(), widths.end(), 0);
    };
    // On a grid, so that a digit more seldom moves the columns, unless there is little room.
    int left = fit(Theme::Gap, Theme::Rhythm);
    if (left < LeastNameWidth) {
        left = fit(Theme::Rhythm, 1);
    }
    // Where there is much, figures stay near their names.
    const int more = std::max(0, left - MostNameWidth) / figures;
    QHeaderView& header = *view()->horizontalHeader();
    header.resizeSection(ApplicationsModel::NameColumn,
                         std::max(LeastNameWidth, left - more * figures));
    int column = ApplicationsModel::KeysColumn;
    for (const int width : widths) {
        header.resizeSection(column++, width + more);
    }
}

int ApplicationsTable::neededWidth(int column, int padding) const
{
    constexpr int sortArrow = 26; // With its margins.
    const QFontMetrics metrics = view()->fontMetrics();
    const QString header = m_model.headerData(column, Qt::Horizontal).toString();
    return std::max(metrics.size(0, header).width() + sortArrow,
                    metrics.horizontalAdvance(longestText(column)) + padding);
}

QString ApplicationsTable::longestText(int column) const
{
    const QFontMetrics metrics = view()->fontMetrics();
    if (column == ApplicationsModel::LastUsedColumn) {
        const QString today = tr("Today %1").arg(QStringLiteral("08:08"));
        const QString day = QStringLiteral("2026-08-28");
        return metrics.horizontalAdvance(today) > metrics.horizontalAdvance(day) ? today : day;
    }
    if (m_model.rowCount() == 0) {
        return {};
    }
    // The largest number is the longest, whatever its digits: they are equally wide.
    int largest = 0;
    for (int row = 1; row < m_model.rowCount(); ++row) {
        largest = m_model.compare(row, largest, column) > 0 ? row : largest;
    }
    return m_model.index(largest, column).data().toString();
}

void ApplicationsTable::changeEvent(QEvent* event)
{
    CountsTable::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fitColumns();
    }
}

bool ApplicationsTable::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != view()->viewport()) {
        return CountsTable::eventFilter(watched, event);
    }
    if (event->type() == QEvent::Resize) {
        fitColumns();
    }
    return false;
}

void ApplicationsTable::fillMenu(QMenu& menu)
{
    const QStringList paths = selectedPaths();
    QStringList excluded;
    QStringList counted;
    for (const QString& path : paths) {
        (m_model.isExcluded(path) ? excluded : counted).append(path);
    }
    const auto add = [&menu](const QString& text, const QString& name) {
        QAction* action = menu.addAction(text);
        action->setObjectName(name);
        return action;
    };
    connect(
        add(paths.size() == 1 ? tr("Copy path") : tr("Copy paths"), QStringLiteral("copyPaths")),
        &QAction::triggered, this, &ApplicationsTable::copyPaths);
    menu.addSeparator();
    if (!counted.isEmpty()) {
        connect(add(tr("Exclude from counting…"), QStringLiteral("exclude")), &QAction::triggered,
                this, [this, counted] { Q_EMIT exclusionWanted(counted); });
    }
    if (!excluded.isEmpty()) {
        connect(add(tr("Count again"), QStringLiteral("include")), &QAction::triggered, this,
                [this, excluded] { Q_EMIT inclusionWanted(excluded); });
    }
    menu.addSeparator();
    connect(add(tr("Clear selection"), QStringLiteral("clearSelection")), &QAction::triggered,
            view(), &QTableView::clearSelection);
}

void ApplicationsTable::copyPaths() const
{
    QApplication::clipboard()->setText(selectedPaths().join(QLatin1Char('\n')));
}
