// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QList>
#include <QTimeZone>

/// One hour of a day as a clock on the wall shows it.
struct HourSlot
{
    int hour = 0;        ///< Local, 0 to 23.
    int occurrences = 1; ///< How often the day has this hour: 2 where the clock is put back.
    friend bool operator==(const HourSlot&, const HourSlot&) = default;
};

/// The hours of `day`, one after the other: 24, or 23 or 25 where the clock is put forward or back.
/// An hour that comes twice has two slots. Any thread.
QList<HourSlot> hourSlots(const QDate& day, const QTimeZone& zone);
