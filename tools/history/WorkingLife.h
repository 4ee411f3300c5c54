// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Random.h"

#include <QDate>

#include <vector>

/// What somebody sits down for. The values are the ids of the profiles it is counted under.
enum class Activity
{
    General = 0,
    Work = 1,
    Games = 2,
    SideProject = 3,
};

inline constexpr std::array Activities{Activity::General, Activity::Work, Activity::Games,
                                       Activity::SideProject};

/// Minutes are those since midnight of the day; those after 1440 belong to the night that follows.
struct Sitting
{
    int from = 0;
    int to = 0;
    Activity activity = Activity::General;
};

/// From the computer's boot to its shutdown.
struct PowerPeriod
{
    int from = 0;
    int to = 0;
    std::vector<Sitting> sittings; ///< In order, apart, at least one.
};

/// When somebody with an office job, hobbies and holidays sits at the computer. To be asked for one
/// day after the other, since each takes the next random numbers.
class WorkingLife
{
public:
    explicit WorkingLife(Random& random);

    /// The computer's periods of that day, in order; none on a day it stays off. None reaches
    /// beyond five in the morning of the next day, and none begins before seven.
    std::vector<PowerPeriod> day(QDate date);

private:
    struct Absence
    {
        QDate from;
        QDate to;
    };

    void planYear(int year);
    bool isAway(QDate date) const;
    std::vector<Sitting> sittings(QDate date);
    void addWorkday(std::vector<Sitting>& day);
    void addFreeDay(std::vector<Sitting>& day);
    void addHoliday(std::vector<Sitting>& day);
    void addEvening(std::vector<Sitting>& day, double start);
    void add(std::vector<Sitting>& day, double from, double minutes, Activity activity);
    Activity leisure();

    Random& m_random;
    int m_plannedYear = 0;
    std::vector<Absence> m_absences;
};
