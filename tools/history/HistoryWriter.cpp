// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/HistoryWriter.h"

#include <algorithm>

namespace {

constexpr int MonthsOfPoints = 3;

/// Opens the database for writing at full speed: a file that is cut short is made anew.
Connection openForBulk(const QString& database)
{
    Connection connection(database);
    connection.run("PRAGMA journal_mode = OFF");
    connection.run("PRAGMA synchronous = OFF");
    connection.run("PRAGMA cache_size = -65536");
    connection.run("BEGIN");
    return connection;
}

} // namespace

HistoryWriter::HistoryWriter(const QString& database, Random& random, const QDateTime& first,
                             const QDateTime& end)
    : m_end(end)
    , m_connection(openForBulk(database))
    , m_input(m_connection, random, end.date().addMonths(-MonthsOfPoints))
    , m_uptime(m_connection)
    , m_network(m_connection, random)
    , m_setup(m_connection)
    , m_milestones(m_connection, first)
{
}

void HistoryWriter::writeHour(const HourCounts& hour)
{
    const InputTotals input = m_input.write(hour);
    m_uptime.writeHour(hour);
    const NetworkTotals network = m_network.write(hour);
    m_milestones.grow(MilestoneLog::Total::Keys, input.keys);
    m_milestones.grow(MilestoneLog::Total::Clicks, input.clicks);
    m_milestones.grow(MilestoneLog::Total::DownloadedBytes, network.download);
    m_milestones.grow(MilestoneLog::Total::UploadedBytes, network.upload);
    const QDateTime time(hour.day, QTime(hour.hour, 59, 30));
    m_milestones.check(std::min(time, m_end));
    noteUnsent(hour, input, network);
}

/// The last three days were not sent yet.
void HistoryWriter::noteUnsent(const HourCounts& hour, const InputTotals& input,
                               const NetworkTotals& network)
{
    constexpr int unsentDays = 3;
    if (hour.day.addDays(unsentDays) <= m_end.date()) {
        return;
    }
    m_unsent.keys += input.keys;
    m_unsent.clicks += input.clicks;
    m_unsent.download += network.download;
    m_unsent.upload += network.upload;
    m_unsent.uptime += hour.msecOn / 1000;
    for (const ApplicationHour& application : hour.inFront) {
        m_unsent.inches += application.inches;
        m_unsent.scrolls += application.allScrolls();
        Unsent& unsent = m_unsentOfApplications[application.application->path];
        unsent.keys += application.keystrokes();
        unsent.clicks += application.allClicks();
        unsent.download += application.download;
        unsent.upload += application.upload;
        unsent.uptime += application.secondsInFront;
        unsent.inches += application.inches;
        unsent.scrolls += application.allScrolls();
    }
}

void HistoryWriter::writeBoot(const QDateTime& boot, const QDateTime& end)
{
    m_milestones.grow(MilestoneLog::Total::UptimeSeconds, m_uptime.writeBoot(boot, end));
}

void HistoryWriter::writeProfile(Activity profile, const QDateTime& created, bool active)
{
    m_setup.writeProfile(profile, created, active);
}

void HistoryWriter::finish()
{
    m_uptime.finish();
    m_network.finish(m_end);
    m_milestones.write();
    m_setup.writeSettings(m_end);
    m_setup.writeUnsent(m_unsent, m_unsentOfApplications);
    m_connection.run("COMMIT");
}
