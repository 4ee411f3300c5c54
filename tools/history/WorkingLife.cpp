// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/WorkingLife.h"

#include <algorithm>

namespace {

constexpr double Hour = 60;
constexpr int ShortestSitting = 10;
constexpr int ShortestBreak = 5;
constexpr int EndOfTheNight = 29 * 60;

bool isPublicHoliday(QDate date)
{
    struct Holiday
    {
        int month;
        int day;
    };

    constexpr std::array holidays{Holiday{1, 1}, Holiday{5, 1}, Holiday{12, 25}, Holiday{12, 26}};
    return std::ranges::any_of(holidays, [date](const Holiday& holiday) {
        return holiday.month == date.month() && holiday.day == date.day();
    });
}

bool isWeekend(QDate date)
{
    return date.dayOfWeek() >= Qt::Saturday;
}

} // namespace

WorkingLife::WorkingLife(Random& random)
    : m_random(random)
{
}

std::vector<PowerPeriod> WorkingLife::day(QDate date)
{
    if (date.year() != m_plannedYear) {
        planYear(date.year());
    }
    std::vector<PowerPeriod> periods;
    for (const Sitting& sitting : sittings(date)) {
        const int patience = m_random.between(90, 240);
        if (periods.empty() || sitting.from - periods.back().sittings.back().to > patience) {
            periods.push_back({sitting.from - m_random.between(1, 4), 0, {}});
        }
        periods.back().sittings.push_back(sitting);
        periods.back().to = sitting.to + m_random.between(1, 25);
    }
    return periods;
}

/// Two or three weeks of summer, one of spring, and the turn of the year.
void WorkingLife::planYear(int year)
{
    m_plannedYear = year;
    const QDate summer = QDate(year, 7, 1).addDays(m_random.between(0, 40));
    const QDate spring = QDate(year, 3, 20).addDays(m_random.between(0, 50));
    m_absences = {{QDate(year, 1, 1), QDate(year, 1, m_random.between(1, 5))},
                  {spring, spring.addDays(m_random.between(4, 9))},
                  {summer, summer.addDays(m_random.between(13, 22))},
                  {QDate(year, 12, m_random.between(21, 24)), QDate(year, 12, 31)}};
}

bool WorkingLife::isAway(QDate date) const
{
    return std::ranges::any_of(m_absences, [date](const Absence& absence) {
        return date >= absence.from && date <= absence.to;
    });
}

std::vector<Sitting> WorkingLife::sittings(QDate date)
{
    constexpr double ill = 0.02;
    std::vector<Sitting> day;
    if (isAway(date)) {
        addHoliday(day);
    } else if (isWeekend(date) || isPublicHoliday(date)) {
        addFreeDay(day);
    } else if (!m_random.chance(ill)) {
        addWorkday(day);
    }
    return day;
}

void WorkingLife::addWorkday(std::vector<Sitting>& day)
{
    const double start = m_random.around(8.5 * Hour, 50);
    const double lunch = m_random.around(12.25 * Hour, 30);
    const double end = m_random.around(17.25 * Hour, 80);
    add(day, start, lunch - start, Activity::Work);
    if (m_random.chance(0.25)) {
        add(day, lunch + ShortestBreak, m_random.between(12, 25), Activity::General);
    }
    const double afternoon = lunch + m_random.between(35, 60);
    add(day, afternoon, end - afternoon, Activity::Work);
    if (m_random.chance(0.6)) {
        addEvening(day, 20 * Hour);
    }
}

void WorkingLife::addFreeDay(std::vector<Sitting>& day)
{
    if (m_random.chance(0.14)) {
        return;
    }
    if (m_random.chance(0.75)) {
        add(day, m_random.around(10 * Hour, 100), m_random.between(30, 150), Activity::General);
    }
    if (m_random.chance(0.06)) {
        add(day, m_random.around(13 * Hour, 40), m_random.between(40, 160), Activity::Work);
    }
    if (m_random.chance(0.6)) {
        add(day, m_random.around(14.5 * Hour, 70), m_random.between(50, 240), leisure());
    }
    if (m_random.chance(0.65)) {
        addEvening(day, 20.25 * Hour);
    }
}

void WorkingLife::addHoliday(std::vector<Sitting>& day)
{
    if (m_random.chance(0.45)) {
        add(day, m_random.around(19 * Hour, 120), m_random.between(15, 120),
            m_random.chance(0.7) ? Activity::General : leisure());
    }
}

void WorkingLife::addEvening(std::vector<Sitting>& day, double start)
{
    constexpr double sleepless = 0.018;
    add(day, m_random.around(start, 70), m_random.between(30, 170), leisure());
    if (m_random.chance(sleepless)) {
        add(day, 23 * Hour, m_random.between(120, 330), leisure());
    }
}

/// Leaves out what begins before the sitting before it is over, and what is too short.
void WorkingLife::add(std::vector<Sitting>& day, double from, double minutes, Activity activity)
{
    const int begin =
        std::max(static_cast<int>(from), day.empty() ? 0 : day.back().to + ShortestBreak);
    const int end = std::min(static_cast<int>(from + minutes), EndOfTheNight);
    if (end - begin >= ShortestSitting) {
        day.push_back({begin, end, activity});
    }
}

Activity WorkingLife::leisure()
{
    constexpr std::array weights{0.42, 0.02, 0.3, 0.26};
    return Activities.at(m_random.pick(weights));
}
