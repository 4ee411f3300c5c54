// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationsModel.h"

#include "ui/applications/ApplicationLooks.h"
#include "ui/applications/ApplicationTexts.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

template <typename Value>
int order(const Value& one, const Value& other)
{
    return one < other ? -1 : other < one ? 1 : 0;
}

} // namespace

ApplicationsModel::ApplicationsModel(ApplicationLooks& looks, QObject* parent)
    : QAbstractTableModel(parent)
    , m_looks(looks)
{
    connect(&looks, &ApplicationLooks::found, this, &ApplicationsModel::showLooks);
}

void ApplicationsModel::setLengths(Format::Lengths lengths)
{
    if (lengths == m_lengths) {
        return;
    }
    m_lengths = lengths;
    Q_EMIT headerDataChanged(Qt::Horizontal, TravelColumn, TravelColumn);
    if (!m_rows.empty()) {
        Q_EMIT dataChanged(index(0, TravelColumn), index(rowCount() - 1, TravelColumn));
    }
}

void ApplicationsModel::setApplications(const QList<ApplicationTotals>& applications)
{
    QHash<QString, int> answerRows;
    answerRows.reserve(applications.size());
    for (int row = 0; row < applications.size(); ++row) {
        answerRows.insert(applications.at(row).path, row);
    }
    removeMissing({answerRows.keyBegin(), answerRows.keyEnd()});
    changeCommon(answerRows, applications);
    addNew(applications);
    countNames();
}

void ApplicationsModel::removeMissing(const QSet<QString>& present)
{
    const auto isMissing = [this, &present](int row) {
        return !present.contains(rowAt(row).totals.path);
    };
    for (int last = rowCount() - 1; last >= 0; --last) {
        if (!isMissing(last)) {
            continue;
        }
        int first = last;
        while (first > 0 && isMissing(first - 1)) {
            --first;
        }
        beginRemoveRows({}, first, last);
        m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
        indexRows();
        endRemoveRows();
        last = first;
    }
}

void ApplicationsModel::changeCommon(const QHash<QString, int>& answerRows,
                                     const QList<ApplicationTotals>& applications)
{
    int first = -1;
    int last = -1;
    for (int row = 0; row < rowCount(); ++row) {
        Row& shown = m_rows[static_cast<size_t>(row)];
        const ApplicationTotals& totals = applications.at(answerRows.value(shown.totals.path));
        if (totals != shown.totals) {
            shown = makeRow(totals);
            first = first < 0 ? row : first;
            last = row;
        }
    }
    // Once, when all are in place: views that sort compare the changed rows with each other.
    if (first >= 0) {
        Q_EMIT dataChanged(index(first, 0), index(last, ColumnCount - 1));
    }
}

void ApplicationsModel::addNew(const QList<ApplicationTotals>& applications)
{
    std::vector<Row> added;
    for (const ApplicationTotals& totals : applications) {
        if (!m_rowOf.contains(totals.path)) {
            added.push_back(makeRow(totals));
        }
    }
    if (added.empty()) {
        return;
    }
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(added.size()) - 1);
    std::move(added.begin(), added.end(), std::back_inserter(m_rows));
    indexRows();
    endInsertRows();
}

ApplicationsModel::Row ApplicationsModel::makeRow(const ApplicationTotals& totals) const
{
    const QString name = m_looks.name(totals.path, totals.name);
    return {.totals = totals, .name = name, .nameKey = m_collator.sortKey(name.toCaseFolded())};
}

const ApplicationsModel::Row& ApplicationsModel::rowAt(int row) const
{
    return m_rows.at(static_cast<size_t>(row));
}

void ApplicationsModel::indexRows()
{
    m_rowOf.clear();
    for (int row = 0; row < rowCount(); ++row) {
        m_rowOf.insert(rowAt(row).totals.path, row);
    }
}

void ApplicationsModel::countNames()
{
    QHash<QString, int> named;
    for (const Row& row : m_rows) {
        ++named[row.name];
    }
    if (named != m_named) {
        m_named = named;
        if (!m_rows.empty()) {
            Q_EMIT dataChanged(index(0, NameColumn), index(rowCount() - 1, NameColumn), {NoteRole});
        }
    }
}

void ApplicationsModel::showLooks(const QStringList& paths)
{
    bool isRenamed = false;
    for (const QString& path : paths) {
        const int row = rowOf(path);
        if (row < 0) {
            continue;
        }
        Row& shown = m_rows[static_cast<size_t>(row)];
        isRenamed |= m_looks.name(path, shown.totals.name) != shown.name;
        shown = makeRow(shown.totals);
        const QModelIndex cell = index(row, NameColumn);
        Q_EMIT dataChanged(cell, cell);
    }
    if (isRenamed) {
        countNames();
    }
}

void ApplicationsModel::setExcluded(const QStringList& paths)
{
    const QSet<QString> excluded(paths.begin(), paths.end());
    if (excluded == m_excluded) {
        return;
    }
    m_excluded = excluded;
    if (!m_rows.empty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1),
                           {NoteRole, ExcludedRole});
    }
}

const ApplicationTotals& ApplicationsModel::application(int row) const
{
    return rowAt(row).totals;
}

QString ApplicationsModel::name(int row) const
{
    return rowAt(row).name;
}

bool ApplicationsModel::isExcluded(const QString& path) const
{
    return m_excluded.contains(path);
}

int ApplicationsModel::rowOf(const QString& path) const
{
    return m_rowOf.value(path, -1);
}

int ApplicationsModel::compare(int row, int other, int column) const
{
    const Row& a = rowAt(row);
    const Row& b = rowAt(other);
    switch (column) {
    case NameColumn:
        return a.nameKey.compare(b.nameKey);
    case KeysColumn:
        return order(a.totals.keys, b.totals.keys);
    case ClicksColumn:
        return order(a.totals.clicks, b.totals.clicks);
    case ScrollsColumn:
        return order(a.totals.scrolls, b.totals.scrolls);
    case TravelColumn:
        return order(a.totals.inches, b.totals.inches);
    case FrontColumn:
        return order(a.totals.frontSeconds, b.totals.frontSeconds);
    case RunningColumn:
        return order(a.totals.runningSeconds, b.totals.runningSeconds);
    case LastUsedColumn:
        return order(a.totals.lastUsed, b.totals.lastUsed);
    default:
        return order(a.totals.path, b.totals.path);
    }
}

int ApplicationsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ApplicationsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ApplicationsModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row& row = rowAt(index.row());
    const bool isText = index.column() == NameColumn || index.column() == PathColumn;
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == NameColumn
                   ? row.name
                   : ApplicationTexts::cell(row.totals, index.column(), m_lengths);
    case Qt::DecorationRole:
        if (index.column() != NameColumn) {
            return {};
        }
        if (isExcluded(row.totals.path)) {
            return m_looks.excludedIcon();
        }
        m_looks.want(row.totals.path);
        return m_looks.icon(row.totals.path);
    case Qt::ToolTipRole:
        return toolTip(row, index.column());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue((isText ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case Qt::AccessibleTextRole:
        return index.column() == NameColumn && !note(row).isEmpty()
                   ? QStringLiteral("%1, %2").arg(row.name, note(row))
                   : index.data().toString();
    case SortRole:
        return index.column() == NameColumn
                   ? QVariant(row.name)
                   : ApplicationTexts::raw(row.totals, index.column(), m_lengths);
    case NoteRole:
        return note(row);
    case ExcludedRole:
        return isExcluded(row.totals.path);
    default:
        return {};
    }
}

QString ApplicationsModel::toolTip(const Row& row, int column) const
{
    switch (column) {
    case NameColumn: {
        const QString full = row.name + QLatin1Char('\n') + row.totals.path;
        return isExcluded(row.totals.path)
                   ? full + QLatin1Char('\n') + tr("Excluded: no longer counted per application")
                   : full;
    }
    case TravelColumn:
        return Format::length(row.totals.inches, m_lengths);
    case FrontColumn:
        return tr("%1, %2 % of all listed")
            .arg(Format::duration(row.totals.frontSeconds), shareOfFront(row));
    case RunningColumn:
        return Format::duration(row.totals.runningSeconds);
    case LastUsedColumn:
        return ApplicationTexts::lastUsed(row.totals.lastUsed);
    default:
        return {};
    }
}

QString ApplicationsModel::shareOfFront(const Row& row) const
{
    constexpr double percent = 100;
    const double all =
        std::accumulate(m_rows.begin(), m_rows.end(), 0.0, [](double sum, const Row& other) {
            return sum + static_cast<double>(other.totals.frontSeconds);
        });
    const double share = all > 0 ? percent * static_cast<double>(row.totals.frontSeconds) / all : 0;
    return QString::number(share, 'f', 1);
}

QString ApplicationsModel::note(const Row& row) const
{
    QStringList parts;
    if (isExcluded(row.totals.path)) {
        parts.append(tr("Excluded"));
    }
    if (m_named.value(row.name) > 1) {
        parts.append(row.totals.path);
    }
    return parts.join(QStringLiteral(" · "));
}

QVariant ApplicationsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount) {
        return {};
    }
    const bool isText = section == NameColumn || section == PathColumn;
    switch (role) {
    case Qt::DisplayRole:
        return ApplicationTexts::header(section, m_lengths);
    case SortRole:
        return ApplicationTexts::headerOfRaw(section, m_lengths);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue((isText ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case Qt::ToolTipRole:
        return section == FrontColumn     ? tr("How long its window had the focus on these days")
               : section == RunningColumn ? tr("How long it ran since counting began, whatever "
                                               "days are chosen, with its window in front or not")
                                          : QVariant();
    default:
        return {};
    }
}
