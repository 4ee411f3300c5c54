// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/HourCounts.h"

#include <QDate>

/// What the person of this history does at the computer, once they sit at it.
class Habits
{
public:
    explicit Habits(Random& random);

    /// Opens the applications of a day, at that share of the whole history.
    void startDay(QDate date, double share);

    /// Adds to `hour` what is done in `minutes` at the computer.
    void spend(Activity activity, int minutes, HourCounts& hour);

private:
    using Choice = std::vector<const Application*>;

    Choice choose(Choice candidates, Activity activity, size_t count);
    ApplicationHour use(const Application& application, double minutes);

    Random& m_random;
    std::array<KeyMix, 6> m_mixes;
    std::array<Choice, Activities.size()> m_ofToday;
    double m_zeal = 1; ///< Grows over the years, and is low in summer.
};
