// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/ClickPoints.h"
#include "history/Habits.h"
#include "history/HistoryWriter.h"
#include "history/WorkingLife.h"

#include <functional>
#include <map>

/// Lives a life at the computer, day by day and hour by hour, and writes it down.
class SyntheticHistory
{
public:
    struct Plan
    {
        QDate first;
        QDateTime end; ///< Nothing is counted after it; its own hour has counts.
        quint64 seed = 0;
    };

    /// Told about each day before it is written, with the share of the history before it.
    using Progress = std::function<void(double share)>;

    /// Writes `directory`/tallyvane.db, which must not be there yet. Throws `HistoryError`.
    static void write(const QString& directory, const Plan& plan, const Progress& progress);

private:
    /// What happens in one hour under one profile, in minutes.
    struct Spent
    {
        int on = 0;
        std::vector<std::pair<Activity, int>> active;
    };

    SyntheticHistory(const QString& database, const Plan& plan);

    void liveThrough(QDate date);
    void cutAtTheEnd(std::vector<PowerPeriod>& periods) const;
    static void ensureLastHour(std::vector<PowerPeriod>& periods, int end);
    void live(QDate date, const PowerPeriod& period);
    std::map<int, Spent> spentIn(const PowerPeriod& period, int hour) const;
    void count(QDate day, int hour, int profile, const Spent& spent);
    void addPoints(HourCounts& hour);
    int profileFor(Activity activity) const;
    void writeProfiles();

    Plan m_plan;
    Random m_random;
    WorkingLife m_life;
    Habits m_habits;
    ClickPoints m_clickPoints;
    HistoryWriter m_writer;
    double m_share = 0; ///< Of the history, before the day being lived.
};
