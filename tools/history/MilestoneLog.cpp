// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/MilestoneLog.h"

namespace {

QString text(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

MilestoneLog::MilestoneLog(const Connection& connection, const QDateTime& created)
    : m_insertLog(connection, "INSERT INTO milestones_log (name, time_triggered, stats_type, "
                              "stats_amount, stats_when_triggered) VALUES (?, ?, ?, ?, ?)")
    , m_insert(connection,
               "INSERT INTO milestones (name, time_created, time_updated, time_last_triggered, "
               "stats_type, stats_amount, milestone_active, last_stats_when_triggered, "
               "custom_message) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
    , m_created(created)
{
    constexpr qint64 mebibyte = 1 << 20;
    constexpr qint64 minute = 60;
    m_milestones = {
        {"Wrists of steel", "Keys", Total::Keys, 1, 100'000, true, "", 0, created},
        {"Mouse mileage", "Clicks", Total::Clicks, 1, 25'000, true, "Rest your hand for a moment.",
         0, created},
        {"Data hoard", "Downloaded MB", Total::DownloadedBytes, mebibyte, 50'000, true, "", 0,
         created},
        {"Giving back", "Uploaded MB", Total::UploadedBytes, mebibyte, 10'000, false, "", 0,
         created},
        {"A week at the desk", "Uptime in Minutes", Total::UptimeSeconds, minute, 10'080, true,
         "Go outside!", 0, created},
    };
}

void MilestoneLog::grow(Total total, qint64 amount)
{
    m_totals.at(static_cast<size_t>(total)) += amount;
}

void MilestoneLog::check(const QDateTime& time)
{
    for (Milestone& milestone : m_milestones) {
        const qint64 now = m_totals.at(static_cast<size_t>(milestone.total)) / milestone.unit;
        if (milestone.active && now - milestone.last >= milestone.amount) {
            milestone.last = now;
            milestone.triggered = time;
            m_insertLog.run(milestone.name, text(time), milestone.type, milestone.amount, now);
        }
    }
}

void MilestoneLog::write()
{
    for (const Milestone& milestone : m_milestones) {
        m_insert.run(milestone.name, text(m_created), text(m_created), text(milestone.triggered),
                     milestone.type, milestone.amount, milestone.active ? 1 : 0, milestone.last,
                     milestone.message);
    }
}
