// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FiguresModel.h"
#include "ui/overview/OverviewFigures.h"

/// The overview's figures as the rows of its tables: every measure of each day or hour, in units
/// that a column names. Thread: main.
namespace OverviewTables {

/// The columns of the tables below; `time` heads the first.
QList<FiguresModel::Column> columns(const QString& time, Format::Lengths lengths);

FiguresModel::Row row(const QString& label, const Totals& totals, Format::Lengths lengths);
QList<FiguresModel::Row> days(const QList<DayTotals>& days, Format::Lengths lengths);
QList<FiguresModel::Row> hours(const QList<HourTotals>& hours, Format::Lengths lengths);

/// Of a table with one row: those of the totals, called `label`; and one for each baseline.
QList<FiguresModel::Row> totals(const QString& label, const OverviewFigures& figures,
                                const QTime& time, Format::Lengths lengths);

} // namespace OverviewTables
