// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/HourCounts.h"
#include "history/Statement.h"

/// What a period's input came to. Plain value.
struct InputTotals
{
    qint64 keys = 0;
    qint64 clicks = 0;
};

/// Writes the tables of the keyboard and the mouse by the client's own rules: the first batch of an
/// hour is missing from the totals and from each combination, but not from the keys, buttons and
/// applications; every hour has a row for each scroll direction; click points and clicks by button
/// are not older than three months.
class InputRows
{
public:
    InputRows(const Connection& connection, Random& random, QDate pointsSince);

    /// Returns what the hour added to the tables of totals.
    InputTotals write(const HourCounts& hour);

private:
    qint64 writeKeys(const HourCounts& hour);
    qint64 writeClicks(const HourCounts& hour);
    void writeTravel(const HourCounts& hour);
    void writeScrolls(const HourCounts& hour);
    void writeCombos(const HourCounts& hour);
    void writeApplication(const HourCounts& hour, const ApplicationHour& application);
    qint64 withoutFirstBatch(qint64 amount, int largestBatch);

    Random& m_random;
    QDate m_pointsSince;
    QByteArray m_day; ///< Of the hour being written.
    Statement m_keys;
    Statement m_key;
    Statement m_keyOfApplication;
    Statement m_combo;
    Statement m_comboOfApplication;
    Statement m_clicks;
    Statement m_button;
    Statement m_buttonOfApplication;
    Statement m_point;
    Statement m_travel;
    Statement m_scrolls;
    Statement m_application;
};
