// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/uptime/SessionDays.h"

#include <optional>
#include <vector>

/// How much of each quarter of an hour the machine was on, in columns of one or more days: what is
/// left to see of sessions over years. The hours are those of the clock: an hour that a day lacks
/// stays empty, and one that comes twice shows both. Plain value; thread: any.
class SessionRaster
{
public:
    static constexpr int SlotsPerHour = 4;
    static constexpr int SlotCount = 24 * SlotsPerHour;

    SessionRaster() = default;
    explicit SessionRaster(const QList<SessionDay>& days);

    int columns() const { return m_columns; }

    int daysPerColumn() const { return m_daysPerColumn; }

    QDate firstDay(int column) const;
    QDate lastDay(int column) const;

    /// The column that holds the day; -1 where there is none.
    int columnOf(const QDate& day) const;

    /// The share of the time that the machine was on, 0 to 1; nothing where the clock skipped it.
    std::optional<float> share(int column, int slot) const;

private:
    struct Cell
    {
        float on = 0;  ///< In slots.
        float all = 0; ///< How often the slot came.
    };

    void addDay(int column, const SessionDay& day);
    Cell& cell(int column, int slot);

    QDate m_first;
    QDate m_last;
    int m_daysPerColumn = 1;
    int m_columns = 0;
    std::vector<Cell> m_cells;
};
