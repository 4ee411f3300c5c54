// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/SessionRaster.h"

#include <QTime>

#include <algorithm>

namespace {

constexpr int MostSingleDays = 400; ///< A year and a bit.
constexpr int MostColumns = 640;
constexpr int DaysPerWeek = 7;
constexpr qint64 SlotSeconds = 900;

int daysPerColumnFor(int days)
{
    if (days <= MostSingleDays) {
        return 1;
    }
    const int weeks = (days + MostColumns * DaysPerWeek - 1) / (MostColumns * DaysPerWeek);
    return weeks * DaysPerWeek;
}

/// The slot of the clock that a quarter of an hour falls in, `seconds` after the day began.
int slotOf(const SessionDay& day, const QDateTime& begin, qint64 seconds)
{
    if (!day.isShifted()) {
        return static_cast<int>(seconds / SlotSeconds);
    }
    const int sinceMidnight = begin.addSecs(seconds).time().msecsSinceStartOfDay() / 1000;
    return sinceMidnight / static_cast<int>(SlotSeconds);
}

} // namespace

SessionRaster::SessionRaster(const QList<SessionDay>& days)
{
    if (days.isEmpty()) {
        return;
    }
    const auto count = static_cast<int>(days.size());
    m_first = days.constFirst().day;
    m_last = days.constLast().day;
    m_daysPerColumn = daysPerColumnFor(count);
    m_columns = (count + m_daysPerColumn - 1) / m_daysPerColumn;
    m_cells.resize(static_cast<size_t>(m_columns) * SlotCount);
    for (int i = 0; i < count; ++i) {
        addDay(i / m_daysPerColumn, days.at(i));
    }
}

void SessionRaster::addDay(int column, const SessionDay& day)
{
    const QDateTime begin = day.isShifted() ? day.day.startOfDay() : QDateTime();
    for (qint64 from = 0; from < day.seconds; from += SlotSeconds) {
        cell(column, slotOf(day, begin, from)).all += 1;
    }
    for (const SessionPart& part : day.parts) {
        for (qint64 from = part.from / SlotSeconds * SlotSeconds; from < part.to;
             from += SlotSeconds) {
            const qint64 seconds =
                std::min(part.to, from + SlotSeconds) - std::max(part.from, from);
            cell(column, slotOf(day, begin, from)).on +=
                static_cast<float>(seconds) / static_cast<float>(SlotSeconds);
        }
    }
}

SessionRaster::Cell& SessionRaster::cell(int column, int slot)
{
    return m_cells[static_cast<size_t>(column) * SlotCount + static_cast<size_t>(slot)];
}

QDate SessionRaster::firstDay(int column) const
{
    return m_first.addDays(static_cast<qint64>(column) * m_daysPerColumn);
}

QDate SessionRaster::lastDay(int column) const
{
    return std::min(m_last, firstDay(column).addDays(m_daysPerColumn - 1));
}

int SessionRaster::columnOf(const QDate& day) const
{
    if (m_columns == 0 || day < m_first || day > m_last) {
        return -1;
    }
    return static_cast<int>(m_first.daysTo(day) / m_daysPerColumn);
}

std::optional<float> SessionRaster::share(int column, int slot) const
{
    const Cell& shown =
        m_cells[static_cast<size_t>(column) * SlotCount + static_cast<size_t>(slot)];
    return shown.all > 0 ? std::optional(std::min(1.0F, shown.on / shown.all)) : std::nullopt;
}
