// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HourChart.h"

#include "base/Format.h"

#include <algorithm>

namespace {

constexpr int HoursPerDay = 24;
constexpr int LabelEveryHours = 3;

} // namespace

HourChart::HourChart(QWidget* parent)
    : SeriesChart(Choice::None, parent)
{
    setObjectName(QStringLiteral("hourChart"));
}

void HourChart::setDay(const QDate& day, const Quantity& quantity, const QHash<int, double>& values,
                       const QDateTime& now)
{
    m_day = day;
    m_values = values;
    m_hours = hourSlots(day, QTimeZone::systemTimeZone());
    QList<Column> columns;
    Series series{.name = quantity.name};
    for (int slot = 0; slot < m_hours.size(); ++slot) {
        const HourSlot& shown = m_hours.at(slot);
        const bool again = slot > 0 && m_hours.at(slot - 1).hour == shown.hour;
        const bool isLabelled = shown.hour % LabelEveryHours == 0 && !again;
        columns.append({.label = isLabelled ? Format::hour(shown.hour) : QString(),
                        .rank = shown.hour % (2 * LabelEveryHours) == 0 ? 1 : 0});
        series.values.append(values.contains(shown.hour)
                                 ? std::optional(values.value(shown.hour) / shown.occurrences)
                                 : std::nullopt);
    }
    setContent(quantity, tr("%1 per hour").arg(quantity.name), columns, {series});
    setMark(now.date() == day ? columnOf(now) : -1, tr("now"));
}

int HourChart::columnOf(const QDateTime& time) const
{
    const auto first = std::find_if(m_hours.begin(), m_hours.end(), [&time](const HourSlot& slot) {
        return slot.hour == time.time().hour();
    });
    const auto column = static_cast<int>(first - m_hours.begin());
    // The second time around, the clock goes as it does at the end of the day.
    const bool isAgain = first != m_hours.end() && first->occurrences > 1 &&
                         time.offsetFromUtc() == m_day.addDays(1).startOfDay().offsetFromUtc();
    return isAgain ? column + 1 : column;
}

QString HourChart::describe(int column) const
{
    const HourSlot& shown = m_hours.at(column);
    const QString text = shown.occurrences == 1
                             ? tr("%1, %2 to %3\n%4: %5")
                             : tr("%1, %2 to %3, which comes twice\n%4 in both: %5");
    return text.arg(Format::day(m_day), Format::hour(shown.hour),
                    Format::hour((shown.hour + 1) % HoursPerDay), quantity().name,
                    quantity().text(m_values.value(shown.hour)));
}

QString HourChart::summary() const
{
    QStringList lines;
    for (int column = 0; column < m_hours.size(); ++column) {
        const int hour = m_hours.at(column).hour;
        const bool again = column > 0 && m_hours.at(column - 1).hour == hour;
        if (m_values.value(hour) > 0 && !again) {
            lines.append(describe(column));
        }
    }
    return lines.join(QLatin1Char('\n'));
}
