// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QAbstractItemModel;

/// A table as text. Any model; thread: that of the model.
namespace TableText {

/// The header and every row, cells as shown, parted by tabs: for the clipboard.
QString tabbed(const QAbstractItemModel& model);

/// One row of it, with the line's end.
QString tabbedRow(const QAbstractItemModel& model, int row);

/// The header and every row as RFC 4180 has it, numbers in full and without separators. A header
/// that names another unit for those is under `CountsModel::SortRole`, too.
QString csv(const QAbstractItemModel& model);

/// Writes `csv` in UTF-8, replacing an older file whole. Returns what went wrong, or nothing.
QString writeCsv(const QAbstractItemModel& model, const QString& file);

} // namespace TableText
