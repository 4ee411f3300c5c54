// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"
#include "ui/history/HistoryTypes.h"

#include <QVariant>

/// The figures of an application as cells of `ApplicationsModel`, by its columns but for the name.
/// Any thread.
namespace ApplicationTexts {

/// As shown, without a unit, which is in the header.
QString cell(const ApplicationTotals& totals, int column, Format::Lengths lengths);

/// To sort and export by: counts, travel in metres or feet, times in seconds.
QVariant raw(const ApplicationTotals& totals, int column, Format::Lengths lengths);

/// Day and time of the last use in full.
QString lastUsed(const QDateTime& time);

/// A header as shown, the unit in a second line; the one that names the unit of raw values.
QString header(int column, Format::Lengths lengths);
QString headerOfRaw(int column, Format::Lengths lengths);

} // namespace ApplicationTexts
