// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HourSlots.h"

#include <QDateTime>

#include <array>

QList<HourSlot> hourSlots(const QDate& day, const QTimeZone& zone)
{
    constexpr int hours = 24;
    constexpr qint64 stepSeconds = 15LL * 60; // No zone shifts by less.
    constexpr int stepsPerHour = 4;
    std::array<int, hours> steps{};
    const QDateTime end = day.addDays(1).startOfDay(zone);
    for (QDateTime time = day.startOfDay(zone); time < end; time = time.addSecs(stepSeconds)) {
        ++steps.at(static_cast<size_t>(time.time().hour()));
    }
    QList<HourSlot> result;
    for (int hour = 0; hour < hours; ++hour) {
        const int present = steps.at(static_cast<size_t>(hour));
        const int occurrences = (present + stepsPerHour - 1) / stepsPerHour;
        result.insert(result.size(), occurrences, {.hour = hour, .occurrences = occurrences});
    }
    return result;
}
