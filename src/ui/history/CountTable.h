// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <array>

/// What is counted by something other than the hour.
enum class CountTable
{
    Keys,
    Combinations,
    Scrolls,
    ClickCells,
    Applications,
    Interfaces, ///< All of profile 0.
    ApplicationTraffic,
    Countries,
    Services,
};

inline constexpr std::array CountTables{CountTable::Keys,
                                        CountTable::Combinations,
                                        CountTable::Scrolls,
                                        CountTable::ClickCells,
                                        CountTable::Applications,
                                        CountTable::Interfaces,
                                        CountTable::ApplicationTraffic,
                                        CountTable::Countries,
                                        CountTable::Services};

/// The columns and statements that belong to one of them. Plain value.
struct CountTableText
{
    QString name;       ///< Of its roll-ups: "key", in "key_days" and "key_months".
    QStringList things; ///< The columns of what is counted, each with its type.
    QStringList values; ///< The columns of the sums, each with its type.

    /// Reads the hourly rows of a scope (see `RowReader::scoped`): day, profile, things, sums. The
    /// sums are those of a day and profile; rows of zero are left out where that is cheap.
    QString hourly;
};

namespace CountTableTexts {

const CountTableText& of(CountTable table);

/// Columns without their types, joined by commas.
QString names(const QStringList& columns);

} // namespace CountTableTexts
