// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Statement.h"

#include <QDateTime>

#include <vector>

/// The milestones, which fire and are logged as the totals grow.
class MilestoneLog
{
public:
    enum class Total
    {
        Keys,
        Clicks,
        DownloadedBytes,
        UploadedBytes,
        UptimeSeconds,
    };

    MilestoneLog(const Connection& connection, const QDateTime& created);

    void grow(Total total, qint64 amount);

    /// Fires what is due at that time.
    void check(const QDateTime& time);

    /// Stores the milestones as they stand.
    void write();

private:
    struct Milestone
    {
        const char* name = nullptr;
        const char* type = nullptr;
        Total total{};
        qint64 unit = 1; ///< How much of the total makes one of what the milestone counts.
        qint64 amount = 0;
        bool active = true;
        const char* message = nullptr;
        qint64 last = 0; ///< The total at the last firing, in what the milestone counts.
        QDateTime triggered;
    };

    Statement m_insertLog;
    Statement m_insert;
    QDateTime m_created;
    std::vector<Milestone> m_milestones;
    std::array<qint64, 5> m_totals{};
};
